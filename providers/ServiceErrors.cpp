#include "providers/ServiceErrors.h"

namespace varno {
namespace {

struct Common {
    QString operator()(const NetworkError& error) const
    {
        return ServiceText::tr("Network error: %1").arg(error.description);
    }
    QString operator()(const DecodingError& error) const
    {
        return ServiceText::tr("Response parse error: %1").arg(error.message);
    }
};

struct ForClaude : Common {
    using Common::operator();
    QString operator()(const InvalidResponse& response) const
    {
        switch (response.statusCode) {
        case 401:
            return ServiceText::tr(
                "Invalid API key. Please check your Anthropic API key in Settings.");
        case 429:
            return ServiceText::tr("Rate limit reached. Please wait a moment, then try again.");
        case 529: // "overloaded", a code of Anthropic's own
            return ServiceText::tr(
                "Anthropic's servers are overloaded. Please try again in a moment.");
        default:
            return ServiceText::tr("API error (HTTP %1). Please try again.")
                .arg(response.statusCode);
        }
    }
    QString operator()(NoAPIKey) const
    {
        return ServiceText::tr("No API key found. Please add your Anthropic API key in Settings.");
    }
};

struct ForGemini : Common {
    using Common::operator();
    QString operator()(const APIError& error) const { return error.message; }
    QString operator()(NoAPIKey) const
    {
        return ServiceText::tr(
            "No Gemini API key found. Please add your Google AI API key in Settings.");
    }
};

} // namespace

QString errorDescription(const NetworkError& error)
{
    return Common()(error);
}
QString errorDescription(const ClaudeError& error)
{
    return std::visit(ForClaude(), error);
}
QString errorDescription(const GeminiError& error)
{
    return std::visit(ForGemini(), error);
}

} // namespace varno
