#include "demo/Invocation.h"

#include <QFileInfo>

#include <cstdio>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// The model whose identifier contains `name`.
std::optional<AIModel> modelNamed(const QString& name)
{
    for (const auto& known : RawValues<AIModel>::cases) {
        if (QString(known.raw).contains(name, Qt::CaseInsensitive))
            return known.value;
    }
    return std::nullopt;
}

QString modelNames()
{
    QStringList names;
    for (const auto& known : RawValues<AIModel>::cases)
        names.append(known.raw);
    return names.join(u", "_s);
}

} // namespace

Result<Invocation> readInvocation(const QStringList& arguments)
{
    if (arguments.size() > 3) {
        const QString program = QFileInfo(arguments.value(0)).fileName();
        return Failure{u"Usage: %1 [QUERY [MODEL]]\nModels: %2"_s.arg(program, modelNames())};
    }
    Invocation invocation{.query = arguments.value(1).trimmed()};
    if (arguments.size() == 3) {
        const std::optional<AIModel> model = modelNamed(arguments.at(2));
        if (!model)
            return Failure{u"There is no such model. The models are: %1"_s.arg(modelNames())};
        invocation.model = *model;
    }
    return invocation;
}

int fail(const QString& sentence, int status)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(sentence));
    return status;
}

} // namespace varno
