#include "platform/linux/Module.h"
#include "platform/posix/CurlHttpSession.h"

varno::HttpSession* varnoMakeHttpSession()
{
    return new varno::CurlHttpSession;
}
