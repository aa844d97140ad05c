#include "platform/posix/CurlHttpSession.h"
#include "platform/linux/Module.h"

varno::HttpSession* varnoMakeHttpSession()
{
    return new varno::CurlHttpSession;
}
