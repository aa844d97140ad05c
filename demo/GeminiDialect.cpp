#include "demo/Dialect.h"
#include "demo/RequestReader.h"
#include "demo/StandInService.h"
#include "demo/WireText.h"

#include <QUrl>
#include <QUrlQuery>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// What the path and the query of a request say.
struct Target {
    QString model;
    QString method;
    QString key;
    bool serverSentEvents = false;

    [[nodiscard]] bool streamed() const { return method == "streamGenerateContent"_L1; }
};

Target readTarget(const QByteArray& path)
{
    const QUrl url = QUrl::fromEncoded("http://localhost" + path);
    const QUrlQuery query(url);
    const QString name = url.path().section(u'/', -1);
    return {.model = name.section(u':', 0, 0),
            .method = name.section(u':', 1),
            .key = query.queryItemValue(u"key"_s),
            .serverSentEvents = query.queryItemValue(u"alt"_s) == "sse"_L1};
}

/// The text of a record {"parts":[{"text":string}]}.
std::optional<QString> readParts(json::Object content)
{
    const auto parts = json::requiredMember<json::Array>(content, "parts");
    QString all;
    const auto readPart = [&all](json::Object part) {
        const auto text = json::requiredMember<std::string_view>(part, "text");
        all += text ? json::toQString(*text) : QString();
        return text.has_value();
    };
    if (!parts || !json::readRecords(*parts, readPart))
        return std::nullopt;
    return all;
}

/// The last of the contents is the prompt.
std::optional<QString> readContents(json::Object request)
{
    const auto contents = json::requiredMember<json::Array>(request, "contents");
    std::optional<QString> prompt;
    const auto readContent = [&prompt](json::Object content) {
        prompt = readParts(content);
        return prompt.has_value();
    };
    return contents && json::readRecords(*contents, readContent) ? prompt : std::nullopt;
}

bool areSettingsValid(json::Object request)
{
    const auto instruction = json::optionalMember<json::Object>(request, "systemInstruction");
    const auto generation = json::optionalMember<json::Object>(request, "generationConfig");
    return instruction.valid && (!instruction.value || readParts(*instruction.value)) &&
           generation.valid &&
           (!generation.value || !json::member(*generation.value, "maxOutputTokens") ||
            json::isPositive(*generation.value, "maxOutputTokens"));
}

std::optional<ModelCall> readBody(const QByteArray& body, const Target& target)
{
    json::Parser parser;
    const auto request = json::readRecord(parser, body);
    if (!request)
        return std::nullopt;
    const auto prompt = readContents(*request);
    const auto tools = json::readTools(*request);
    if (!prompt || !tools || !areSettingsValid(*request))
        return std::nullopt;
    return ModelCall{.model = target.model,
                     .prompt = *prompt,
                     .streamed = target.streamed(),
                     .webSearch = *tools};
}

/// The service writes these characters of a string as escapes.
QByteArray escaped(QByteArray json)
{
    return json.replace('<', "\\u003c")
        .replace('>', "\\u003e")
        .replace('&', "\\u0026")
        .replace('\'', "\\u0027");
}

/// One reply, or one chunk of a streamed one.
QByteArray responseRecord(const ModelCall& call, const QString& text, bool last)
{
    const QByteArray sources = call.webSearch && last
                                   ? R"(,"groundingMetadata":{"webSearchQueries":["encyclopedia"]})"
                                   : "";
    return R"({"candidates":[{"content":{"parts":[{"text":)" + escaped(quoted(text)) +
           R"(}],"role":"model"})" + (last ? R"(,"finishReason":"STOP")" : "") + R"(,"index":0)" +
           sources + R"(}],"usageMetadata":{"promptTokenCount":)" + tokenCount(call.prompt) +
           R"(,"candidatesTokenCount":)" + tokenCount(text) + R"(},"modelVersion":)" +
           quoted(call.model) + '}';
}

QByteArray errorStatus(int statusCode)
{
    switch (statusCode) {
    case 400:
        return "INVALID_ARGUMENT";
    case 401:
        return "UNAUTHENTICATED";
    case 403:
        return "PERMISSION_DENIED";
    case 404:
        return "NOT_FOUND";
    case 429:
        return "RESOURCE_EXHAUSTED";
    case 500:
        return "INTERNAL";
    case 503:
        return "UNAVAILABLE";
    default:
        return "UNKNOWN";
    }
}

class GeminiDialect final : public Dialect {
public:
    [[nodiscard]] std::variant<ModelCall, Refusal>
    read(const ReceivedRequest& request) const override
    {
        const Target target = readTarget(request.path);
        const auto refuse = [&target](int statusCode, const QString& message) {
            return Refusal{.statusCode = statusCode,
                           .message = message,
                           .streamed = target.streamed() && target.serverSentEvents};
        };
        if (!target.streamed() && target.method != "generateContent"_L1)
            return refuse(404, u"There is no such method."_s);
        if (target.key.isEmpty())
            return refuse(403, u"Method doesn't allow unregistered callers. Please use API Key or "
                               u"other form of API consumer identity to call this API."_s);
        if (!target.model.startsWith("gemini-"_L1))
            return refuse(404, u"models/%1 is not found."_s.arg(target.model));
        if (target.streamed() && !target.serverSentEvents)
            return refuse(400, u"This service streams with alt=sse only."_s);
        const std::optional<ModelCall> call = readBody(request.body, target);
        if (!call)
            return refuse(400, u"The body is not a request for content."_s);
        return *call;
    }

    [[nodiscard]] QList<WireEvent> events(const ModelCall& call,
                                          const QStringList& pieces) const override
    {
        const bool emptyEnd = pieces.size() % 2 == 0;
        QList<WireEvent> events;
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            const bool last = !emptyEnd && i + 1 == pieces.size();
            events.append({.bytes = event(responseRecord(call, pieces[i], last)), .hasText = true});
        }
        if (emptyEnd)
            events.append({.bytes = event(responseRecord(call, {}, true))});
        return events;
    }

    [[nodiscard]] QByteArray message(const ModelCall& call, const QString& text) const override
    {
        return responseRecord(call, text, true);
    }

    [[nodiscard]] QByteArray errorBody(int statusCode, const QString& text) const override
    {
        return "{\n  \"error\": {\n    \"code\": " + QByteArray::number(statusCode) +
               ",\n    \"message\": " + escaped(quoted(text)) + ",\n    \"status\": \"" +
               errorStatus(statusCode) + "\"\n  }\n}\n";
    }

    [[nodiscard]] QByteArray event(const QByteArray& data) const override
    {
        return "data: " + data + "\r\n\r\n";
    }

    [[nodiscard]] QByteArray errorEvent() const override
    {
        return event(
            R"({"error":{"code":503,"message":"The model is overloaded.","status":"UNAVAILABLE"}})");
    }

    [[nodiscard]] QByteArray contentType(bool streamed, bool) const override
    {
        return streamed ? "text/event-stream" : "application/json; charset=UTF-8";
    }
};

} // namespace

const Dialect& geminiDialect()
{
    static const GeminiDialect dialect;
    return dialect;
}

} // namespace varno
