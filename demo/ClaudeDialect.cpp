#include "demo/Dialect.h"
#include "demo/RequestReader.h"
#include "demo/StandInService.h"
#include "demo/WireText.h"

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr const char* searchUse =
    R"({"type":"server_tool_use","id":"srvtoolu_1","name":"web_search","input":{}})";
constexpr const char* searchResult =
    R"({"type":"web_search_tool_result","tool_use_id":"srvtoolu_1","content":[]})";

QByteArray namedEvent(const QByteArray& name, const QByteArray& data)
{
    return "event: " + name + "\ndata: " + data + "\n\n";
}

QByteArray textBlock(const QString& text)
{
    return R"({"type":"text","text":)" + quoted(text) + '}';
}

QByteArray textDelta(const QString& text)
{
    return R"({"type":"text_delta","text":)" + quoted(text) + '}';
}

QByteArray inputDelta(const QString& json)
{
    return R"({"type":"input_json_delta","partial_json":)" + quoted(json) + '}';
}

/// The record of a message, empty or whole.
QByteArray messageRecord(const ModelCall& call, const QByteArray& blocks,
                         const QByteArray& stopReason, const QByteArray& outputTokens)
{
    return R"({"id":"msg_stand_in","type":"message","role":"assistant","model":)" +
           quoted(call.model) + R"(,"content":[)" + blocks + R"(],"stop_reason":)" + stopReason +
           R"(,"stop_sequence":null,"usage":{"input_tokens":)" + tokenCount(call.prompt) +
           R"(,"output_tokens":)" + outputTokens + "}}";
}

/// Puts the events of one streamed reply together.
class EventList {
public:
    void add(const QByteArray& type, const QByteArray& members, bool hasText = false)
    {
        // The service hides the lengths of some events behind blanks before the last brace.
        const QByteArray blanks(m_events.size() * 5 % 7, ' ');
        const QByteArray data = R"({"type":")" + type + '"' + members + blanks + '}';
        m_events.append({.bytes = namedEvent(type, data), .hasText = hasText});
    }

    void addBlock(const QByteArray& block, const QList<QByteArray>& deltas, bool hasText)
    {
        const QByteArray index = R"(,"index":)" + QByteArray::number(m_blocks);
        add("content_block_start", index + R"(,"content_block":)" + block);
        if (m_blocks == 0)
            add("ping", {});
        for (const QByteArray& delta : deltas)
            add("content_block_delta", index + R"(,"delta":)" + delta, hasText);
        add("content_block_stop", index);
        ++m_blocks;
    }

    [[nodiscard]] const QList<WireEvent>& events() const { return m_events; }

private:
    QList<WireEvent> m_events;
    int m_blocks = 0;
};

QByteArray errorType(int statusCode)
{
    switch (statusCode) {
    case 400:
        return "invalid_request_error";
    case 401:
        return "authentication_error";
    case 403:
        return "permission_error";
    case 404:
        return "not_found_error";
    case 413:
        return "request_too_large";
    case 429:
        return "rate_limit_error";
    case 529:
        return "overloaded_error";
    default:
        return "api_error";
    }
}

QByteArray errorRecord(const QByteArray& type, const QString& text)
{
    return R"({"type":"error","error":{"type":")" + type + R"(","message":)" + quoted(text) + "}}";
}

/// The last of the messages is the prompt.
std::optional<QString> readPromptText(json::Object request)
{
    const auto messages = json::requiredMember<json::Array>(request, "messages");
    QString prompt;
    const auto readMessage = [&prompt](json::Object message) {
        const auto role = json::requiredMember<std::string_view>(message, "role");
        const auto content = json::requiredMember<std::string_view>(message, "content");
        prompt = content ? json::toQString(*content) : QString();
        return content && (role == "user" || role == "assistant");
    };
    if (!messages || !json::readRecords(*messages, readMessage))
        return std::nullopt;
    return prompt;
}

