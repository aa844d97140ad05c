#include "demo/Demonstration.h"

#include "core/EntryText.h"

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QString heading(const QString& title)
{
    return title.toUpper() + u'\n' + QString(title.size(), u'─') + u"\n\n"_s;
}

/// What of an answer may be shown while more of it may come: its last characters may turn out to be
/// the beginning of what is not part of the entry.
QString settledText(const QString& answer, bool complete)
{
    constexpr qsizetype longestMarker = 14;
    QString text = cleanEntryText(answer);
    if (!complete && text.size() == answer.trimmed().size())
        text.chop(longestMarker);
    return text;
}

} // namespace

Demonstration::Demonstration(AppViewModel& model, const StandInService& service,
                             QTextStream& terminal)
    : m_model(model)
    , m_service(service)
    , m_terminal(terminal)
{
    connect(&m_model, &AppViewModel::changed, this, &Demonstration::onChanged);
}

void Demonstration::start(const QString& query)
{
    m_query = query;
    m_model.search(query);
}

void Demonstration::onChanged()
{
    const bool isReadingHistory = !m_model.currentPage();
    if (m_step == Step::done || isReadingHistory)
        return;
    if (m_shown < 0)
        startPage();
    showText();
    if (!m_model.isStreaming() && !m_model.tocIsLoading())
        finishPage();
}

void Demonstration::startPage()
{
    m_shown = 0;
    m_terminal << heading(m_model.streamingTitle()) << Qt::flush;
}

void Demonstration::showText()
{
    const QString text = settledText(m_model.streamingContent(), !m_model.isStreaming());
    if (text.size() <= m_shown)
        return;
    m_terminal << QStringView(text).sliced(m_shown) << Qt::flush;
    m_shown = text.size();
}

void Demonstration::finishPage()
{
    m_terminal << "\n\n";
    if (m_model.errorMessage()) {
        m_step = Step::done;
        Q_EMIT finished(m_model.errorMessage());
        return;
    }
    showLists();
    if (m_step == Step::writingEntry && !m_model.streamingTOC().isEmpty()) {
        m_step = Step::writingSection;
        openFirstSection();
        return;
    }
    const bool onSection = m_step == Step::writingSection;
    m_step = Step::done;
    if (onSection)
        goBack();
    searchAgain();
    Q_EMIT finished(std::nullopt);
}

void Demonstration::showLists()
{
    if (m_step == Step::writingEntry && !m_model.streamingTOC().isEmpty()) {
        m_terminal << "CONTENTS\n";
        int number = 0;
        for (const QString& section : m_model.streamingTOC())
            m_terminal << "  " << ++number << ". " << section << '\n';
        m_terminal << '\n';
    }
    const QStringList& topics = m_model.currentPage()->seeAlso;
    if (!topics.isEmpty())
        m_terminal << "SEE ALSO\n  " << topics.join(u" · "_s) << "\n\n";
}

void Demonstration::openFirstSection()
{
    const QString section = m_model.streamingTOC().constFirst();
    m_terminal << "→ opening the section “" << section << "”\n\n";
    m_model.navigateTo(section);
    startPage();
}

void Demonstration::goBack()
{
    const qsizetype requests = m_service.requests().size();
    m_model.goBack();
    m_terminal << "← back to “" << m_model.streamingTitle() << "”, "
               << m_model.streamingContent().size() << " characters, "
               << m_service.requests().size() - requests << " requests made\n";
}

void Demonstration::searchAgain()
{
    const qsizetype requests = m_service.requests().size();
    m_model.newSearch();
    m_model.search(m_query);
    m_terminal << "⟳ searched “" << m_query << "” again: “" << m_model.streamingTitle() << "”, "
               << m_model.streamingContent().size() << " characters, "
               << (m_model.isStreaming() ? "being written anew, " : "reopened, ")
               << m_service.requests().size() - requests << " requests made\n"
               << Qt::flush;
}

} // namespace varno
