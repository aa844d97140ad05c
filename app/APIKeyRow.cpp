#include "app/APIKeyRow.h"

#include "kit/Layout.h"

#include <QEvent>

namespace varno {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const TextStyle helpStyle{.size = 11, .opacity = 0.45};

} // namespace

APIKeyRow::APIKeyRow(KeychainTasks& keys, QWidget* parent)
    : APIKeyRow({.account = keys.keychain().anthropicAccount,
                 .fieldName = tr("Anthropic API key"),
                 .help = tr("Varno doesn't include an API key — you supply your own, and "
                            "Anthropic bills your account for what you use. Create a key "
                            "at %1."),
                 .keyPage = QUrl(u"https://console.anthropic.com/settings/keys"_s)},
                keys, parent)
{
}

GeminiAPIKeyRow::GeminiAPIKeyRow(KeychainTasks& keys, QWidget* parent)
    : APIKeyRow({.account = keys.keychain().geminiAccount,
                 .fieldName = tr("Gemini API key"),
                 .help = tr("Required only for Gemini models. Varno doesn't include a key — "
                            "supply your own from %1."),
                 .keyPage = QUrl(u"https://aistudio.google.com/apikey"_s)},
                keys, parent)
{
}

APIKeyRow::APIKeyRow(const Provider& provider, KeychainTasks& keys, QWidget* parent)
    : QWidget(parent)
    , m_provider(provider)
    , m_keys(keys)
    , m_save(tr("Save Key"), {.text = {.size = 13, .role = ColorRole::accent},
                              .horizontal = 12,
                              .vertical = 5,
                              .radius = 6,
                              .outline = Ink{.role = ColorRole::accent}})
    , m_remove(tr("Remove Key"), {.text = {.size = 13}})
    , m_savedSymbol(Symbol::checkmarkCircleFill, {.size = 11})
    , m_savedText(tr("Saved"), {.size = 11})
    , m_stored(tr("A key is stored in your Keychain. Click Show to reveal it."),
               {.size = 11, .role = StandardColor::green, .opacity = 0.8})
{
    m_saved.setLayout(row({.spacing = 4}, {m_savedSymbol, m_savedText}));
    setLayout(
        column({.spacing = 8}, {
                                   m_key,
                                   row({.spacing = 10}, {m_save, m_remove, m_saved, stretch()}),
                                   m_stored,
                                   m_help,
                               }));
    m_key.setAccessibleName(provider.fieldName);
    m_saved.hide();
    m_savedTimer.setSingleShot(true);
    m_savedTimer.setInterval(2s);
    m_help.setFont(varno::font(helpStyle));
    m_help.setWordWrap(true);
    m_help.setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    m_help.setOpenExternalLinks(true);
    takeColors();
    showState();
    connectParts();
}

void APIKeyRow::connectParts()
{
    connect(&m_key, &KeyField::textChanged, this, &APIKeyRow::showState);
    connect(&m_key, &KeyField::revealPressed, this, &APIKeyRow::toggleRevealed);
    connect(&m_key, &KeyField::returnPressed, this, &APIKeyRow::save);
    connect(&m_save, &PlainButton::clicked, this, &APIKeyRow::save);
    connect(&m_remove, &PlainButton::clicked, this, &APIKeyRow::remove);
    connect(&m_savedTimer, &QTimer::timeout, &m_saved, &QWidget::hide);
}

void APIKeyRow::refresh()
{
    const int question = ++m_presenceQuestion;
    m_keys.askPresence(m_provider.account, this, [this, question](KeyPresence presence) {
        if (question == m_presenceQuestion)
            setPresence(presence);
    });
}

void APIKeyRow::forget()
{
    stopLoading();
    m_key.forget();
    m_saved.hide();
    showState();
}

void APIKeyRow::toggleRevealed()
{
    if (m_loading || m_key.isRevealed()) {
        stopLoading(); // the user may be asked for a password, and think better of it
        m_key.forget();
        showState();
        return;
    }
    m_loading.emplace();
    m_keys.load(m_provider.account, m_loading->get_token(), this,
                [this, mine = m_loading->get_token()](const std::optional<QString>& key) {
                    if (!mine.stop_requested())
                        reveal(key);
                });
}

void APIKeyRow::reveal(const std::optional<QString>& storedKey)
{
    m_loading.reset();
    if (storedKey)
        m_key.setText(*storedKey);
    m_key.setRevealed(true);
    showState();
}

void APIKeyRow::stopLoading()
{
    if (m_loading)
        m_loading->request_stop();
    m_loading.reset();
}

void APIKeyRow::save()
{
    const QString key = m_key.text().trimmed();
    if (key.isEmpty() || m_changing)
        return;
    stopLoading();
    setChanging(true);
    m_keys.save(key, m_provider.account, this, [this](KeyPresence presence) {
        endChange(presence);
        if (presence != KeyPresence::present)
            return; // the user may try again with what is still in the field
        m_key.forget();
        showSaved();
    });
}

void APIKeyRow::remove()
{
    forget();
    setChanging(true);
    m_keys.remove(m_provider.account, this, [this](KeyPresence presence) { endChange(presence); });
}

void APIKeyRow::endChange(KeyPresence presence)
{
    setChanging(false);
    setPresence(presence);
}

void APIKeyRow::setPresence(KeyPresence presence)
{
    m_presence = presence;
    showState();
    Q_EMIT presenceChanged();
}

void APIKeyRow::setChanging(bool changing)
{
    ++m_presenceQuestion; // what was asked before tells of another time
    m_changing = changing;
    m_key.setUsable(!changing);
    showState();
}

void APIKeyRow::showSaved()
{
    if (!isVisible())
        return;
    m_saved.show();
    m_savedTimer.start();
}

void APIKeyRow::showState()
{
    const bool present = m_presence == KeyPresence::present;
    m_save.setEnabled(!m_changing && !m_key.text().isEmpty());
    m_remove.setEnabled(!m_changing);
    m_remove.setVisible(present);
    m_stored.setVisible(present && !m_key.isRevealed());
}

/// The help and its link, which shows the address without its scheme, and on one line. A link takes
/// no colour from the palette of its place.
QString APIKeyRow::helpText(const QColor& linkColor) const
{
    const QString address = m_provider.keyPage.toString();
    const QString shown = m_provider.keyPage.toString(QUrl::RemoveScheme)
                              .remove(0, 2)
                              .replace(u'/', u"/\u2060"_s); // which may not be broken there
    const QString link = u"<a href=\"%1\" style=\"color: %2; text-decoration: none\">%3</a>"_s.arg(
        address.toHtmlEscaped(), linkColor.name(), shown.toHtmlEscaped());
    return u"<div dir=\"%1\">%2</div>"_s.arg(isRightToLeft() ? u"rtl"_s : u"ltr"_s,
                                             m_provider.help.toHtmlEscaped().arg(link));
}

void APIKeyRow::takeColors()
{
    QPalette help = palette();
    help.setColor(QPalette::WindowText, themeColor(help, ColorRole::text, helpStyle.opacity));
    m_help.setPalette(help);
    m_help.setText(helpText(themeColor(help, ColorRole::accent)));
}

void APIKeyRow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColors();
}

} // namespace varno
