#include "providers/ServiceClient.h"

#include "core/EntryText.h"
#include "core/JsonReader.h"
#include "core/Prompts.h"
#include "platform/EitherStop.h"
#include "platform/Resources.h"
#include "providers/EntryTagFilter.h"
#include "providers/LineSplitter.h"
#include "providers/ServiceErrors.h"

#include <string>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// No answer of a few thousand tokens comes near it; it only bounds what a broken or hostile server
/// can make us hold.
constexpr std::size_t longestBody = 16UL * 1024 * 1024;

Failure networkFailure(const QString& description)
{
    return {errorDescription(NetworkError{description})};
}

Failure noResources()
{
    return networkFailure(ServiceText::tr(
        "There is no room for another request. Please close some programs, then try again."));
}

/// A service's own message may quote what it was sent.
Failure withoutKey(Failure failure, const QString& key)
{
    constexpr qsizetype shortestSecret = 8;
    if (key.size() >= shortestSecret)
        failure.description.replace(key, u"…"_s);
    return failure;
}

} // namespace

/// Reads the reply to a request: the body of an error is kept as far as it matters, that of a
/// success goes to the derived class.
class ServiceClient::Reader : public HttpReceiver {
public:
    explicit Reader(bool readsErrorBody)
        : m_readsErrorBody(readsErrorBody)
    {
    }

    bool onStatus(int statusCode) final
    {
        status = statusCode;
        return status == 200 || m_readsErrorBody;
    }

    bool onBytes(std::string_view bytes) final
    {
        if (status == 200)
            return onContent(bytes);
        return keep(bytes);
    }

    int status = 0;
    std::string body;
    std::optional<Failure> failure;

protected:
    virtual bool onContent(std::string_view bytes) = 0;

    bool keep(std::string_view bytes)
    {
        if (body.size() + bytes.size() > longestBody)
            return tooLong();
        body += bytes;
        return true;
    }

    bool tooLong()
    {
        failure = networkFailure(ServiceText::tr("The reply is too long."));
        return false;
    }

private:
    bool m_readsErrorBody;
};

class ServiceClient::StreamReader final : public Reader {
public:
    StreamReader(const ServiceDialect& dialect, EntryStream::Sink sink)
        : Reader(dialect.readsErrorBody)
        , m_dialect(dialect)
        , m_sink(std::move(sink))
    {
    }

    /// At the good end of the stream.
    void finish()
    {
        m_lines.finish([this](std::string_view line) { return onLine(line); });
        if (const auto rest = m_entry.rest())
            m_sink.send(*rest);
    }

protected:
    bool onContent(std::string_view bytes) override
    {
        return m_lines.feed(bytes, [this](std::string_view line) { return onLine(line); });
    }

private:
    bool onLine(std::string_view line)
    {
        const auto payload = eventPayload(line);
        const auto text = payload ? m_dialect.eventText(m_parser, *payload) : std::nullopt;
        if (!text)
            return true;
        m_length += text->size();
        if (m_length > longestEntryText)
            return tooLong();
        if (const auto piece = m_entry.filter(*text))
            m_sink.send(*piece);
        return true;
    }

    const ServiceDialect& m_dialect;
    EntryStream::Sink m_sink;
    LineSplitter m_lines;
    json::Parser m_parser;
    EntryTagFilter m_entry;
    qsizetype m_length = 0;
};

class ServiceClient::WholeReader final : public Reader {
public:
    using Reader::Reader;

protected:
    bool onContent(std::string_view bytes) override { return keep(bytes); }
};

ServiceClient::ServiceClient(HttpSession& http, const KeychainService& keychain,
                             ServiceDialect dialect)
    : m_http(http)
    , m_keychain(keychain)
    , m_dialect(std::move(dialect))
{
}

std::unique_ptr<EntryStream> ServiceClient::streamEntry(const ModelRequest& request) const
{
    auto stream = std::make_unique<EntryStream>();
    const bool started = m_background.start(
        [this, request, sink = stream->sink(),
         key = m_keychain.request(m_dialect.keyAccount)](const std::stop_token& stop) mutable {
            StreamReader reader(m_dialect, sink);
            if (const auto failure =
                    transfer(request, ReplyForm::streamed, std::move(key), reader, stop)) {
                sink.finish(*failure);
                return;
            }
            reader.finish();
            sink.finish(EntryStream::Completed());
        });
    if (!started)
        stream->sink().finish(noResources());
    return stream;
}

std::unique_ptr<TOCRequest> ServiceClient::generateTOC(const QString& topic, const QString& model,
                                                       bool webSearch) const
{
    const ModelRequest request{.prompt = tocPrompt(topic),
                               .systemPrompt = tocSystemPrompt(),
                               .model = model,
                               .webSearch = webSearch};
    auto toc = std::make_unique<TOCRequest>();
    const bool started = m_background.start(
        [this, request, sink = toc->sink(),
         key = m_keychain.request(m_dialect.keyAccount)](const std::stop_token& stop) mutable {
            const Result<QString> reply = callNonStreaming(request, std::move(key), stop);
            if (const auto* failure = std::get_if<Failure>(&reply))
                sink.finish(*failure);
            else
                sink.finish(arrayIn(std::get<QString>(reply)).value_or(QStringList()));
        });
    if (!started)
        toc->sink().finish(noResources());
    return toc;
}

void ServiceClient::prepare(const std::stop_token& stop) const
{
    static_cast<void>(m_background.start([this, stop](const std::stop_token& end) {
        if (hasResources())
            m_http.connectAhead(m_dialect.endpoint, preparedFor, EitherStop(stop, end).token());
    }));
}

Result<QString> ServiceClient::callNonStreaming(const ModelRequest& request,
                                                KeychainService::Request key,
                                                const std::stop_token& stop) const
{
    WholeReader reader(m_dialect.readsErrorBody);
    if (const auto failure = transfer(request, ReplyForm::whole, std::move(key), reader, stop))
        return *failure;
    json::Parser parser;
    if (const auto text = m_dialect.replyText(parser, reader.body))
        return *text;
    return networkFailure(ServiceText::tr("The reply is not in the format that was expected."));
}

std::optional<Failure> ServiceClient::transfer(const ModelRequest& request, ReplyForm form,
                                               KeychainService::Request keyRequest, Reader& reader,
                                               const std::stop_token& stop) const
{
    if (!hasResources())
        return noResources();
    const std::optional<QString> key = KeychainService::load(std::move(keyRequest), stop);
    if (!key || key->isEmpty())
        return m_dialect.noAPIKey;
    Result<HttpRequest> made = m_dialect.makeRequest(request, form, *key);
    if (const auto* failure = std::get_if<Failure>(&made))
        return *failure;
    auto& http = std::get<HttpRequest>(made);
    http.takesConnectionMadeAhead = form == ReplyForm::streamed; // the text is waited for
    if (const auto failure = m_http.perform(http, reader, stop))
        return networkFailure(failure->description);
    if (reader.failure)
        return reader.failure;
    if (reader.status != 200)
        return withoutKey(m_dialect.statusFailure(reader.status, reader.body), *key);
    return std::nullopt;
}

} // namespace varno
