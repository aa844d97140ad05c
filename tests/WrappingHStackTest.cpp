#include "reader/WrappingHStack.h"

#include "tests/Test.h"

class WrappingHStackTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void positions()
    {
        QList<QWidget*> boxes;
        WrappingHStack<int> stack([&](int width) {
            auto* box = boxes.emplace_back(new QWidget);
            box->setFixedSize(width, 30);
            return box;
        });
        stack.resize(100, 10);
        for (const auto& [items, positions, height] : Rows<QList<int>, QList<QPoint>, int>{
                 {{30, 28, 26}, {{0, 0}, {38, 0}, {74, 0}}, 30},
                 {{41, 51}, {{0, 0}, {49, 0}}, 30}, // ends at the edge
                 {{42, 51}, {{0, 0}, {0, 38}}, 68},
                 {{60, 61, 62}, {{0, 0}, {0, 38}, {0, 76}}, 106},
                 {{101, 20}, {{0, 38}, {0, 76}}, 106}, // too wide for the first row
                 {{60, 50, 20, 30, 50}, {{0, 0}, {0, 38}, {0, 0}, {28, 0}, {0, 38}}, 68},
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
        stack.setItems({30, 40});
        stack.setLayoutDirection(Qt::RightToLeft);
        QTRY_COMPARE(boxes.constLast()->pos(), QPoint(22, 0));
    }
};

VARNO_TEST(QApplication, WrappingHStackTest)
#include "WrappingHStackTest.moc"
