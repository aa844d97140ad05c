#include "providers/ClaudeService.h"

#include "core/JsonWriter.h"
#include "platform/Platform.h"
#include "providers/ServiceErrors.h"

namespace varno {
namespace {

Failure failure(const ClaudeError& error)
{
    return {errorDescription(error)};
}

QByteArray body(const ModelRequest& request, ReplyForm form)
{
    JsonWriter writer;
    writer.beginObject();
    writer.key(u"model").string(request.model);
    writer.key(u"max_tokens").integer(request.webSearch ? 4096 : 2048);
    writer.key(u"stream").boolean(form == ReplyForm::streamed);
    writer.key(u"system").string(request.systemPrompt);
    writer.key(u"messages").beginArray().beginObject();
    writer.key(u"role").string(u"user").key(u"content").string(request.prompt);
    writer.endObject().endArray();
    if (request.webSearch) {
        writer.key(u"tools").beginArray().beginObject();
        writer.key(u"type").string(u"web_search_20260209").key(u"name").string(u"web_search");
        writer.endObject().endArray();
    }
    writer.endObject();
    return writer.text();
}

ServiceDialect dialect(const QByteArray& endpoint, const KeychainService& keychain,
                       std::chrono::seconds timeout)
{
    return {
        .endpoint = endpoint,
        .keyAccount = keychain.anthropicAccount,
        .noAPIKey = failure(NoAPIKey()),
        .makeRequest = [endpoint, timeout](const ModelRequest& request, ReplyForm form,
                                           const QString& key) -> Result<HttpRequest> {
            return HttpRequest{.url = endpoint,
                               .headers = {{"x-api-key", key.toUtf8()},
                                           {"anthropic-version", "2023-06-01"},
                                           {"content-type", "application/json"}},
                               .body = body(request, form),
                               .timeout = timeout};
        },
        .eventText = &claudeEventText,
        .replyText = &claudeReplyText,
        .readsErrorBody = false,
        .statusFailure = [](int statusCode,
                            std::string_view) { return failure(InvalidResponse{statusCode}); },
    };
}

} // namespace

const ClaudeService& ClaudeService::shared()
{
    static const ClaudeService service("https://api.anthropic.com/v1/messages", systemHttpSession(),
                                       KeychainService::shared());
    return service;
}

ClaudeService::ClaudeService(const QByteArray& endpoint, HttpSession& http,
                             const KeychainService& keychain, std::chrono::seconds timeout)
    : ServiceClient(http, keychain, dialect(endpoint, keychain, timeout))
{
}

} // namespace varno
