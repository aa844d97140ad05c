#pragma once

#include "core/JsonArray.h"
#include "core/ModelService.h"
#include "platform/HttpSession.h"
#include "providers/KeychainService.h"
#include "providers/WireFormat.h"

#include <functional>

namespace varno {

enum class ReplyForm { streamed, whole };

/// What sets one service apart from the other. All functions are pure.
struct ServiceDialect {
    QByteArray endpoint; ///< the URL, as far as it is the same for all requests
    QString keyAccount;
    Failure noAPIKey;
    std::function<Result<HttpRequest>(const ModelRequest&, ReplyForm, const QString& key)>
        makeRequest;
    std::function<std::optional<QString>(json::Parser&, std::string_view payload)> eventText;
    std::function<std::optional<QString>(json::Parser&, std::string_view body)> replyText;
    bool readsErrorBody = false;
    std::function<Failure(int statusCode, std::string_view body)> statusFailure;
};

/// What the clients of both services do alike. Immutable; each call runs on a thread of its own,
/// reads the key anew, and reads on to the end of the reply when nobody waits for it any more.
/// Destroying the client ends the calls under way.
class ServiceClient : public ModelService {
public:
    ServiceClient(HttpSession& http, const KeychainService& keychain, ServiceDialect dialect);

    [[nodiscard]] std::unique_ptr<EntryStream> streamEntry(const ModelRequest& request) const final;

    [[nodiscard]] std::unique_ptr<TOCRequest>
    generateTOC(const QString& topic, const QString& model, bool webSearch) const final;

    /// Connects to the service.
    void prepare(const std::stop_token& stop) const final;

    /// Ends the calls under way and waits for that.
    void endCalls() const { m_background.stop(); }

    /// The same for both services.
    [[nodiscard]] static std::optional<QStringList> parseJSONArray(const QString& text)
    {
        return varno::parseJSONArray(text);
    }

private:
    class Reader;
    class StreamReader;
    class WholeReader;

    [[nodiscard]] std::optional<Failure> transfer(const ModelRequest& request, ReplyForm form,
                                                  KeychainService::Request key, Reader& reader,
                                                  const std::stop_token& stop) const;
    [[nodiscard]] Result<QString> callNonStreaming(const ModelRequest& request,
                                                   KeychainService::Request key,
                                                   const std::stop_token& stop) const;

    HttpSession& m_http;
    const KeychainService& m_keychain;
    ServiceDialect m_dialect;
    mutable Background m_background; ///< last, so that it ends first
};

} // namespace varno
