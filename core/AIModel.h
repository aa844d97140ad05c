#pragma once

#include "core/RawValue.h"

namespace varno {

using namespace Qt::StringLiterals;

/// The language models on offer, in the order in which they are shown. The raw value is the
/// identifier that the provider knows the model by.
enum class AIModel { opus, sonnet, haiku, geminiFlash };

template <>
struct RawValues<AIModel> {
    static constexpr std::array<RawCase<AIModel>, 4> cases = {{
        {AIModel::opus, "claude-opus-4-8"_L1},
        {AIModel::sonnet, "claude-sonnet-5"_L1},
        {AIModel::haiku, "claude-haiku-4-5"_L1},
        {AIModel::geminiFlash, "gemini-3.6-flash"_L1},
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
