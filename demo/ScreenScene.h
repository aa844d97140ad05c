#pragma once

#include <QList>
#include <QString>

namespace varno {

/// A state of the search screen or of the settings that is worth a picture, and how it comes about.
struct ScreenScene {
    struct Step {
        enum class Kind {
            press,            ///< the button of that name
            type,             ///< `text` into the field of that name
            await,            ///< that text on show
            down,             ///< the arrow key, to whoever has the focus
            combine,          ///< Alt and F4, which the window manager has, into the recorder
            pretendMenu,      ///< that there is a menu, with these keys in it
            pretendOldSystem, ///< that the system does not report keys with Option alone
            scrollToEnd,
        };

        Kind kind;
        QString name = {};
        QString text = {};
    };

    QString name; ///< for the names of its files
    bool hasKeys = true;
    bool hasSearches = false;
    bool isSettings = false;
    bool everyTextSize = false; ///< or the medium one alone
    QList<Step> steps = {};
};

/// All that there are, each independent of the others.
QList<ScreenScene> screenScenes();

} // namespace varno
