#pragma once

#include <QBoxLayout>

#include <functional>
#include <initializer_list>

namespace varno {

/// An item of a row or a column: a widget, a nested layout, or empty space. A widget narrower than
/// its column, or lower than its row, is centred in it. Space that is left over is spread between
/// the items: end with `stretch()`, or let one of them `grow`.
///
///     setLayout(column({.spacing = 12}, {
///         m_title,
///         row({.spacing = 8}, {grow(m_query), m_clear}),
///         stretch(),
///     }));
class LayoutItem {
public:
    LayoutItem(QWidget& widget); // NOLINT(google-explicit-constructor): reads as a list of things
    LayoutItem(QLayout* nested); // NOLINT(google-explicit-constructor): as above; takes ownership

    void addTo(QBoxLayout& layout) const { m_add(layout); }

private:
    explicit LayoutItem(std::function<void(QBoxLayout&)> add);
    friend LayoutItem grow(QWidget& widget);
    friend LayoutItem aligned(QWidget& widget, Qt::Alignment alignment);
    friend LayoutItem gap(int points);
    friend LayoutItem stretch();

    std::function<void(QBoxLayout&)> m_add;
};

/// An item that takes the space that is left.
[[nodiscard]] LayoutItem grow(QWidget& widget);
/// An item of its own size, at that edge of the space it is given.
[[nodiscard]] LayoutItem aligned(QWidget& widget, Qt::Alignment alignment);
/// Empty space of a fixed length, in addition to the spacing.
[[nodiscard]] LayoutItem gap(int points);
/// Empty space that takes what is left.
[[nodiscard]] LayoutItem stretch();

/// The space around the items and between them, in points.
struct Spacing {
    int spacing = 0;
    int horizontal = 0; ///< padding left and right
    int vertical = 0;   ///< padding above and below
};

/// The result belongs to the caller, or to the layout it is added to.
[[nodiscard]] QBoxLayout* row(const Spacing& spacing, std::initializer_list<LayoutItem> items);
[[nodiscard]] QBoxLayout* column(const Spacing& spacing, std::initializer_list<LayoutItem> items);

} // namespace varno
