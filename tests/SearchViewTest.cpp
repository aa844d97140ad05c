#include "app/SearchView.h"

#include "app/RowButton.h"
#include "platform/fake/FakeAnimationSetting.h"
#include "tests/ControllerFixture.h"
#include "tests/ScreenReading.h"
#include "tests/Test.h"
#include "tests/TestKeychain.h"

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>

namespace {

const QString warning = u"Add your Anthropic API key in Settings to get started."_s;

/// The screen after `searches`, which were made one after the other.
struct SearchFixture : ControllerFixture {
    explicit SearchFixture(int searches = 0)
    {
        for (int number = 1; number <= searches; ++number)
            write(u"query %1"_s.arg(number));
        model->newSearch();
        motion.set(false);
        setTheme(view, AppTheme::cream);
        view.resize(860, 620);
        show();
    }

    void show()
    {
        view.hide();
        view.show();
        if (!QTest::qWaitForWindowActive(&view))
            qFatal("the screen does not become active");
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
    FakeAnimationSetting motion;
    SearchView view{*model, keys, [this] { return label; }, nullptr, motion};
};

} // namespace

class SearchViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void returnSearches()
    {
        for (const auto& [typed, searched] : Rows<QString, QString>{
                 {u"  \t \u2003"_s, u""_s}, {u"  black holes \t"_s, u"black holes"_s}}) {
            const InRow row(typed);
            const SearchFixture f;
            f.field().setText(typed);
            QTest::keyClick(&f.field(), Qt::Key_Return);
            QCOMPARE(f.model->isShowingEntry(), !searched.isEmpty());
            QCOMPARE(f.model->searchHistory().value(0), searched);
            QCOMPARE(f.field().text(), typed); // as it is, while the screen fades
        }
    }

    void recentSearches()
    {
        for (const int count : {0, 12}) {
            const InRow row(count);
            const SearchFixture f(count);
            QStringList newestFirst;
            for (int number = count; number > 0 && newestFirst.size() < 8; --number)
                newestFirst.append(u"query %1"_s.arg(number));
            QCOMPARE(f.rows(), newestFirst);
            QCOMPARE(shownText(f.view, u"RECENT"_s) != nullptr, count > 0);
            QCOMPARE(shownButton(f.view, u"Clear"_s) != nullptr, count > 0);
        }
        SearchFixture f(3);
        shownButton(f.view, u"query 1"_s)->click();
        QVERIFY(f.model->isShowingEntry());
        QCOMPARE(f.model->streamingTitle(), u"Query 1"_s);
        QCOMPARE(f.field().text(), u"query 1"_s);
        f.model->newSearch();
        QCOMPARE(f.field().text(), QString());
        QCOMPARE(f.rows(), QStringList({u"query 1"_s, u"query 3"_s, u"query 2"_s}));

        shownButton(f.view, u"Clear"_s)->click();
        QVERIFY(f.model->searchHistory().isEmpty());
        QCOMPARE(f.rows(), QStringList());
        QVERIFY(!shownText(f.view, u"RECENT"_s));
    }

    void typingTakesThePlaceOfRecentSearches()
    {
        const SearchFixture f(2);
        QVERIFY(f.field().hasFocus());
        QTest::keyClicks(&f.field(), u"one two"_s);
        QCOMPARE(f.rows(), QStringList());
        shownButton(f.view, u"Clear the search"_s)->click();
        QCOMPARE(f.field().text(), QString());
        QVERIFY(f.field().hasFocus());
        QCOMPARE(f.rows().size(), 2);
        QVERIFY(!shownButton(f.view, u"Clear the search"_s));
    }

    void fieldGlidesToItsPlace()
    {
        for (const bool wantsMotion : {true, false}) {
            const InRow row(wantsMotion);
            SearchFixture alone;
            SearchFixture f(8);
            QTRY_VERIFY(shownText(f.view, warning) && shownText(alone.view, warning));
            f.motion.set(wantsMotion);
            const QWidget& place = *f.view.findChild<SearchList*>()->parentWidget();
            const auto top = [](const SearchFixture& fixture) {
                QCoreApplication::processEvents();
                return fixture.field().mapTo(&fixture.view, QPoint()).y();
            };
            const int above = top(f);
            const int centred = top(alone);
            QVERIFY(centred > above + 100);
            for (const auto& [typed, count] :
                 Rows<QString, int>{{u"query"_s, 8}, {u" 3"_s, 1}, {u"3"_s, 0}}) {
                QCOMPARE(top(f), above); // while there is something to choose from
                QTest::keyClicks(&f.field(), typed);
                QCOMPARE(f.rows().size(), count);
            }
            QVERIFY(place.height() > 100); // not at once
            if (wantsMotion)
                QTRY_COMPARE(top(f), centred);
            QCOMPARE(top(f), wantsMotion ? centred : above);
            f.show();
            QTRY_COMPARE(top(f), centred);
            f.field().clear();
            QTRY_COMPARE(top(f), above);
            QCOMPARE(f.rows().size(), 8);
        }
    }

