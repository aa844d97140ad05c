#include "core/AIModel.h"

#include <QCoreApplication>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

struct Description {
    Q_DECLARE_TR_FUNCTIONS(varno::AIModel)
};

} // namespace

AIModelDetails details(AIModel model)
{
    switch (model) {
    case AIModel::opus:
        return {u"Claude Opus 4.8"_s, Description::tr("Deepest, most thorough"),
                Provider::anthropic};
    case AIModel::sonnet:
        return {u"Claude Sonnet 5"_s, Description::tr("Smarter, more detailed"),
                Provider::anthropic};
    case AIModel::haiku:
        return {u"Claude Haiku 4.5"_s, Description::tr("Faster, more concise"),
                Provider::anthropic};
    case AIModel::geminiFlash:
        break;
    }
    return {u"Gemini 3.6 Flash"_s, Description::tr("Google's fast reasoning model"),
            Provider::google};
}

} // namespace varno
