#include "core/AIModel.h"

namespace varno {

using namespace Qt::StringLiterals;

AIModelDetails details(AIModel model)
{
    switch (model) {
    case AIModel::opus:
        return {u"Claude Opus 4.8"_s, u"Deepest, most thorough"_s, Provider::anthropic};
    case AIModel::sonnet:
        return {u"Claude Sonnet 5"_s, u"Smarter, more detailed"_s, Provider::anthropic};
    case AIModel::haiku:
        return {u"Claude Haiku 4.5"_s, u"Faster, more concise"_s, Provider::anthropic};
    case AIModel::geminiFlash:
        break;
    }
    return {u"Gemini 3.6 Flash"_s, u"Google's fast reasoning model"_s, Provider::google};
}

} // namespace varno
