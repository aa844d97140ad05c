#include "providers/GeminiService.h"

#include "core/JsonReader.h"
#include "core/JsonWriter.h"
#include "platform/Platform.h"
#include "providers/ServiceErrors.h"

#include <cctype>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

Failure failure(const GeminiError& error)
{
    return {errorDescription(error)};
}

bool isHexDigit(QByteArrayView text, qsizetype position)
{
    return position < text.size() && std::isxdigit(static_cast<unsigned char>(text[position]));
}

/// Whether `text` may stand in the query of a URL as it is (RFC 3986, 3.4).
bool isQueryText(QByteArrayView text)
{
    constexpr std::string_view marks = "-._~!$&'()*+,;=:@/?";
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool letterOrDigit =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        const bool escape = c == '%' && isHexDigit(text, i + 1) && isHexDigit(text, i + 2);
        if (!letterOrDigit && !escape && marks.find(c) == std::string_view::npos)
            return false;
    }
    return true;
}

void writeTextParts(JsonWriter& writer, const QString& text)
{
    writer.beginObject().key(u"parts").beginArray().beginObject();
    writer.key(u"text").string(text);
    writer.endObject().endArray().endObject();
}

QByteArray body(const ModelRequest& request)
{
    JsonWriter writer;
    writer.beginObject();
    writer.key(u"contents").beginArray();
    writeTextParts(writer, request.prompt);
    writer.endArray();
    writer.key(u"systemInstruction");
    writeTextParts(writer, request.systemPrompt);
    writer.key(u"generationConfig").beginObject();
    writer.key(u"maxOutputTokens").integer(request.webSearch ? 4096 : 2048);
    writer.endObject();
    if (request.webSearch) {
        writer.key(u"tools").beginArray().beginObject();
        writer.key(u"google_search").beginObject().endObject();
        writer.endObject().endArray();
    }
    writer.endObject();
    return writer.text();
}

Result<HttpRequest> makeRequest(const QByteArray& baseURL, std::chrono::seconds timeout,
                                const ModelRequest& request, ReplyForm form, const QString& key)
{
    const QByteArray keyText = key.toUtf8();
    if (!isQueryText(keyText))
        return failure(DecodingError{ServiceText::tr("Invalid URL")});
    const bool streamed = form == ReplyForm::streamed;
    QByteArray url = baseURL + '/' + request.model.toUtf8() + ':' +
                     (streamed ? "streamGenerateContent" : "generateContent") + "?key=" + keyText;
    if (streamed)
        url += "&alt=sse";
    return HttpRequest{.url = url,
                       .headers = {{"content-type", "application/json"}},
                       .body = body(request),
                       .timeout = timeout};
}

Failure parseAPIError(int statusCode, std::string_view body)
{
    json::Parser parser;
    const auto message = geminiErrorMessage(parser, body);
    return failure(APIError{
        .statusCode = statusCode,
        .message = message ? ServiceText::tr("Gemini error: %1").arg(*message)
                           : ServiceText::tr("Gemini API error (HTTP %1). Please try again.")
                                 .arg(statusCode)});
}

ServiceDialect dialect(const QByteArray& baseURL, const KeychainService& keychain,
                       std::chrono::seconds timeout)
{
    return {
        .endpoint = baseURL,
        .keyAccount = keychain.geminiAccount,
        .noAPIKey = failure(NoAPIKey()),
        .makeRequest =
            [baseURL, timeout](const ModelRequest& request, ReplyForm form, const QString& key) {
                return makeRequest(baseURL, timeout, request, form, key);
            },
        .eventText = &geminiEventText,
        .replyText = &geminiReplyText,
        .readsErrorBody = true,
        .statusFailure = &parseAPIError,
    };
}

} // namespace

const GeminiService& GeminiService::shared()
{
    static const GeminiService service("https://generativelanguage.googleapis.com/v1beta/models",
                                       systemHttpSession(), KeychainService::shared());
    return service;
}

GeminiService::GeminiService(const QByteArray& baseURL, HttpSession& http,
                             const KeychainService& keychain, std::chrono::seconds timeout)
    : ServiceClient(http, keychain, dialect(baseURL, keychain, timeout))
{
}

} // namespace varno
