#include "reader/WrappingHStack.h"

#include "tests/Test.h"

namespace {

/// A box that is as wide as its number says.
QWidget* box(int width)
{
    auto* widget = new QWidget;
    widget->setFixedSize(width, 30);
    return widget;
}

/// A box that would like to be wide.
class Shrinkable : public QWidget {
public:
    [[nodiscard]] QSize sizeHint() const override { return {500, 20}; }
};

} // namespace

class WrappingHStackTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void positions()
    {
        QList<QWidget*> boxes;
        WrappingHStack<int> stack([&](int width) { return boxes.emplace_back(box(width)); });
        stack.resize(100, 10);
        for (const auto& [items, positions, height] : Rows<QList<int>, QList<QPoint>, int>{
                 {{30, 28, 26}, {{0, 0}, {38, 0}, {74, 0}}, 30},
                 {{41, 51}, {{0, 0}, {49, 0}}, 30}, // ends at the edge
                 {{42, 51}, {{0, 0}, {0, 38}}, 68},
                 {{60, 61, 62}, {{0, 0}, {0, 38}, {0, 76}}, 106},
                 {{100}, {{0, 0}}, 30},
                 {{101, 20}, {{0, 38}, {0, 76}}, 106}, // too wide for the first row
                 {{20, 150, 30}, {{0, 0}, {0, 38}, {0, 76}}, 106},
                 {{60, 50, 20, 30, 50}, {{0, 0}, {0, 38}, {0, 0}, {28, 0}, {0, 38}}, 68},
                 {{20, 20, 20}, {{0, 0}, {0, 0}, {0, 0}}, 30},
                 {{}, {}, 0}}) {
            const InRow row(items);
            boxes.clear();
            stack.setItems(items);
            QList<QPoint> found;
            for (const QWidget* widget : boxes)
                found.append(widget->pos());
            QCOMPARE(found, positions);
            QCOMPARE(stack.heightForWidth(100), height);
            QTRY_COMPARE(stack.children().size(), items.size()); // those before are gone
        }
    }

    void narrowerWidthNeedsMoreRows()
    {
        WrappingHStack<int> stack(box);
        stack.setItems({40, 41, 42});
        QCOMPARE(stack.heightForWidth(139), 30);
        QCOMPARE(stack.heightForWidth(138), 68);
        QCOMPARE(stack.heightForWidth(80), 106);
    }

    void shrinkableItemStaysInItsRow()
    {
        WrappingHStack<int> stack([](int) { return new Shrinkable; });
        stack.resize(100, 10);
        stack.setItems({1});
        QCOMPARE(stack.findChild<QWidget*>()->geometry(), QRect(0, 0, 100, 20));
        QCOMPARE(stack.heightForWidth(100), 20);
    }

    void mirroredForRightToLeft()
    {
        QList<QWidget*> boxes;
        WrappingHStack<int> stack([&](int width) { return boxes.emplace_back(box(width)); });
        stack.setLayoutDirection(Qt::RightToLeft);
        stack.resize(100, 30);
        stack.setItems({30, 40});
        QCOMPARE(boxes.at(0)->pos(), QPoint(70, 0));
        QCOMPARE(boxes.at(1)->pos(), QPoint(22, 0));
    }
};

VARNO_TEST(QApplication, WrappingHStackTest)
#include "WrappingHStackTest.moc"
