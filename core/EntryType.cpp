#include "core/EntryType.h"

#include <QStringList>

namespace varno {

EntryType detectEntryType(const QString& query)
{
    switch (query.trimmed().split(u' ', Qt::SkipEmptyParts).size()) {
    case 1:
        return EntryType::definition;
    case 2:
    case 3:
    case 4:
        return EntryType::shortAnswer;
    default:
        return EntryType::full;
    }
}

} // namespace varno
