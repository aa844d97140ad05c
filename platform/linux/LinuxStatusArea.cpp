#include "platform/StatusItem.h"
#include "platform/linux/TrayStatusItem.h"

#include <utility>

namespace varno {
namespace {

constexpr int patience = 2000; // milliseconds, which no area that works takes

} // namespace

void becomeAccessory() {} // windows say for themselves in which lists they are

void askForStatusArea(QObject& context, std::function<void(bool)> answer)
{
    askForNotifierArea(context, patience, [answer = std::move(answer)](NotifierArea area) {
        answer(area == NotifierArea::shown || hasTrayOnX11());
    });
}

} // namespace varno
