#pragma once

#include <QWidget>

#include <functional>

namespace varno {

/// The lengths of a strip of rows, in points.
struct WrappingLengths {
    int rowHeight = 30;
    int rowGap = 8;
    int itemGap = 8;
};

/// A widget that lays its children out in rows and has their height. A child that can shrink is
/// never wider than a row.
class WrappingRows : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    struct Child {
        QWidget* widget = nullptr;
        bool equalsLast = false;
    };

    /// Replaces the children, and owns the new ones.
    void setChildren(const QList<Child>& children);

    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QList<QRect> place(int available) const;
    void layOut();

    QList<Child> m_children;
};

/// A widget for each item, wrapped into rows.
template <typename Item>
class WrappingHStack final : public WrappingRows {
public:
    using Content = std::function<QWidget*(const Item& item)>;

    /// `content` makes the widget of an item; the strip owns it.
    explicit WrappingHStack(Content content, QWidget* parent = nullptr)
        : WrappingRows(parent)
        , m_content(std::move(content))
    {
    }

    void setItems(const QList<Item>& items)
    {
        QList<Child> children;
        for (const Item& item : items)
            children.append({.widget = m_content(item), .equalsLast = item == items.constLast()});
        setChildren(children);
    }

private:
    Content m_content;
};

} // namespace varno
