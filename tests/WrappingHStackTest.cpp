#include "reader/WrappingHStack.h"

#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

/// A box that is as wide as its number says.
QWidget* box(int width)
{
    auto* widget = new QWidget;
    widget->setFixedSize(width, 30);
    return widget;
}

/// A box that would like to be that wide.
class Shrinkable : public QWidget {
public:
    explicit Shrinkable(int width)
        : m_width(width)
    {
    }
    [[nodiscard]] QSize sizeHint() const override { return {m_width, 20}; }

private:
    int m_width;
};

} // namespace

class WrappingHStackTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void positions_data()
    {
        QTest::addColumn<QList<int>>("items"); // widths; equal widths are equal items
        QTest::addColumn<QList<QPoint>>("positions");
        QTest::addColumn<int>("height");
        using Widths = QList<int>;
        using Points = QList<QPoint>;

        QTest::newRow("empty") << Widths() << Points() << 0;
        QTest::newRow("one row") << Widths{30, 28, 26} << Points{{0, 0}, {38, 0}, {74, 0}} << 30;
        QTest::newRow("ends at the edge") << Widths{41, 51} << Points{{0, 0}, {49, 0}} << 30;
        QTest::newRow("one point too wide") << Widths{42, 51} << Points{{0, 0}, {0, 38}} << 68;
        QTest::newRow("three rows")
            << Widths{60, 61, 62} << Points{{0, 0}, {0, 38}, {0, 76}} << 106;
        QTest::newRow("as wide as all") << Widths{100} << Points{{0, 0}} << 30;
        QTest::newRow("first too wide") << Widths{101, 20} << Points{{0, 38}, {0, 76}} << 106;
        QTest::newRow("only one, too wide") << Widths{150} << Points{{0, 38}} << 68;
        QTest::newRow("later too wide")
            << Widths{20, 150, 30} << Points{{0, 0}, {0, 38}, {0, 76}} << 106;
        QTest::newRow("equal to the last")
            << Widths{60, 50, 20, 30, 50} << Points{{0, 0}, {0, 38}, {0, 0}, {28, 0}, {0, 38}}
            << 68;
        QTest::newRow("all equal") << Widths{20, 20, 20} << Points{{0, 0}, {0, 0}, {0, 0}} << 30;
    }
    void positions()
    {
        QFETCH(QList<int>, items);
        QFETCH(QList<QPoint>, positions);
        QList<QWidget*> boxes;
        WrappingHStack<int> stack([&](int width) { return boxes.emplace_back(box(width)); });
        stack.resize(100, 10);
        stack.setItems(items);

        QList<QPoint> found;
        for (const QWidget* widget : boxes)
            found.append(widget->pos());
        QCOMPARE(found, positions);
        QTEST(stack.heightForWidth(100), "height");
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
        QWidget* item = nullptr;
        WrappingHStack<QString> stack(
            [&](const QString&) -> QWidget* { return item = new Shrinkable(500); });
        stack.resize(100, 10);
        stack.setItems({u"Long"_s});
        QCOMPARE(item->geometry(), QRect(0, 0, 100, 20));
        QCOMPARE(stack.heightForWidth(100), 20);
    }

    void otherItemsReplaceThoseBefore()
    {
        WrappingHStack<int> stack(box);
        stack.resize(100, 10);
        stack.setItems({60, 61});
        stack.setItems({62});
        QCOMPARE(stack.heightForWidth(100), 30);
        QTRY_COMPARE(stack.children().size(), 1);
        stack.setItems({});
        QCOMPARE(stack.heightForWidth(100), 0);
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
