#include "reader/ErrorPanel.h"

#include "kit/Layout.h"
#include "kit/TextCuts.h"

namespace varno {
namespace {

constexpr int mostWidth = 360;

} // namespace

ErrorPanel::ErrorPanel(QWidget* parent)
    : QWidget(parent)
    , m_symbol(Symbol::exclamationmarkTriangle, {.size = 28, .role = StandardColor::orange})
    , m_message({}, {.size = 14, .opacity = 0.7, .limit = messageLimit}, Overflow::wrap)
    , m_tryAgain(tr("Try again"), {.text = {.size = 13, .role = ColorRole::accent}})
    , m_newSearch(tr("New search"), {.text = {.size = 13, .opacity = 0.45}})
{
    setLayout(column({.spacing = 12},
                     {
                         aligned(m_symbol, Qt::AlignHCenter),
                         m_message,
                         row({.spacing = 16}, {stretch(), m_tryAgain, m_newSearch, stretch()}),
                     }));
    setMaximumWidth(mostWidth);

    m_message.setAlignment(Qt::AlignCenter);
    for (PlainButton* button : {&m_tryAgain, &m_newSearch})
        button->setFocusPolicy(Qt::NoFocus);

    connect(&m_tryAgain, &PlainButton::clicked, this, &ErrorPanel::tryAgain);
    connect(&m_newSearch, &PlainButton::clicked, this, &ErrorPanel::newSearch);
}

void ErrorPanel::showFailure(const QString& message)
{
    m_symbol.show();
    setMessage(message);
}

void ErrorPanel::showNotice(const QString& message)
{
    m_symbol.hide();
    setMessage(message);
}

void ErrorPanel::setMessage(const QString& message)
{
    m_message.setText(message);
    setAccessibleName(shortened(message, toolTipLimit));
}

} // namespace varno
