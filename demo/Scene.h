#pragma once

#include "demo/StandInService.h"

#include <QSize>

namespace varno {

/// A state of the window that is worth a picture, and how it comes about.
struct Scene {
    enum class Moment {
        waiting,     ///< nothing has been received
        writing,     ///< in mid-text, the contents are there
        writingBoth, ///< in mid-text, the contents are still to come
        finished,
    };

    QString name; ///< for the names of its files
    QString query;
    Moment moment = Moment::finished;
    Script answer = {};   ///< to the request for the text
    Script contents = {}; ///< to that for the table of contents
    QSize windowSize{860, 620};
    bool opensSection = false; ///< the first one
    QString findText = {};     ///< typed into the find bar
    bool selectsAll = false;   ///< of the text
    bool opensMenu = false;    ///< over the text
    bool endsBelow = false;    ///< scrolled to its end
};

/// All that there are, each independent of the others.
QList<Scene> scenes();

} // namespace varno
