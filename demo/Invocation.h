#pragma once

#include "core/AIModel.h"
#include "platform/Result.h"

#include <QStringList>

#include <optional>

namespace varno {

constexpr int usageError = 2; ///< exit status for arguments that are not in order

/// What the demonstrations are started with: [QUERY [MODEL]].
struct Invocation {
    QString query;                   ///< may be empty
    AIModel model = AIModel::sonnet; ///< any part of its identifier names it
};

/// From the arguments of the process; a failure says what they have to be.
[[nodiscard]] Result<Invocation> readInvocation(const QStringList& arguments);

/// Says on standard error why the program ends; returns `status`.
int fail(const QString& sentence, int status = 1);

} // namespace varno
