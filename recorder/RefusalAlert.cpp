#include "recorder/RefusalAlert.h"

#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/Theme.h"
#include "platform/WindowPlacement.h"

#include <QPainter>
#include <QWindow>

namespace varno {
namespace {

QString textOf(const ShortcutRefusal& refusal, const QString& description)
{
    switch (refusal.reason) {
    case ShortcutRefusal::Reason::usedByMenuItem:
        return RefusalAlert::tr("“%1” already belongs to the menu item “%2”.")
            .arg(description, refusal.menuItem);
    case ShortcutRefusal::Reason::disallowed:
        return RefusalAlert::tr(
            "This version of the system does not report shortcuts with Option alone. "
            "Please add Command or Control.");
    case ShortcutRefusal::Reason::usedBySystem:
        return RefusalAlert::tr("“%1” is taken by the system or by another program.")
            .arg(description);
    }
    return {};
}

constexpr int breadth = 440;

ButtonStyle buttonStyle(ColorRole outline)
{
    return {.text = {.size = 13, .role = outline == ColorRole::accent ? outline : ColorRole::text},
            .horizontal = 14,
            .vertical = 5,
            .radius = 6,
            .outline = Ink{.role = outline}};
}

} // namespace

RefusalAlert::RefusalAlert(const ShortcutRefusal& refusal, const QString& description,
                           QWidget& field)
    : QDialog(field.window() == &field ? nullptr : field.window(), Qt::FramelessWindowHint)
    , m_symbol(Symbol::exclamationmarkTriangle, {.size = 22, .role = StandardColor::orange})
    , m_text(textOf(refusal, description), {.size = 13}, Overflow::wrap)
    , m_advice(tr("Most of these can be changed in the settings of your desktop."),
               {.size = 11, .opacity = 0.6}, Overflow::wrap)
    , m_force(tr("Use anyway"), buttonStyle(ColorRole::border))
    , m_ok(tr("OK"), buttonStyle(ColorRole::accent))
{
    const bool isForceable = refusal.reason == ShortcutRefusal::Reason::usedBySystem;
    m_force.setVisible(isForceable);
    m_advice.setVisible(isForceable);
    setAttribute(Qt::WA_DeleteOnClose);
    setPalette(field.window()->palette()); // windows do not inherit it
    setWindowTitle(m_text.text());
    setAccessibleRole(*this, QAccessible::AlertMessage);
    QBoxLayout* texts = column({.spacing = 6}, {m_text, m_advice});
    QBoxLayout* message = row({.spacing = 16}, {aligned(m_symbol, Qt::AlignTop), texts});
    message->setStretchFactor(texts, 1);
    setLayout(column({.spacing = 20, .horizontal = 24, .vertical = 20},
                     {message, row({.spacing = 10}, {stretch(), m_force, m_ok})}));
    setFixedSize(breadth, layout()->totalHeightForWidth(breadth));
    connect(&m_force, &PlainButton::clicked, this, &QDialog::accept);
    connect(&m_ok, &PlainButton::clicked, this, &QDialog::reject);
    setWindowModality(parentWidget() ? Qt::WindowModal : Qt::ApplicationModal);
    m_ok.setFocus();
    winId(); // creates the window
    prepareFloatingPanel(*windowHandle());
    show();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

RefusalAlert::~RefusalAlert()
{
    if (QWidget* window = parentWidget(); window && window->isVisible())
        window->activateWindow();
}

void RefusalAlert::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(themeColor(palette(), ColorRole::border));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace varno
