#include "kit/Accessibility.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QLabel>
#include <QPointer>

namespace varno {
namespace {

constexpr const char* roleProperty = "accessibleRole";
constexpr const char* levelProperty = "accessibleLevel";
constexpr const char* currentProperty = "accessiblyCurrent";

/// What assistive technology was led to last.
QPointer<QWidget>& pointedOut()
{
    static QPointer<QWidget> widget;
    return widget;
}

class RoleAccessible final : public QAccessibleWidget, public AccessibleLevel {
public:
    explicit RoleAccessible(QWidget& widget)
        : QAccessibleWidget(&widget,
                            static_cast<QAccessible::Role>(widget.property(roleProperty).toInt()))
        , AccessibleLevel(widget.property(levelProperty).toInt())
    {
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        const QVariant current = widget()->property(currentProperty);
        state.selectable = current.isValid();
        state.selected = state.active = current.toBool();
        if (widget()->isWindow())
            state.active = widget()->isActiveWindow();
        if (widget() == pointedOut())
            state.focusable = state.focused = true;
        return state;
    }

    [[nodiscard]] QString text(QAccessible::Text what) const override
    {
        QString given = QAccessibleWidget::text(what);
        if (!given.isEmpty())
            return given;
        const auto* label = qobject_cast<QLabel*>(widget());
        if (what == QAccessible::Name && label)
            return label->text();
        return what == QAccessible::Description ? levelDescription() : QString();
    }

    [[nodiscard]] QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (qobject_cast<QAbstractButton*>(widget()))
            names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override
    {
        auto* button = qobject_cast<QAbstractButton*>(widget());
        if (button && name == pressAction())
            button->click();
        else
            QAccessibleWidget::doAction(name);
    }

    /// All that is in a button is in its name.
    [[nodiscard]] int childCount() const override
    {
        return qobject_cast<QAbstractButton*>(widget()) ? 0 : QAccessibleWidget::childCount();
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        void* level = levelInterface(type);
        return level ? level : QAccessibleWidget::interface_cast(type);
    }
};

/// It is asked with the name of the object's own class first.
QAccessibleInterface* roleAccessible(const QString& /*className*/, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    return widget && widget->property(roleProperty).isValid() ? new RoleAccessible(*widget)
                                                              : nullptr;
}

} // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role, int level)
{
    static const bool isInstalled = (QAccessible::installFactory(roleAccessible), true);
    Q_UNUSED(isInstalled)
    widget.setProperty(roleProperty, static_cast<int>(role));
    widget.setProperty(levelProperty, level);
    renewAccessible(widget);
}

void renewAccessible(QWidget& widget)
{
    if (QAccessibleInterface* known = QAccessible::queryAccessibleInterface(&widget))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(known));
}

void setAccessiblyCurrent(QWidget& widget, bool isCurrent)
{
    if (widget.property(currentProperty) == QVariant(isCurrent))
        return;
    widget.setProperty(currentProperty, isCurrent);
    if (!QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.selected = changed.active = true;
    QAccessibleStateChangeEvent event(&widget, changed);
    QAccessible::updateAccessibility(&event);
}

void pointOut(QWidget& widget)
{
    pointedOut() = &widget;
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&widget, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void announce(QWidget& widget)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&widget, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&event);
}

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
QList<QAccessible::Attribute> AccessibleLevel::attributeKeys() const
{
    return {QAccessible::Attribute::Level};
}

QVariant AccessibleLevel::attributeValue(QAccessible::Attribute key) const
{
    return key == QAccessible::Attribute::Level ? QVariant(m_level) : QVariant();
}

void* AccessibleLevel::levelInterface(QAccessible::InterfaceType type)
{
    const bool isAsked = type == QAccessible::AttributesInterface && m_level > 0;
    return isAsked ? static_cast<QAccessibleAttributesInterface*>(this) : nullptr;
}
#else
QString AccessibleLevel::levelDescription() const
{
    return m_level > 0
               ? QCoreApplication::translate("varno::AccessibleLevel", "Level %1").arg(m_level)
               : QString();
}
#endif

} // namespace varno