    void arrowsWalkTheRows()
    {
        for (const auto& [typed, downs, ups, opened] :
             Rows<QString, int, int, QString>{{u""_s, 3, 1, u"Query 9"_s},
                                              {u"1 QUE"_s, 9, 0, u"Query 1"_s}, // the last of two
                                              {u"9"_s, 1, 2, u"9"_s}}) {
            const InRow row(typed);
            SearchFixture f(9);
            f.write(u"query 10"_s);
            f.model->newSearch();
            QTest::keyClicks(&f.field(), typed);
            const std::size_t requests = f.claude.entries.size();
            for (int i = 0; i < downs + ups; ++i)
                QTest::keyClick(&f.field(), i < downs ? Qt::Key_Down : Qt::Key_Up);
            QString selected = u"9"_s;
            for (RowButton* each : shown<RowButton>(f.view)) {
                const auto& accessible = *QAccessible::queryAccessibleInterface(each);
                QCOMPARE(accessible.role(), QAccessible::ListItem);
                if (accessible.state().selected && accessible.state().focused)
                    selected = accessible.text(QAccessible::Name);
            }
            QCOMPARE(selected, opened.toLower());
            QVERIFY(f.field().hasFocus());
            QTest::keyClick(&f.field(), Qt::Key_Return);
            QCOMPARE(f.model->streamingTitle(), opened);
            QCOMPARE(f.claude.entries.size(), requests + (opened == typed ? 1 : 0));
            QCOMPARE(f.rows().isEmpty(), opened != typed); // it was chosen from them
        }
    }

    void keptEntriesMatchWhatIsTyped()
    {
        SearchFixture f;
        for (const QString& query : {u"Ärzte"_s, u"The fall of Rome"_s, u"rome"_s, u"日本の歴史"_s})
            f.write(query);
        f.model->newSearch();
        for (const auto& [typed, rows] :
             Rows<QString, QStringList>{{u"ROME"_s, {u"rome"_s, u"The fall of Rome"_s}},
                                        {u" rome  fal"_s, {u"The fall of Rome"_s}},
                                        {u"歴史"_s, {u"日本の歴史"_s}},
                                        {u"äRZ"_s, {u"Ärzte"_s}},
                                        {u"romes"_s, {}},
                                        {u"  "_s, {}}}) {
            const InRow row(typed);
            f.field().setText(typed);
            QCOMPARE(f.rows(), rows);
            QCOMPARE(shownText(f.view, u"KEPT ENTRIES"_s) != nullptr, !rows.isEmpty());
        }
    }

    void warnsWhileThereIsNoKey()
    {
        SearchFixture f;
        QTRY_COMPARE(shownTexts(f.view).first(3),
                     QStringList({u"VARNO"_s, u"An AI Encyclopedia"_s, warning}));
        f.keychain.save(u"a key"_s, f.keychain.geminiAccount); // whichever model is chosen
        f.show();
        QTRY_VERIFY(shownText(f.view, warning));
        f.keychain.save(u"a key"_s, f.keychain.anthropicAccount);
        f.show();
        QTRY_VERIFY(!shownText(f.view, warning));
    }

    void typingPreparesTheServiceOfTheModel()
    {
        SearchFixture f;
        QTRY_VERIFY(shownText(f.view, warning)); // it knows that there is no key
        QTest::keyClick(&f.field(), Qt::Key_A);
        QCOMPARE(f.claude.preparations.size(), 0);
        for (const auto& [model, service, account] :
             Rows<AIModel, const ModelServiceByHand*, QString>{
                 {AIModel::haiku, &f.claude, f.keychain.anthropicAccount},
                 {AIModel::geminiFlash, &f.gemini, f.keychain.geminiAccount}}) {
            f.model->setAIModel(model);
            f.keychain.save(u"a key"_s, account);
            f.show();
            QCOMPARE(service->preparations.size(), 0); // before a letter is typed
            QTRY_VERIFY(
                (QTest::keyClick(&f.field(), Qt::Key_A), service->preparations.size() == 1));
            QTest::keyClick(&f.field(), Qt::Key_B); // once is enough
            QTest::keyClick(&f.field(), Qt::Key_Return);
            QCOMPARE(service->entries.size(), 1);
            QVERIFY(!service->preparations.front().stop_requested());
            f.model->setAIModel(AIModel::opus);
            QVERIFY(service->preparations.front().stop_requested());
            QCOMPARE(service->preparations.size(), 1);
            f.model->newSearch();
        }
    }

    void followsShortcutAndTextSize()
    {
        SearchFixture f;
        QVERIFY(shownText(f.view, u"⌘K  New search"_s));
        f.label = u"⌥⌘F"_s;
        f.show();
        const auto* bar = shownText(f.view, u"⌘K  New search    ⌥⌘F  Open from anywhere"_s);
        QVERIFY(bar);
        QCOMPARE(bar->toolTip(), u"Ctrl+K  New search\nAlt+Super+F  Open from anywhere"_s);
        shownButton(f.view, u"Settings"_s)->click();
        QVERIFY(f.model->isShowingSettings());
        f.model->setFontSize(FontSize::large);
        QCOMPARE(f.field().font().pixelSize(), 19);
    }
};

VARNO_TEST(QApplication, SearchViewTest)
#include "SearchViewTest.moc"
