#include "app/Translation.h"

#include "app/ContentView.h"
#include "app/InAppSettingsView.h"
#include "app/PanelKeys.h"
#include "kit/Theme.h"
#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "providers/ServiceErrors.h"
#include "reader/PageMenu.h"
#include "recorder/RecorderCocoa.h"
#include "recorder/RefusalAlert.h"
#include "recorder/RefusalNotice.h"
#include "tests/ControllerFixture.h"
#include "tests/ScreenReading.h"
#include "tests/Test.h"
#include "tests/TestKeychain.h"

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTranslator>

namespace {

/// Puts brackets around every text that is translated.
class Brackets final : public QTranslator {
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char*, const char* text, const char*, int) const override
    {
        return u'[' + QString::fromUtf8(text) + u']';
    }
};

/// Nothing but names is left of the text without what was translated.
void verifyTranslated(const QString& text)
{
    static const QRegularExpression bracketed(u"<[^>]*>|\\[[^][]*\\]|\t.*"_s); // keys follow a tab
    QString left = text;
    while (left.contains(bracketed))
        left.remove(bracketed);
    for (const auto& [model, identifier] : RawValues<AIModel>::cases)
        left.remove(details(model).displayName).remove(identifier);
    left.remove(u"Varno"_s);
    QVERIFY2(std::ranges::none_of(left, [](QChar c) { return c.isLetter(); }), qPrintable(text));
}

void verifyWhatIsHeard(const QAccessibleInterface& part)
{
    verifyTranslated(part.text(QAccessible::Name));
    verifyTranslated(part.text(QAccessible::Description));
    for (int i = 0; i < part.childCount(); ++i)
        if (const auto* child = part.child(i); child && !child->object()) // no widget
            verifyWhatIsHeard(*child);
}

/// All that somebody may get to read of a widget and what is in it, hidden or not.
void verifyTranslated(QWidget& top)
{
    for (QWidget* widget : QList<QWidget*>{&top} + top.findChildren<QWidget*>()) {
        verifyWhatIsHeard(*QAccessible::queryAccessibleInterface(widget));
        for (const char* const name : {"text", "placeholderText", "toolTip", "windowTitle"})
            verifyTranslated(widget->property(name).toString());
        for (const QAction* action : widget->actions())
            verifyTranslated(action->text());
    }
}

/// The whole interface. What it is given to show has no letter in it.
struct Interface : ControllerFixture {
    Interface()
    {
        setTheme(view, AppTheme::cream);
        view.show();
    }
    void type(const QString& text)
    {
        QTest::keyClicks(QApplication::focusWidget(), text);
        verifyTranslated(view);
    }

    KeychainTasks keys{newKeychain()};
    FakeHotKeyEvents events;
    FakeKeyboard keyboard;
    KeyboardShortcuts shortcuts{preferences, events, keyboard};
    KeyboardShortcuts::Name name{u"openVarno"_s, Shortcut(Key::space, Modifier::option), shortcuts};
    ContentView view{*model,
                     keys,
                     {.label = [this] { return shortcuts.shownShortcut(name); },
                      .makeRecorder = [this] { return new RecorderCocoa(name, {}, shortcuts); },
                      .makeNotice = [this] { return new RefusalNotice(name, shortcuts); }}};
};

} // namespace

class TranslationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyTextIsTranslated()
    {
        Brackets brackets;
        QCoreApplication::installTranslator(&brackets);
        Interface f;
        f.write(u"12"_s, u"> 3\n\n```\n4\n```\nSEE_ALSO_JSON: [\"4\"]"_s);
        f.model->setShowingFind(true);
        f.type(u"3"_s);
        f.type(u"9"_s);
        f.model->search(u"1 2 3 4 5"_s);
        verifyTranslated(f.view);                                   // while it is written
        f.claude.tocs.back().sink.finish(QStringList(200, u"6"_s)); // more than are shown
        f.answer({});
        f.openSection(u"6"_s, u"7"_s);
        verifyTranslated(f.view);
        f.model->newSearch();
        f.type(u"1"_s);
        f.model->setShowingSettings(true);
        f.view.findChild<ThemeMenuButton*>()->click();
        f.view.findChild<KeyField*>()->setRevealed(true);
        auto& recorder = *f.view.findChild<RecorderCocoa*>();
        recorder.startRecording();
        verifyTranslated(f.view);
        recorder.clear();
        for (const bool isSelected : {false, true})
            new PageMenu({.selectedText = isSelected ? u"1"_s : QString(),
                          .link = u"1"_s,
                          .hasText = true,
                          .isWritten = true},
                         f.view);
        using Reason = ShortcutRefusal::Reason;
        for (const Reason reason :
             {Reason::usedByMenuItem, Reason::disallowed, Reason::usedBySystem})
            new RefusalAlert({.reason = reason}, {}, f.view);
        verifyTranslated(f.view);

        for (const MenuItem& item : panelKeys(f.keyboard))
            verifyTranslated(item.title);
        for (int code = 0; code < 0x80; ++code)
            if (const QString text = Shortcut(code, 0).description(f.keyboard); text.size() > 3)
                verifyTranslated(text); // not a letter, nor F12
        for (const ClaudeError& error : std::initializer_list<ClaudeError>{
                 InvalidResponse{401}, InvalidResponse{429}, InvalidResponse{500},
                 InvalidResponse{529}, NetworkError{}, DecodingError{}, NoAPIKey{}})
            verifyTranslated(errorDescription(error));
        verifyTranslated(errorDescription(GeminiError(NoAPIKey())));
    }

    void languageTurnsTheInterface()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(u"he_IL"_s));
        loadTranslation(QFINDTESTDATA("data/translations"));
        QLocale::setDefault(before);
        Interface f;
        f.view.resize(860, 620);
        f.model->setShowingSettings(true);
        QVERIFY(shownButton(f.view, u"סיום"_s)->x() < 100); // “Done”
    }
};

VARNO_TEST(QApplication, TranslationTest)
#include "TranslationTest.moc"
