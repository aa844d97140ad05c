#pragma once

#include "core/Prompts.h"
#include "platform/HttpSession.h"
#include "platform/fake/FakeKeyStore.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"
#include "tests/Patience.h"

#include <QStringList>

#include <functional>
#include <memory>

namespace varno {

using namespace Qt::StringLiterals;

/// What became of a stream.
struct Received {
    QStringList pieces;
    QString error; ///< empty after a good end

    [[nodiscard]] QString text() const { return pieces.join(QString()); }
};

/// Waits for the end of a stream or of a request, and returns how it ended.
template <typename Outcome, typename Source>
Outcome outcomeOf(const Source& source)
{
    std::optional<Outcome> received;
    QObject::connect(source.get(), &Source::element_type::finished, source.get(),
                     [&](const Outcome& outcome) { received = outcome; });
    static_cast<void>(QTest::qWaitFor([&] { return received.has_value(); }, patience));
    return received.value_or(Failure{u"there was no end"_s});
}

inline Received receive(const std::unique_ptr<EntryStream>& stream)
{
    Received received;
    QObject::connect(stream.get(), &EntryStream::piece, stream.get(),
                     [&](const QString& piece) { received.pieces.append(piece); });
    const auto outcome = outcomeOf<EntryStream::Outcome>(stream);
    if (const auto* failure = std::get_if<Failure>(&outcome))
        received.error = failure->description;
    return received;
}

/// Both clients of model services, with keys of their own.
class BothClients {
public:
    BothClients(HttpSession& http, const QByteArray& claudeEndpoint,
                const QByteArray& geminiBaseURL, std::chrono::seconds timeout)
        : claude(claudeEndpoint, http, keychain, timeout)
        , gemini(geminiBaseURL, http, keychain, timeout)
    {
        keychain.save(key, keychain.anthropicAccount);
        keychain.save(key, keychain.geminiAccount);
    }

    static QString model(bool isGemini)
    {
        return isGemini ? u"gemini-3.6-flash"_s : u"claude-sonnet-5"_s;
    }
    [[nodiscard]] const ModelService& client(bool isGemini) const
    {
        return isGemini ? static_cast<const ModelService&>(gemini) : claude;
    }
    [[nodiscard]] std::unique_ptr<EntryStream> stream(bool isGemini, bool webSearch = false) const
    {
        return client(isGemini).streamEntry({.prompt = prompt,
                                             .systemPrompt = entrySystemPrompt(),
                                             .model = model(isGemini),
                                             .webSearch = webSearch});
    }
    [[nodiscard]] auto toc(bool isGemini) const
    {
        return client(isGemini).generateTOC(u"Stoicism"_s, model(isGemini), true);
    }
    [[nodiscard]] Received ask(bool isGemini, bool webSearch = false) const
    {
        return receive(stream(isGemini, webSearch));
    }
    [[nodiscard]] Result<QStringList> askTOC(bool isGemini) const
    {
        return outcomeOf<Result<QStringList>>(toc(isGemini));
    }

    const QString key = u"AIza-made-up-secret-0123"_s;
    const QString prompt = entryPrompt(EntryType::definition, u"palimpsest"_s);
    FakeKeyStore store;
    KeychainService keychain{store};
    ClaudeService claude;
    GeminiService gemini;
};

/// With HTTP whose response the test gives, on the thread of the request.
struct ClientsByHand : HttpSession, BothClients {
    ClientsByHand()
        : BothClients(*this, "https://example.invalid", "https://example.invalid",
                      std::chrono::hours(1))
    {
    }

    std::function<std::optional<Failure>(const HttpRequest&, HttpReceiver&)> respond;

    [[nodiscard]] std::optional<Failure> perform(const HttpRequest& request, HttpReceiver& receiver,
                                                 std::stop_token) override
    {
        return respond(request, receiver);
    }
};

} // namespace varno
