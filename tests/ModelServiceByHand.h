#pragma once

#include "core/ModelService.h"

#include <QPointer>

#include <deque>
#include <memory>

namespace varno {

/// A model service whose replies the test gives by hand, and which remembers what it was asked.
class ModelServiceByHand final : public ModelService {
public:
    struct Entry {
        ModelRequest request;
        EntryStream::Sink sink;
        QPointer<EntryStream> stream; ///< null once nobody listens
    };
    struct TOC {
        QString topic;
        QString model;
        bool webSearch = false;
        TOCRequest::Sink sink;
    };

    mutable std::deque<Entry> entries;
    mutable std::deque<TOC> tocs;

    [[nodiscard]] std::unique_ptr<EntryStream>
    streamEntry(const ModelRequest& request) const override
    {
        auto stream = std::make_unique<EntryStream>();
        entries.push_back({request, stream->sink(), stream.get()});
        return stream;
    }

    [[nodiscard]] std::unique_ptr<TOCRequest>
    generateTOC(const QString& topic, const QString& model, bool webSearch) const override
    {
        auto request = std::make_unique<TOCRequest>();
        tocs.push_back({topic, model, webSearch, request->sink()});
        return request;
    }
};

} // namespace varno
