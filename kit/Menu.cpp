#include "kit/Menu.h"

#include "kit/TextStyle.h"

#include <QMenu>

namespace varno {

void setUpMenu(QMenu& menu, const QWidget& owner)
{
    menu.setAttribute(Qt::WA_DeleteOnClose);
    menu.setPalette(owner.window()->palette()); // windows do not inherit it
    menu.setFont(font({.size = 13}));
}

} // namespace varno
