#pragma once

#include <QChar>
#include <QList>
#include <QString>

namespace varno {

// The keys of the program's own windows. Main thread only.

/// Whether Control does there what Command does, since the system keeps that key for itself. Where
/// it does not, Command is what the toolkit calls Control, and Control what it calls Meta.
[[nodiscard]] bool controlStandsForCommand();

/// An item of the menu that the system keeps for the program, with its key equivalent.
struct MenuKey {
    QString title;
    QChar character;       ///< in upper case with Shift
    quint32 modifiers = 0; ///< in the encoding of key events
};

/// None where programs have no such menu.
[[nodiscard]] QList<MenuKey> menuKeys();

/// While they are suspended, these keys go to the focus as others do.
void suspendMenuKeys(bool suspended);

} // namespace varno
