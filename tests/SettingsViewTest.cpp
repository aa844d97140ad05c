#include "app/InAppSettingsView.h"
#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/fake/FakePreferencesStore.h"
#include "recorder/RefusalNotice.h"
#include "tests/ControllerFixture.h"
#include "tests/Scarcity.h"
#include "tests/ScreenReading.h"
#include "tests/Test.h"
#include "tests/TestKeychain.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QMenu>

namespace {

const QString storedText = u"A key is stored in your Keychain. Click Show to reveal it."_s;
const QString noStoreText = u"No key store answers on this system, so keys cannot be kept."_s;

struct SettingsFixture : ControllerFixture {
    SettingsFixture()
    {
        setTheme(view, AppTheme::cream);
        view.resize(860, 1400);
        show();
    }

    void show()
    {
        view.show();
        if (!QTest::qWaitForWindowActive(&view))
            qFatal("the screen does not become active");
    }

    KeychainService& keychain = newKeychain();
    KeychainTasks keys{keychain};
    FakePreferencesStore preferences;
    FakeHotKeyEvents events;
    FakeKeyboard keyboard;
    KeyboardShortcuts shortcuts{preferences, events, keyboard};
    KeyboardShortcuts::Name openVarno{u"openVarno"_s, Shortcut(Key::f, Modifier::command),
                                      shortcuts};
    InAppSettingsView view{
        *model,
        keys,
        {.label = {},
         .makeRecorder = [] { return new QWidget; },
         .makeNotice = [this] { return new RefusalNotice(openVarno, shortcuts); }}};
};

/// One of the two rows of keys, which are alike.
struct KeyFixture : SettingsFixture {
    explicit KeyFixture(bool isGemini)
        : account(isGemini ? keychain.geminiAccount : keychain.anthropicAccount)
        , row(*view.findChildren<APIKeyRow*>().at(isGemini ? 1 : 0))
        , field(*row.findChild<KeyField*>())
    {
    }

    void store()
    {
        keychain.save(u"stored"_s, account);
        view.hide();
        show();
        QTRY_VERIFY(shows(storedText));
    }
    void press(const QString& name) const
    {
        QTRY_VERIFY(shownButton(row, name) && shownButton(row, name)->isEnabled());
        shownButton(row, name)->click();
    }
    [[nodiscard]] bool shows(const QString& text) const { return shownText(row, text); }
    [[nodiscard]] bool isClosed() const { return field.text().isEmpty() && !field.isRevealed(); }

    QString account;
    APIKeyRow& row;
    KeyField& field;
};

} // namespace

class SettingsViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasItsTextsInOrder()
    {
        const SettingsFixture f;
        const QString expected =
            u"SETTINGS|Anthropic API Key|Gemini API Key|Global Shortcut|Open Varno|"
            "Opens the window from any application.|Appearance|Font Size|Theme|Cream (Classic)|"
            "Content|Claude Opus 4.8|Deepest, most thorough|Claude Sonnet 5|"
            "Smarter, more detailed|Claude Haiku 4.5|Faster, more concise|Gemini 3.6 Flash|"
            "Google's fast reasoning model|Web Search|Allows the model to search the web for more "
            "accurate, up-to-date information. Uses additional API credits.|About|Model|"
            "claude-sonnet-5|Version|1.0"_s;
        QCOMPARE(shownTexts(f.view).join(u'|'), expected);
        QStringList links;
        for (const QLabel* label : shown<QLabel>(f.view))
            if (label->text().contains(u"href"_s))
                links.append(label->text());
        QCOMPARE(links.size(), 2);
        QVERIFY(links[0].contains(u"Create a key at <a href=\"https://"_s));
        QVERIFY(links[1].contains(u"supply your own from <a href=\"https://"_s));
    }

    void savesAndRemoves()
    {
        for (const bool isGemini : {false, true}) {
            const InRow row(isGemini);
            KeyFixture f(isGemini);
            QVERIFY(!shownButton(f.row, u"Save Key"_s)->isEnabled());
            QTest::keyClicks(&f.field, u"   "_s); // is no key
            f.press(u"Save Key"_s);
            QCOMPARE(f.field.text(), u"   "_s);
            QTest::keyClicks(&f.field, u"a-key "_s);
            f.press(u"Save Key"_s);
            QTRY_VERIFY(f.shows(u"Saved"_s));
            QCOMPARE(f.keychain.load(f.account), u"a-key"_s);
            QVERIFY(f.isClosed());
            QVERIFY(f.shows(storedText));
            QTRY_VERIFY(!f.shows(u"Saved"_s));
            f.press(u"Remove Key"_s);
            QTRY_VERIFY(!shownButton(f.row, u"Remove Key"_s));
            QVERIFY(!f.keychain.load(f.account));
            QVERIFY(!f.shows(storedText));
        }
    }

    void revealsAndHides()
    {
        KeyFixture f(true);
        f.store();
        f.press(u"Show"_s);
        QTRY_COMPARE(f.field.text(), u"stored"_s);
        QVERIFY(f.field.isRevealed());
        QVERIFY(!f.shows(storedText));
        // What is selected stays here, and what others selected comes in by the middle button.
        QClipboard& clipboard = *QApplication::clipboard();
        QTest::mouseDClick(&f.field, Qt::LeftButton, {}, QPoint(12, f.field.height() / 2));
        QTest::mouseRelease(&f.field, Qt::LeftButton);
        QCOMPARE(f.field.selectedText(), u"stored"_s);
        QVERIFY(!clipboard.text(QClipboard::Selection).contains(u"stored"_s));
        QTest::keyClick(&f.field, Qt::Key_A, Qt::ControlModifier);
        QVERIFY(!clipboard.text(QClipboard::Selection).contains(u"stored"_s));
        clipboard.setText(u"from elsewhere"_s, QClipboard::Selection);
        QTest::mouseClick(&f.field, Qt::MiddleButton);
        QCOMPARE(f.field.text().contains(u"from elsewhere"_s), clipboard.supportsSelection());
        f.press(u"Hide"_s);
        QVERIFY(f.isClosed());
        QTest::keyClick(&f.field, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(f.field.text(), QString()); // undoing does not bring it back
    }

    void aTypedKeyIsMaskedUntilItIsShown()
    {
        KeyFixture f(false);
        QTest::keyClicks(&f.field, u"typed"_s);
        QTest::keyClick(&f.field, Qt::Key_U, Qt::MetaModifier); // not a letter
        QVERIFY(!QAccessible::queryAccessibleInterface(&f.field)
                     ->text(QAccessible::Value)
                     .contains(u"typed"_s));
        QVERIFY(!f.field.displayText().contains(u"typed"_s));
        QVERIFY(f.field.inputMethodHints() & Qt::ImhSensitiveData);
        f.field.selectAll();
        f.field.copy();
        QVERIFY(!QApplication::clipboard()->text().contains(u"typed"_s));
        f.press(u"Show"_s);
        QTRY_VERIFY(f.field.isRevealed());
        QCOMPARE(f.field.text(), u"typed"_s);
        f.press(u"Hide"_s);
        QVERIFY(f.isClosed());
    }

    void forgetsKeysWhenLeft()
    {
        KeyFixture f(true);
        f.store();
        f.press(u"Show"_s);
        QTRY_VERIFY(f.field.isRevealed());
        f.press(u"Hide"_s);
        f.press(u"Show"_s); // on its way while the screen is left
        f.view.reset();
        f.view.hide();
        f.show();
        QTRY_VERIFY(f.shows(storedText));
        QVERIFY(f.isClosed());
    }

    void saysWhenThereIsNoKeyStore()
    {
        SettingsFixture f;
        QVERIFY(!shownText(f.view, noStoreText));
        f.view.hide();
        const NoThreads none; // to ask it
        f.view.show();
        QTRY_VERIFY(shownText(f.view, noStoreText));
        QCOMPARE(shownTexts(f.view).count(noStoreText), 1);
        QCOMPARE(shownTexts(f.view).indexOf(noStoreText), 2); // in view wherever the screen begins
    }

    void saysWhenTheShortcutIsRefused()
    {
        SettingsFixture f;
        const auto isSaid = [&f] {
            return !shownTexts(f.view).filter(u"could not be registered"_s).isEmpty();
        };
        f.shortcuts.onKeyUp(f.openVarno, {});
        for (const bool isBound : {false, true}) {
            f.events.bind(f.events.registered.begin()->first, {.isBound = isBound});
            QCOMPARE(isSaid(), !isBound);
        }
        f.events.reserved = {{static_cast<int>(Key::j), 0}};
        f.shortcuts.setShortcut(Shortcut(Key::j, {}), f.openVarno);
        QVERIFY(isSaid());
    }

    void choosesAppearance()
    {
        const SettingsFixture f;
        for (const auto& [name, size] :
             {std::pair(u"Large"_s, FontSize::large), std::pair(u"Small"_s, FontSize::small)}) {
            shownButton(f.view, name)->click();
            QCOMPARE(f.model->fontSize(), size);
            for (const QAbstractButton* button :
                 shown<QAbstractButton>(*f.view.findChild<FontSizeControl*>()))
                QCOMPARE(button->isChecked(), button->accessibleName() == name);
        }
        auto& button = *f.view.findChild<ThemeMenuButton*>();
        button.setFocus();
        QTest::keyClick(&button, Qt::Key_Space);
        QTRY_VERIFY(button.findChild<QMenu*>() && button.findChild<QMenu*>()->isVisible());
        QMenu& menu = *button.findChild<QMenu*>();
        QVERIFY(f.view.window()->geometry().contains(menu.geometry()));
        for (const QAction* item : menu.actions())
            QCOMPARE(item->icon().isNull(), item->text() != u"Cream (Classic)"_s); // a mark
        QTest::keyClick(&menu, Qt::Key_Up); // round to the last
        QTest::keyClick(&menu, Qt::Key_Return);
        QCOMPARE(f.model->theme(), AppTheme::dark);
        QVERIFY(shownText(button, u"Dark Parchment"_s));
        for (const auto& [key, theme] : Rows<Qt::Key, AppTheme>{{Qt::Key_Down, AppTheme::dark},
                                                                {Qt::Key_Up, AppTheme::amber},
                                                                {Qt::Key_Up, AppTheme::cream},
                                                                {Qt::Key_Up, AppTheme::cream},
                                                                {Qt::Key_Down, AppTheme::amber}}) {
            QTest::keyClick(&button, key);
            QCOMPARE(f.model->theme(), theme);
        }
    }

    void choosesModelAndWebSearch()
    {
        const SettingsFixture f;
        f.model->setShowingSettings(true);
        shownButton(f.view, u"Gemini 3.6 Flash"_s)->click();
        QCOMPARE(f.model->aiModel(), AIModel::geminiFlash);
        QVERIFY(shownText(f.view, u"gemini-3.6-flash"_s));
        for (const auto& [name, role] : {std::pair(u"Gemini 3.6 Flash"_s, ColorRole::accent),
                                         std::pair(u"Claude Sonnet 5"_s, ColorRole::text)})
            QCOMPARE(shownText(f.view, name)->textStyle().role, InkRole(role));
        f.view.findChild<ThemeMenuButton*>()->setFocus(Qt::TabFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        for (const auto& [key, name] : Rows<Qt::Key, QString>{{Qt::Key_Up, u"Claude Haiku 4.5"_s},
                                                              {Qt::Key_Up, u"Claude Sonnet 5"_s}}) {
            QTest::keyClick(QApplication::focusWidget(), key);
            QCOMPARE(details(f.model->aiModel()).displayName, name);
            QCOMPARE(QApplication::focusWidget()->accessibleName(), name);
        }
        auto& webSearch = *f.view.findChild<Switch*>();
        for (const bool enabled : {true, false}) {
            QTest::mouseClick(&webSearch, Qt::LeftButton);
            QCOMPARE(f.model->webSearchEnabled(), enabled);
        }
        shownButton(f.view, u"Done"_s)->click();
        QVERIFY(!f.model->isShowingSettings());
    }
};

VARNO_TEST(QApplication, SettingsViewTest)
#include "SettingsViewTest.moc"
