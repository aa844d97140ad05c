#include "recorder/RecorderCocoa.h"

#include "kit/FieldFrame.h"
#include "kit/TextBlock.h"
#include "platform/KeyLabel.h"
#include "platform/ProgramKeys.h"
#include "recorder/RefusalAlert.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace varno {
namespace {

constexpr QSize fieldSize(130, 24); // points
constexpr int margin = 5;
constexpr int clearWidth = 22;
constexpr TextStyle textStyle{.size = 13};

bool isKey(int carbonKeyCode, std::initializer_list<Key> keys)
{
    return std::any_of(keys.begin(), keys.end(),
                       [=](Key key) { return static_cast<int>(key) == carbonKeyCode; });
}

} // namespace

RecorderCocoa::RecorderCocoa(KeyboardShortcuts::Name name, Change onChange,
                             KeyboardShortcuts& shortcuts, QWidget* parent)
    : QWidget(parent)
    , m_shortcutName(std::move(name))
    , m_onChange(std::move(onChange))
    , m_shortcuts(shortcuts)
    , m_clear(Symbol::xmarkCircleFill,
              {.symbol = {.size = 12, .opacity = 0.6}, .frame = {clearWidth, fieldSize.height()}})
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    setFont(varno::font(textStyle));
    setAccessibleName(tr("Shortcut"));
    m_clear.setParent(this);
    m_clear.setToolTip(tr("Clear shortcut"));
    connect(&m_clear, &PlainButton::clicked, this, &RecorderCocoa::clear);
    connect(&shortcuts, &KeyboardShortcuts::shortcutByNameDidChange, this,
            [this](const KeyboardShortcuts::Name& changed) {
                if (changed == m_shortcutName)
                    showValue();
            });
    connect(&shortcuts, &KeyboardShortcuts::shownShortcutsDidChange, this,
            &RecorderCocoa::showValue);
    showValue();
}

RecorderCocoa::~RecorderCocoa()
{
    delete m_alert;
    endRecording();
}

QString RecorderCocoa::text() const
{
    return m_recording ? QString() : m_description;
}

QString RecorderCocoa::placeholder() const
{
    return m_recording ? tr("Press shortcut") : tr("Record shortcut");
}

void RecorderCocoa::setMenuItems(std::function<QList<MenuItem>()> menuItems)
{
    m_menuItems = std::move(menuItems);
}

QSize RecorderCocoa::sizeHint() const
{
    return fieldSize;
}

void RecorderCocoa::startRecording()
{
    if (std::exchange(m_recording, true))
        return;
    setFocus();
    showValue();
    Q_EMIT m_shortcuts.recorderActiveStatusDidChange(true);
    watch(true);
}

void RecorderCocoa::endRecording()
{
    if (!std::exchange(m_recording, false))
        return;
    watch(false);
    showValue();
    Q_EMIT m_shortcuts.recorderActiveStatusDidChange(false);
}

void RecorderCocoa::clear()
{
    accept(std::nullopt);
}

void RecorderCocoa::watch(bool watching)
{
    suspendMenuKeys(watching); // so that they come here, to be told of
    if (watching) {
        QCoreApplication::instance()->installEventFilter(this);
        grabKeyboard(); // so that combinations of other programs come here, to be told of
    } else {
        releaseKeyboard();
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

bool RecorderCocoa::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride: // or the program's own shortcuts would get the keys
        event->accept();
        return true;
    case QEvent::KeyPress:
        take(dynamic_cast<const QKeyEvent&>(*event));
        return true;
    case QEvent::MouseButtonPress: {
        const auto& click = dynamic_cast<const QMouseEvent&>(*event);
        if (!rect().contains(mapFromGlobal(click.globalPosition().toPoint())))
            endRecording();
        return false;
    }
    case QEvent::WindowDeactivate:
        if (watched == window())
            endRecording();
        return false;
    default:
        return false;
    }
}

