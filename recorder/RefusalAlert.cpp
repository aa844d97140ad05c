#include "recorder/RefusalAlert.h"

#include <QPushButton>

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

} // namespace

RefusalAlert::RefusalAlert(const ShortcutRefusal& refusal, const QString& description,
                           QWidget& field)
    : QMessageBox(field.window() == &field ? nullptr : field.window())
{
    setAttribute(Qt::WA_DeleteOnClose);
    setPalette(field.window()->palette()); // windows do not inherit it
    setIcon(Warning);
    setTextFormat(Qt::PlainText);
    setText(textOf(refusal, description));
    addButton(Ok);
    if (refusal.reason == ShortcutRefusal::Reason::usedBySystem) {
        setInformativeText(tr("Most of these can be changed in the settings of your desktop."));
        m_force = addButton(tr("Use anyway"), AcceptRole);
    }
    for (QAbstractButton* button : buttons())
        button->setIcon({});
    setDefaultButton(Ok);
    setEscapeButton(Ok);
    setWindowModality(parentWidget() ? Qt::WindowModal : Qt::ApplicationModal);
    show();
}

RefusalAlert::~RefusalAlert()
{
    if (QWidget* window = parentWidget(); window && window->isVisible())
        window->activateWindow();
}

} // namespace varno
