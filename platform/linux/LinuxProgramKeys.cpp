#include "platform/ProgramKeys.h"

namespace varno {

bool controlStandsForCommand()
{
    return true;
}

QList<MenuKey> menuKeys()
{
    return {};
}

void suspendMenuKeys(bool /*suspended*/) {}

} // namespace varno
