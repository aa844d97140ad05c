#include "providers/ServiceErrors.h"

namespace varno {
namespace {

using namespace Qt::StringLiterals;

struct Common {
    QString operator()(const NetworkError& error) const
    {
        return u"Network error: "_s + error.description;
    }
    QString operator()(const DecodingError& error) const
    {
        return u"Response parse error: "_s + error.message;
    }
};

struct ForClaude : Common {
    using Common::operator();
    QString operator()(const InvalidResponse& response) const
    {
        switch (response.statusCode) {
        case 401:
            return u"Invalid API key. Please check your Anthropic API key in Settings."_s;
        case 429:
            return u"Rate limit reached. Please wait a moment, then try again."_s;
        case 529: // "overloaded", a code of Anthropic's own
            return u"Anthropic's servers are overloaded. Please try again in a moment."_s;
        default:
            return u"API error (HTTP %1). Please try again."_s.arg(response.statusCode);
        }
    }
    QString operator()(NoAPIKey) const
    {
        return u"No API key found. Please add your Anthropic API key in Settings."_s;
    }
};

struct ForGemini : Common {
    using Common::operator();
    QString operator()(const APIError& error) const { return error.message; }
    QString operator()(NoAPIKey) const
    {
        return u"No Gemini API key found. Please add your Google AI API key in Settings."_s;
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
