#pragma once

#include <QAccessible>

class QWidget;

namespace varno {

/// Tells assistive technology what a widget is, where its class does not. `level` is that of a
/// heading, from 1 on.
void setAccessibleRole(QWidget& widget, QAccessible::Role role, int level = 0);

/// Drops what assistive technology took the widget for so far: the toolkit asks early, nobody
/// listening, when it is told a name.
void renewAccessible(QWidget& widget);

/// Says whether the widget is the current one of its list; it has a role of its own.
void setAccessiblyCurrent(QWidget& widget, bool isCurrent);

/// Leads assistive technology to a widget, while the keyboard stays where it is.
void pointOut(QWidget& widget);

/// Has assistive technology read the name of the widget out, wherever the focus is. Its role is
/// `QAccessible::Notification`; nothing happens while nobody listens.
void announce(QWidget& widget);

/// The level of a heading, as far as the toolkit can tell it by itself.
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
class AccessibleLevel : public QAccessibleAttributesInterface {
public:
    explicit AccessibleLevel(int level)
        : m_level(level)
    {
    }
    virtual ~AccessibleLevel() = default;
    Q_DISABLE_COPY_MOVE(AccessibleLevel)

    [[nodiscard]] QList<QAccessible::Attribute> attributeKeys() const override;
    [[nodiscard]] QVariant attributeValue(QAccessible::Attribute key) const override;
    /// For `interface_cast`: null for all other types, and where there is no level.
    [[nodiscard]] void* levelInterface(QAccessible::InterfaceType type);
    /// What else tells the level.
    [[nodiscard]] QString levelDescription() const { return {}; }

private:
    int m_level;
};
#else
class AccessibleLevel {
public:
    explicit AccessibleLevel(int level)
        : m_level(level)
    {
    }
    [[nodiscard]] static void* levelInterface(QAccessible::InterfaceType) { return nullptr; }
    [[nodiscard]] QString levelDescription() const;

private:
    int m_level;
};
#endif

} // namespace varno
