#include "kit/CommandKeys.h"

#include "platform/ProgramKeys.h"

namespace varno {

QList<QKeySequence> commandKeys(QList<QKeySequence> keys)
{
    if (!controlStandsForCommand())
        keys.removeIf([](const QKeySequence& key) {
            return key[0].keyboardModifiers().testFlag(Qt::MetaModifier);
        });
    return keys;
}

} // namespace varno
