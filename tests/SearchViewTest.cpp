#include "app/SearchView.h"

#include "app/RowButton.h"
#include "tests/ControllerFixture.h"
#include "tests/ScreenReading.h"
#include "tests/TestKeychain.h"
#include "tests/TestMain.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollBar>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

const QString warning = u"Add your Anthropic API key in Settings to get started."_s;

struct SearchFixture : ControllerFixture {
    SearchFixture()
    {
        setTheme(view, AppTheme::cream);
        view.resize(860, 620);
    }

    /// As if these had been typed, the last one first.
    void searched(const QStringList& queries)
    {
        for (const QString& query : queries)
            write(query);
        model->newSearch();
    }
    void show()
    {
        view.show();
        if (!QTest::qWaitForWindowActive(&view))
            qFatal("the screen does not become active");
    }
    void reopen()
    {
        view.hide();
        show();
    }

    [[nodiscard]] QLineEdit& field() const { return *view.findChild<QLineEdit*>(); }
    [[nodiscard]] QStringList rows() const
    {
        QStringList names;
        for (const RowButton* row : shown<RowButton>(view))
            names.append(row->accessibleName());
        return names;
    }

    KeychainService& keychain = newKeychain();
    KeychainTasks keys{keychain};
    QString label;
    SearchView view{*model, keys, [this] { return label; }};
};

QStringList numbered(int count)
{
    QStringList queries;
    for (int i = 1; i <= count; ++i)
        queries.append(u"query %1"_s.arg(i));
    return queries;
}

} // namespace

class SearchViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looksAsDesigned();
    void returnSearches_data();
    void returnSearches();
    void recentSearches_data();
    void recentSearches();
    void aRecentSearchIsMadeAgain();
    void typingTakesThePlaceOfRecentSearches();
    void clearEmptiesTheHistory();
    void warnsWhileThereIsNoKey();
    void bottomBarTellsTheShortcut();
    void textSizeFollowsTheSetting_data();
    void textSizeFollowsTheSetting();
    void aLowPanelShowsAllByScrolling();
    void worksByKeyboard();
};

void SearchViewTest::looksAsDesigned()
{
    SearchFixture f;
    f.searched({u"rome"_s});
    f.show();
    const ThemedText& title = *shownText(f.view, u"VARNO"_s);
    const ThemedText& subtitle = *shownText(f.view, u"An AI Encyclopedia"_s);
    const auto& box = *f.view.findChild<SearchBox*>();
    const auto& recent = *f.view.findChild<RecentSearches*>();
    const auto top = [&f](const QWidget& widget) { return widget.mapTo(&f.view, QPoint()).y(); };
    const auto bottom = [&](const QWidget& widget) { return top(widget) + widget.height(); };
    QCOMPARE(top(subtitle) - bottom(title), 8);
    QCOMPARE(top(box) + SearchBox::shadowRoom - bottom(subtitle), 40);
    QCOMPARE(box.width() - 2 * SearchBox::shadowRoom, 560);
    QCOMPARE(recent.width(), 560);
    QCOMPARE(recent.mapTo(&f.view, QPoint()).x(),
             box.mapTo(&f.view, QPoint()).x() + SearchBox::shadowRoom);
    QTRY_COMPARE(shownTexts(f.view).first(3),
                 QStringList({u"VARNO"_s, u"An AI Encyclopedia"_s, warning}));

    // The frame, whose colour tells whether the field has the keyboard.
    const QPoint edge = box.mapTo(&f.view, QPoint(SearchBox::shadowRoom, box.height() / 2));
    QCOMPARE(f.view.grab().toImage().pixelColor(edge).name(), u"#2d5016"_s);
    f.field().clearFocus();
    QCOMPARE(f.view.grab().toImage().pixelColor(edge).name(), u"#c4a882"_s);
}

void SearchViewTest::returnSearches_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("searched");
    QTest::newRow("nothing") << u""_s << u""_s;
    QTest::newRow("blanks") << u"  \t \u2003"_s << u""_s;
    QTest::newRow("word") << u"rome"_s << u"rome"_s;
    QTest::newRow("with blanks around") << u"  black holes \t"_s << u"black holes"_s;
}

void SearchViewTest::returnSearches()
{
    QFETCH(const QString, typed);
    QFETCH(const QString, searched);
    SearchFixture f;
    f.show();
    f.field().setText(typed);
    QTest::keyClick(&f.field(), Qt::Key_Return);
    QCOMPARE(f.model->isShowingEntry(), !searched.isEmpty());
    QCOMPARE(f.model->searchHistory().value(0), searched);
    QCOMPARE(f.field().text(), typed); // as it is, while the screen fades
}

void SearchViewTest::recentSearches_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("rowCount");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("eight") << 8 << 8;
    QTest::newRow("more than there is room for") << 12 << 8;
}

