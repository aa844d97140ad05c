#include "app/KeyField.h"

#include "kit/FieldFrame.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyle>

namespace varno {
namespace {

constexpr Qt::InputMethodHints secretHints =
    Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase;

} // namespace

KeyField::KeyField(QWidget* parent)
    : TextField(parent)
    , m_reveal(tr("Show"),
               {.text = {.size = 12, .role = ColorRole::accent}, .horizontal = 10, .vertical = 5},
               this)
{
    setFont(varno::font({.size = 13}));
    setMaxLength(longestKey);
    setFrame(false); // it is drawn here, in the colours of the theme
    QPalette ground;
    ground.setBrush(QPalette::Base, Qt::NoBrush);
    setPalette(ground);
    setMinimumHeight(m_reveal.sizeHint().height() + 4);
    m_reveal.setCursor(Qt::ArrowCursor);
    setRevealed(false);
    connect(&m_reveal, &PlainButton::clicked, this, &KeyField::revealPressed);
}

void KeyField::setRevealed(bool revealed)
{
    setEchoMode(revealed ? Normal : Password);
    setInputMethodHints(inputMethodHints() | secretHints);
    m_reveal.setText(revealed ? tr("Hide") : tr("Show"));
    placeButton();
}

void KeyField::forget()
{
    setText({}); // `clear` could be undone
    setRevealed(false);
}

void KeyField::setUsable(bool usable)
{
    setReadOnly(!usable);
    m_reveal.setEnabled(usable);
}

void KeyField::focusInEvent(QFocusEvent* event)
{
    TextField::focusInEvent(event);
    update();
}

void KeyField::focusOutEvent(QFocusEvent* event)
{
    TextField::focusOutEvent(event);
    update();
}

/// The toolkit hands what keys have selected to every program that asks. It is taken back before
/// the event loop could have answered one.
void KeyField::keyPressEvent(QKeyEvent* event)
{
    TextField::keyPressEvent(event);
    QClipboard& clipboard = *QGuiApplication::clipboard();
    if (hasSelectedText() && clipboard.ownsSelection() &&
        clipboard.text(QClipboard::Selection) == selectedText())
        clipboard.clear(QClipboard::Selection);
}

/// Without what the toolkit does here: the same with what the mouse has selected.
void KeyField::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        TextField::mouseReleaseEvent(event);
}

void KeyField::paintEvent(QPaintEvent* event)
{
    paintFieldFrame(*this, hasFocus());
    TextField::paintEvent(event);
}

void KeyField::resizeEvent(QResizeEvent* event)
{
    TextField::resizeEvent(event);
    placeButton();
}

void KeyField::placeButton()
{
    const QSize size = m_reveal.sizeHint();
    const QRect place(QPoint(width() - size.width() - 2, (height() - size.height()) / 2), size);
    m_reveal.setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
    const bool isLeft = isRightToLeft();
    setTextMargins(isLeft ? size.width() : 6, 0, isLeft ? 6 : size.width(), 0);
}

} // namespace varno
