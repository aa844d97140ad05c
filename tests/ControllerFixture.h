#pragma once

#include "core/AppViewModel.h"
#include "platform/fake/FakePreferencesStore.h"
#include "tests/Patience.h"

#include <QPointer>
#include <QTemporaryDir>

#include <deque>
#include <memory>

namespace varno {

using namespace Qt::StringLiterals;

inline constexpr QLatin1StringView article = "the history of the roman empire"_L1;
inline constexpr QLatin1StringView articleTitle = "The History Of The Roman Empire"_L1;

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
    mutable std::deque<std::stop_token> preparations;

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

    void prepare(const std::stop_token& stop) const override { preparations.push_back(stop); }
};

/// A controller on a history file of its own, with model services played by the test.
class ControllerFixture {
public:
    using Change = AppViewModel::Change;

    /// On the history file of another, if it is told of one.
    explicit ControllerFixture(const QString& otherPath = {})
        : path(otherPath.isEmpty() ? folder.filePath(u"history.json"_s) : otherPath)
    {
        start();
    }

    /// As after a restart of the program: the preferences and the file stay.
    void start()
    {
        model.reset();
        history.reset(); // finishes what is being written
        history = std::make_unique<HistoryStore>(path);
        model = std::make_unique<AppViewModel>(
            AppViewModel::Dependencies{.preferences = preferences,
                                       .history = *history,
                                       .claude = claude,
                                       .gemini = gemini,
                                       .now = [this] { return now; }});
        QObject::connect(model.get(), &AppViewModel::changed, model.get(),
                         [this](AppViewModel::Changes what) { announced |= what; });
        history->read();
        QTRY_VERIFY(history->isRead());
    }

    /// Sends `text` as the answer to the newest request for an entry, and ends it.
    void answer(const QString& text, const EntryStream::Outcome& outcome = EntryStream::Completed())
    {
        const auto& sink = claude.entries.back().sink;
        sink.send(text);
        sink.finish(outcome);
        QTRY_VERIFY(!model->isStreaming());
    }

    /// Sends a piece of an answer and waits until it is on show.
    void send(const QString& piece)
    {
        const QString wanted = model->streamingContent() + piece;
        claude.entries.back().sink.send(piece);
        QTRY_COMPARE(model->streamingContent(), wanted);
    }

    /// A finished entry for `query`.
    void write(const QString& query, const QString& text = u"Text."_s)
    {
        model->search(query);
        answer(text);
    }

    /// A finished article with its table of contents.
    void writeArticle(const QString& query, const QStringList& sections)
    {
        model->search(query);
        claude.tocs.back().sink.finish(sections);
        answer(u"Overview."_s);
        QTRY_VERIFY(!model->tocIsLoading());
    }

    /// Opens a section, and writes it if it has to be written.
    void openSection(const QString& section, const QString& text = u"Section."_s)
    {
        model->navigateTo(section);
        if (model->isStreaming())
            answer(text);
    }

    /// The titles of the pages on the trail.
    [[nodiscard]] QStringList trail() const
    {
        QStringList titles;
        for (const QUuid& id : model->session()->navigationHistory)
            titles.append(model->session()->page(id)->title);
        return titles;
    }

    QTemporaryDir folder;
    const QString path;
    FakePreferencesStore preferences;
    ModelServiceByHand claude;
    ModelServiceByHand gemini;
    QDateTime now = QDateTime::fromString(u"2026-05-20T12:00:00Z"_s, Qt::ISODate);
    AppViewModel::Changes announced;
    std::unique_ptr<HistoryStore> history;
    std::unique_ptr<AppViewModel> model;
};

} // namespace varno
