#pragma once

#include <QCoreApplication>

#include <variant>

namespace varno {

/// A failure of the transport, or a reply in another format than expected.
struct NetworkError {
    QString description;
};
struct DecodingError {
    QString message;
};
struct NoAPIKey {};

/// The Anthropic service answered with a status other than 200.
struct InvalidResponse {
    int statusCode = 0;
};
using ClaudeError = std::variant<InvalidResponse, NetworkError, DecodingError, NoAPIKey>;

/// The Gemini service answered with a status other than 200.
struct APIError {
    int statusCode = 0;
    QString message;
};
using GeminiError = std::variant<APIError, NetworkError, DecodingError, NoAPIKey>;

/// What providers say to the user, in the user's language.
class ServiceText {
    Q_DECLARE_TR_FUNCTIONS(varno::ServiceText)
};

/// The description that the user reads.
QString errorDescription(const NetworkError& error);
QString errorDescription(const ClaudeError& error);
QString errorDescription(const GeminiError& error);

} // namespace varno
