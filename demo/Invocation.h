#pragma once

#include "core/AIModel.h"

#include <QStringList>

#include <optional>

namespace varno {

constexpr int usageError = 2; ///< exit status for arguments that are not in order

/// What the demonstrations are started with: [QUERY [MODEL]].
struct Invocation {
    QString query;                   ///< may be empty
    AIModel model = AIModel::sonnet; ///< any part of its identifier names it
};

/// Nothing when the arguments of the process are not in order; then `error` says what they have to
/// be.
[[nodiscard]] std::optional<Invocation> readInvocation(const QStringList& arguments,
                                                       QString& error);

/// Says on standard error why the program ends; returns `status`.
int fail(const QString& sentence, int status = 1);

} // namespace varno