void RecorderCocoa::take(const QKeyEvent& event)
{
    const Keyboard& keyboard = m_shortcuts.keyboard();
    const std::optional<int> keyCode = keyboard.carbonKeyCode({
        .scanCode = event.nativeScanCode(),
        .virtualKey = event.nativeVirtualKey(),
        .key = event.key(),
    });
    if (!keyCode || event.isAutoRepeat())
        return;
    const Shortcut shortcut(*keyCode, keyboard.carbonModifiers(event.modifiers()));
    const Modifiers modifiers = shortcut.modifiers();
    if (!modifiers && isKey(*keyCode, {Key::escape})) {
        endRecording();
    } else if (!(modifiers & ~Modifiers(Modifier::shift)) && isKey(*keyCode, {Key::tab})) {
        endRecording();
        focusNextPrevChild(!modifiers.testFlag(Modifier::shift));
    } else if (!modifiers && isKey(*keyCode, {Key::deleteKey, Key::forwardDelete})) {
        clear();
    } else {
        consider(shortcut);
    }
}

void RecorderCocoa::consider(const Shortcut& shortcut)
{
    const ShortcutRules rules{
        .menuItems = m_menuItems ? m_menuItems() : QList<MenuItem>(),
        .system = m_system,
        .isReserved = [this](const Shortcut& asked) { return m_shortcuts.isReserved(asked); },
    };
    if (const std::optional<ShortcutRefusal> refusal = refusalOf(shortcut, rules))
        refuse(*refusal, shortcut);
    else
        accept(shortcut);
}

void RecorderCocoa::refuse(const ShortcutRefusal& refusal, const Shortcut& shortcut)
{
    watch(false); // keys are the alert's now
    m_alert = new RefusalAlert(refusal, spelledOut(m_shortcuts.description(shortcut)), *this);
    connect(m_alert, &RefusalAlert::finished, this, [this, shortcut](int result) {
        alertClosed(result == RefusalAlert::Accepted, shortcut);
    });
}

void RecorderCocoa::alertClosed(bool forced, const Shortcut& shortcut)
{
    m_alert = nullptr;
    if (!m_recording)
        return;
    watch(true);
    if (forced)
        accept(shortcut);
}

void RecorderCocoa::accept(const std::optional<Shortcut>& shortcut)
{
    const QPointer<RecorderCocoa> alive(this);
    m_shortcuts.setShortcut(shortcut, m_shortcutName);
    if (!alive)
        return;
    if (const Change onChange = m_onChange) // a copy: it may destroy this
        onChange(shortcut);
    if (alive)
        endRecording();
}

void RecorderCocoa::showValue()
{
    m_description = m_shortcuts.shownShortcut(m_shortcutName);
    m_clear.setVisible(!m_description.isEmpty() && !m_recording);
    setAccessibleDescription(text().isEmpty() ? placeholder() : spelledOut(text()));
    setToolTip(spelledOut(m_description));
    update();
}

void RecorderCocoa::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        startRecording();
}

void RecorderCocoa::keyPressEvent(QKeyEvent* event)
{
    // Having the focus is not enough: it comes here by itself when another field goes away.
    const int key = event->key();
    if (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter)
        startRecording();
    else
        QWidget::keyPressEvent(event);
}

void RecorderCocoa::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void RecorderCocoa::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
    if (!m_alert && event->reason() != Qt::ActiveWindowFocusReason)
        endRecording();
}

void RecorderCocoa::hideEvent(QHideEvent* event)
{
    delete m_alert;
    endRecording();
    QWidget::hideEvent(event);
}

void RecorderCocoa::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const QRect place(QPoint(width() - m_clear.sizeHint().width(), 0), m_clear.sizeHint());
    m_clear.setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
}

void RecorderCocoa::paintEvent(QPaintEvent*)
{
    paintFieldFrame(*this, m_recording || hasFocus());
    QPainter painter(this);
    const bool isEmpty = text().isEmpty();
    const QString shown = isEmpty ? placeholder() : text();
    const int right = isEmpty ? margin : clearWidth;
    const int width = fontMetrics().horizontalAdvance(shown);
    const int left = width > rect().width() - 2 * right ? margin : right; // in the middle if it can
    const QRectF place =
        QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(left, 0, -right, 0));
    const TextBlock block(shown, textStyle, font(), Overflow::elide, place.width());
    block.draw(painter, place, Qt::AlignCenter,
               themeColor(palette(), ColorRole::text, isEmpty ? 0.7 : 1));
}

} // namespace varno
