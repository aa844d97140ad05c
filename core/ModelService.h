#pragma once

#include "core/EntryStream.h"
#include "core/TOCRequest.h"

#include <QString>

#include <chrono>
#include <memory>
#include <stop_token>

namespace varno {

/// What is asked of a language model.
struct ModelRequest {
    QString prompt = {};
    QString systemPrompt = {};
    QString model = {}; ///< the raw value of an AIModel
    bool webSearch = false;
};

/// A provider of language models. Stateless towards its callers: any number of calls at once, from
/// any thread with an event loop.
class ModelService {
public:
    virtual ~ModelService() = default;

    /// Starts at once and returns at once. The pieces carry what follows the first "<entry>" of the
    /// answer, or all of the answer if it has none.
    [[nodiscard]] virtual std::unique_ptr<EntryStream>
    streamEntry(const ModelRequest& request) const = 0;

    /// The names of the sections for an article on `topic`; empty when the answer held no usable
    /// list. Starts at once and returns at once.
    [[nodiscard]] virtual std::unique_ptr<TOCRequest>
    generateTOC(const QString& topic, const QString& model, bool webSearch) const = 0;

    /// How long what was prepared stays so.
    static constexpr std::chrono::seconds preparedFor{5};

    /// A hint that an entry may be wanted soon, where there is known to be a key: begins what the
    /// next stream would have to wait for, as far as that needs neither the request nor the key,
    /// and returns at once. `stop` drops it; so does time.
    virtual void prepare(const std::stop_token& /*stop*/) const {}
};

} // namespace varno