std::optional<ModelCall> readBody(const QByteArray& body)
{
    json::Parser parser;
    const auto request = json::readRecord(parser, body);
    if (!request)
        return std::nullopt;
    const auto model = json::requiredMember<std::string_view>(*request, "model");
    const auto stream = json::optionalMember<bool>(*request, "stream");
    const auto system = json::optionalMember<std::string_view>(*request, "system");
    const auto prompt = readPromptText(*request);
    const auto tools = json::readTools(*request);
    if (!model || !stream.valid || !system.valid || !prompt || !tools ||
        !json::isPositive(*request, "max_tokens"))
        return std::nullopt;
    return ModelCall{.model = json::toQString(*model),
                     .prompt = *prompt,
                     .streamed = stream.value.value_or(false),
                     .webSearch = *tools};
}

class ClaudeDialect final : public Dialect {
public:
    [[nodiscard]] std::variant<ModelCall, Refusal>
    read(const ReceivedRequest& request) const override
    {
        if (request.header("x-api-key").isEmpty())
            return Refusal{.statusCode = 401, .message = u"x-api-key header is required"_s};
        if (request.header("anthropic-version") != "2023-06-01")
            return Refusal{.message = u"anthropic-version: 2023-06-01 is required"_s};
        if (!request.header("content-type").startsWith("application/json"))
            return Refusal{.message = u"content-type: application/json is required"_s};
        const std::optional<ModelCall> call = readBody(request.body);
        if (!call)
            return Refusal{.message = u"The body is not a request for a message."_s};
        if (!call->model.startsWith("claude-"_L1))
            return Refusal{.statusCode = 404, .message = u"model: "_s + call->model};
        return *call;
    }

    [[nodiscard]] QList<WireEvent> events(const ModelCall& call,
                                          const QStringList& pieces) const override
    {
        EventList list;
        list.add("message_start", R"(,"message":)" + messageRecord(call, {}, "null", "1"));
        if (call.webSearch) {
            list.addBlock(textBlock({}), {textDelta(u"I'll look "_s), textDelta(u"that up."_s)},
                          true);
            list.addBlock(
                searchUse,
                {inputDelta({}), inputDelta(u"{\"query\": \"enc"_s), inputDelta(u"yclopedia\"}"_s)},
                false);
            list.addBlock(searchResult, {}, false);
        }
        QList<QByteArray> deltas;
        for (const QString& piece : pieces)
            deltas.append(textDelta(piece));
        list.addBlock(textBlock({}), deltas, true);
        list.add("message_delta", R"(,"delta":{"stop_reason":"end_turn","stop_sequence":null},)"
                                  R"("usage":{"output_tokens":)" +
                                      tokenCount(pieces.join(QString())) + '}');
        list.add("message_stop", {});
        return list.events();
    }

    [[nodiscard]] QByteArray message(const ModelCall& call, const QString& text) const override
    {
        QByteArray blocks = textBlock(text);
        if (call.webSearch)
            blocks = QByteArray(searchUse) + ',' + searchResult + ',' + blocks;
        return messageRecord(call, blocks, R"("end_turn")", tokenCount(text));
    }

    [[nodiscard]] QByteArray errorBody(int statusCode, const QString& text) const override
    {
        return errorRecord(errorType(statusCode), text);
    }

    [[nodiscard]] QByteArray event(const QByteArray& data) const override
    {
        return namedEvent("content_block_delta", data);
    }

    [[nodiscard]] QByteArray errorEvent() const override
    {
        return namedEvent("error", errorRecord("overloaded_error", u"Overloaded"_s));
    }

    [[nodiscard]] QByteArray contentType(bool streamed, bool success) const override
    {
        return streamed && success ? "text/event-stream; charset=utf-8" : "application/json";
    }
};

} // namespace

const Dialect& claudeDialect()
{
    static const ClaudeDialect dialect;
    return dialect;
}

} // namespace varno
