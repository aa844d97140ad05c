#pragma once

#include "kit/Theme.h"
#include "reader/EntryView.h"
#include "tests/ControllerFixture.h"
#include "tests/Patience.h"
#include "tests/ScreenReading.h"

#include <QLineEdit>
#include <QScrollBar>
#include <QVBoxLayout>

namespace varno {

inline constexpr QLatin1StringView relatedTopicsLine =
    "\nSEE_ALSO_JSON: [\"Carthage\", \"Latin\"]"_L1;

/// A text much longer than the screen.
inline QString longText()
{
    QString text;
    for (int i = 0; i < 60; ++i)
        text += u"Paragraph %1 tells of Rome, and is long enough to take several lines of the "
                u"column, whatever the size of its text may be.\n\n"_s.arg(i);
    return text;
}

/// The screen in its window, on a controller of its own.
struct Screen : ControllerFixture {
    Screen()
    {
        setTheme(window, AppTheme::cream);
        window.setLayout(new QVBoxLayout);
        window.layout()->setContentsMargins(0, 0, 0, 0);
        window.layout()->addWidget(&view);
        window.resize(700, 500);
        window.show();
        view.setFocus();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not become active");
    }

    template <typename Widget>
    [[nodiscard]] Widget& part() const
    {
        return *view.findChild<Widget*>();
    }
    template <typename Widget>
    [[nodiscard]] QRect place() const
    {
        return {part<Widget>().mapTo(&view, QPoint()), part<Widget>().size()};
    }
    [[nodiscard]] PlainButton* button(const QString& name) const
    {
        return shownButton<PlainButton>(view, name);
    }
    void press(const QString& name) const
    {
        QVERIFY2(button(name), qPrintable(name));
        QTest::mouseClick(button(name), Qt::LeftButton);
    }
    /// Sends a key to whoever has the focus.
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    [[nodiscard]] bool showsText(const QString& text) const { return shownText(view, text); }
    [[nodiscard]] QScrollBar& scrollBar() const
    {
        return *part<ReadingColumn>().verticalScrollBar();
    }
    [[nodiscard]] qsizetype shownLength() const { return part<ReadingColumn>().textLength(); }
    void find(const QString& text)
    {
        model->setShowingFind(true);
        QTest::keyClicks(QApplication::focusWidget(), text);
    }
    /// Leads the pressed pointer over `widget`, to a place of the window.
    void drag(QWidget& widget, const QPoint& place) const
    {
        const QPoint position = widget.mapFrom(&window, place);
        QMouseEvent move(QEvent::MouseMove, position, widget.mapToGlobal(position), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &move);
    }

    QWidget window;
    EntryView view{*model};
};

} // namespace varno