void SearchViewTest::recentSearches()
{
    QFETCH(const int, count);
    QFETCH(const int, rowCount);
    SearchFixture f;
    f.searched(numbered(count));
    f.show();
    QStringList newestFirst = numbered(count);
    std::reverse(newestFirst.begin(), newestFirst.end());
    QCOMPARE(f.rows(), newestFirst.first(rowCount));
    QCOMPARE(shownText(f.view, u"RECENT"_s) != nullptr, rowCount > 0);
    QCOMPARE(shownButton(f.view, u"Clear"_s) != nullptr, rowCount > 0);
}

void SearchViewTest::aRecentSearchIsMadeAgain()
{
    SearchFixture f;
    f.searched(numbered(3));
    f.show();
    shownButton(f.view, u"query 1"_s)->click();
    QVERIFY(f.model->isShowingEntry());
    QCOMPARE(f.model->streamingTitle(), u"Query 1"_s);
    QCOMPARE(f.field().text(), u"query 1"_s);
    f.model->newSearch();
    QCOMPARE(f.field().text(), QString());
    QCOMPARE(f.rows(), QStringList({u"query 1"_s, u"query 3"_s, u"query 2"_s}));

    const QString topic(longestSearch + 1, u'x');
    f.searched({topic});
    shown<RowButton>(f.view).constFirst()->click();
    QCOMPARE(f.model->session()->rootQuery, topic);
}

void SearchViewTest::typingTakesThePlaceOfRecentSearches()
{
    SearchFixture f;
    f.searched(numbered(2));
    f.show();
    QTest::keyClicks(&f.field(), u"r"_s);
    QCOMPARE(f.rows(), QStringList());
    shownButton(f.view, u"Clear the search"_s)->click();
    QCOMPARE(f.field().text(), QString());
    QVERIFY(f.field().hasFocus());
    QCOMPARE(f.rows().size(), 2);
    QVERIFY(!shownButton(f.view, u"Clear the search"_s));
}

void SearchViewTest::clearEmptiesTheHistory()
{
    SearchFixture f;
    f.searched(numbered(3));
    f.show();
    shownButton(f.view, u"Clear"_s)->click();
    QVERIFY(f.model->searchHistory().isEmpty());
    QCOMPARE(f.rows(), QStringList());
    QVERIFY(!shownText(f.view, u"RECENT"_s));
}

void SearchViewTest::warnsWhileThereIsNoKey()
{
    SearchFixture f;
    f.keychain.save(u"a key"_s, f.keychain.geminiAccount); // whichever model is chosen
    f.show();
    QTRY_VERIFY(shownText(f.view, warning));
    f.keychain.save(u"a key"_s, f.keychain.anthropicAccount);
    f.reopen();
    QTRY_VERIFY(!shownText(f.view, warning));
    f.keychain.remove(f.keychain.anthropicAccount);
    f.reopen();
    QTRY_VERIFY(shownText(f.view, warning));
}

void SearchViewTest::bottomBarTellsTheShortcut()
{
    SearchFixture f;
    f.show();
    QVERIFY(shownText(f.view, u"⌘K  New search"_s));
    f.label = u"⌥⌘F"_s;
    f.reopen();
    QVERIFY(shownText(f.view, u"⌘K  New search    ⌥⌘F  Open from anywhere"_s));
    QAbstractButton* const settings = shownButton(f.view, u"Settings"_s);
    QCOMPARE(settings->toolTip(), u"Settings"_s);
    settings->click();
    QVERIFY(f.model->isShowingSettings());
}

void SearchViewTest::textSizeFollowsTheSetting_data()
{
    QTest::addColumn<FontSize>("size");
    QTest::addColumn<int>("pixels");
    QTest::newRow("small") << FontSize::small << 14;
    QTest::newRow("medium") << FontSize::medium << 16;
    QTest::newRow("large") << FontSize::large << 19;
}

void SearchViewTest::textSizeFollowsTheSetting()
{
    QFETCH(const FontSize, size);
    QFETCH(const int, pixels);
    SearchFixture f;
    f.show();
    f.model->setFontSize(size);
    QCOMPARE(f.field().font().pixelSize(), pixels);
}

void SearchViewTest::aLowPanelShowsAllByScrolling()
{
    SearchFixture f;
    f.searched(numbered(8));
    f.view.resize(640, 440);
    f.show();
    const auto& area = *f.view.findChild<QScrollArea*>();
    QTRY_VERIFY(area.verticalScrollBar()->maximum() > 0);
    for (const RowButton* row : shown<RowButton>(f.view)) {
        QVERIFY(row->width() <= area.viewport()->width());
        QVERIFY(row->height() >= row->sizeHint().height());
    }
}

void SearchViewTest::worksByKeyboard()
{
    SearchFixture f;
    f.searched(numbered(1));
    f.show();
    QVERIFY(f.field().hasFocus());
    QTest::keyClicks(&f.field(), u"one two"_s);
    QTest::keyClick(&f.field(), Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(f.field().cursorPosition(), 4); // words, as in any field
    QTest::keyClick(&f.field(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(f.field().text() != u"one two"_s);
}

VARNO_TEST(QApplication, SearchViewTest)
#include "SearchViewTest.moc"
