#include "app/OpenShortcut.h"

#include "app/PanelKeys.h"
#include "recorder/RecorderCocoa.h"
#include "recorder/RefusalNotice.h"

namespace varno {

using namespace Qt::StringLiterals;

const KeyboardShortcuts::Name& openVarno()
{
    static const KeyboardShortcuts::Name name(
        u"openVarno"_s, KeyboardShortcuts::Shortcut(Key::f, Modifier::option | Modifier::command));
    return name;
}

PanelShortcut panelShortcut()
{
    return {
        .label =
            [] {
                const KeyboardShortcuts& shortcuts = KeyboardShortcuts::shared();
                return shortcuts.works(openVarno()) ? shortcuts.shownShortcut(openVarno())
                                                    : QString();
            },
        .makeRecorder =
            [] {
                auto* recorder = new RecorderCocoa(openVarno());
                recorder->setMenuItems(
                    [] { return panelKeys(KeyboardShortcuts::shared().keyboard()); });
                return recorder;
            },
        .makeNotice = [] { return new RefusalNotice(openVarno()); },
    };
}

} // namespace varno
