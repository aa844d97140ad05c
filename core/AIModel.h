#pragma once

#include "core/RawValue.h"

namespace varno {

/// The language models on offer, in the order in which they are shown. The raw value is the
/// identifier that the provider knows the model by.
enum class AIModel { opus, sonnet, haiku, geminiFlash };

template <>
struct RawValues<AIModel> {
    static constexpr std::array<RawCase<AIModel>, 4> cases = {{
        {AIModel::opus, QLatin1StringView("claude-opus-4-8")},
        {AIModel::sonnet, QLatin1StringView("claude-sonnet-5")},
        {AIModel::haiku, QLatin1StringView("claude-haiku-4-5")},
        {AIModel::geminiFlash, QLatin1StringView("gemini-3.6-flash")},
    }};
};

enum class Provider { anthropic, google };

struct AIModelDetails {
    QString displayName;
    QString description;
    Provider provider = Provider::anthropic;
};

AIModelDetails details(AIModel model);

} // namespace varno
