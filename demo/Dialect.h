#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <variant>

namespace varno {

struct ReceivedRequest;

/// A request that is in order.
struct ModelCall {
    QString model;
    QString prompt;
    bool streamed = false;
    bool webSearch = false;
};

/// The answer to a request that is not. `message` fits to be shown and repeats nothing secret.
struct Refusal {
    int statusCode = 400;
    QString message;
    bool streamed = false; ///< as far as one can tell
};

/// A stretch of a reply that is sent in one go.
struct WireEvent {
    QByteArray bytes;
    bool hasText = false; ///< holds a piece of the answer
};

/// How one provider's service is spoken to, and how it speaks. Stateless.
class Dialect {
public:
    virtual ~Dialect() = default;

    [[nodiscard]] virtual std::variant<ModelCall, Refusal>
    read(const ReceivedRequest& request) const = 0;

    /// A streamed reply.
    [[nodiscard]] virtual QList<WireEvent> events(const ModelCall& call,
                                                  const QStringList& pieces) const = 0;
    /// A reply in one.
    [[nodiscard]] virtual QByteArray message(const ModelCall& call, const QString& text) const = 0;
    [[nodiscard]] virtual QByteArray errorBody(int statusCode, const QString& text) const = 0;

    /// An event with `data` where the JSON of a piece of text stands.
    [[nodiscard]] virtual QByteArray event(const QByteArray& data) const = 0;
    /// The event that tells, in the middle of a reply, that the service is overloaded.
    [[nodiscard]] virtual QByteArray errorEvent() const = 0;

    [[nodiscard]] virtual QByteArray contentType(bool streamed, bool success) const = 0;
};

/// Anthropic's messages.
const Dialect& claudeDialect();

/// Google's Gemini.
const Dialect& geminiDialect();

} // namespace varno
