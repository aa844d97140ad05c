#include "app/ThemeMenuButton.h"

#include "kit/Layout.h"
#include "kit/Menu.h"

#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace varno {
namespace {

QString name(AppTheme theme)
{
    switch (theme) {
    case AppTheme::cream:
        return ThemeMenuButton::tr("Cream (Classic)");
    case AppTheme::amber:
        return ThemeMenuButton::tr("Warm Amber");
    case AppTheme::dark:
        break;
    }
    return ThemeMenuButton::tr("Dark Parchment");
}

QIcon checkmark(const QPalette& colors, double pixelRatio)
{
    constexpr int side = 12;
    QPixmap image(QSize(side, side) * pixelRatio);
    image.setDevicePixelRatio(pixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawSymbol(painter, Symbol::checkmark, QRectF(0, 0, side, side),
               themeColor(colors, ColorRole::text));
    return {image};
}

} // namespace

ThemeMenuButton::ThemeMenuButton(QWidget* parent)
    : RowButton({}, parent)
    , m_name(name(m_theme), {.size = 13})
    , m_symbol(Symbol::chevronUpChevronDown, {.size = 10, .opacity = 0.55})
{
    setContent(row({.spacing = 6}, {m_name, m_symbol}));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setTheme(m_theme);
    connect(this, &RowButton::pressed, this, &ThemeMenuButton::openMenu);
}

void ThemeMenuButton::setTheme(AppTheme theme)
{
    m_theme = theme;
    m_name.setText(name(theme));
    setAccessibleName(tr("Theme: %1").arg(name(theme)));
    updateGeometry();
}

void ThemeMenuButton::keyPressEvent(QKeyEvent* event)
{
    const bool isArrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (!isArrow || (event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return RowButton::keyPressEvent(event);
    constexpr auto last = static_cast<int>(RawValues<AppTheme>::cases.size()) - 1;
    const int next = static_cast<int>(m_theme) + (event->key() == Qt::Key_Up ? -1 : 1);
    if (next >= 0 && next <= last)
        Q_EMIT themeChosen(static_cast<AppTheme>(next));
}

/// On the screen: below or else above the button, ending where it ends, within the window.
QPoint ThemeMenuButton::placeFor(const QSize& menu) const
{
    const QRect room = window()->rect();
    QPoint place = mapTo(window(), QPoint(isRightToLeft() ? 0 : width() - menu.width(), height()));
    if (place.y() + menu.height() > room.height())
        place.ry() -= height() + menu.height();
    place.setX(std::clamp(place.x(), 0, std::max(0, room.width() - menu.width())));
    place.setY(std::max(0, place.y()));
    return window()->mapToGlobal(place);
}

void ThemeMenuButton::openMenu()
{
    auto* menu = new QMenu(this);
    setUpMenu(*menu, *this);
    for (const auto& [theme, rawValue] : RawValues<AppTheme>::cases) {
        QAction* item = menu->addAction(name(theme));
        item->setIcon(theme == m_theme ? checkmark(palette(), devicePixelRatioF()) : QIcon());
        connect(item, &QAction::triggered, this,
                [this, chosen = theme] { Q_EMIT themeChosen(chosen); });
    }
    connect(menu, &QMenu::aboutToHide, this, [this] { setDown(false); });
    menu->popup(placeFor(menu->sizeHint()));
    menu->setActiveAction(menu->actions().at(static_cast<int>(m_theme)));
}

} // namespace varno
