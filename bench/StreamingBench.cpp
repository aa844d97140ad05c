#include "bench/Benches.h"
#include "core/AppViewModel.h"
#include "platform/fake/FakePreferencesStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

const QString piece = u"a few words "_s;

/// The pieces are measured while the page grows to twice its length. So each size pays for exactly
/// one enlargement of its memory, as many pieces as that serves.
struct Plan {
    qsizetype pageLength;
    int piecesPerDelivery; ///< that the event loop finds waiting each time
    int pages;
};

/// Feeds the stream that was asked for last.
class HandFedService final : public ModelService {
public:
    [[nodiscard]] std::unique_ptr<EntryStream> streamEntry(const ModelRequest&) const override
    {
        auto stream = std::make_unique<EntryStream>();
        m_sink = stream->sink();
        return stream;
    }
    [[nodiscard]] std::unique_ptr<TOCRequest> generateTOC(const QString&, const QString&,
                                                          bool) const override
    {
        return std::make_unique<TOCRequest>();
    }

    void send(const QString& text) const { m_sink->send(text); }

private:
    mutable std::optional<EntryStream::Sink> m_sink;
};

/// The controller with one open page, and a screen that looks at the text after every piece.
class OpenPage {
public:
    OpenPage()
    {
        QObject::connect(&m_model, &AppViewModel::changed, &m_model,
                         [this] { m_seen = m_model.streamingContent().size(); });
        m_model.search(u"sediment"_s);
        while (!m_model.isShowingEntry()) // before the history has been read
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    /// Begins the page anew and brings it to `length`, in pieces as a page grows.
    void build(qsizetype length)
    {
        constexpr qsizetype largest = 256;
        m_model.reloadCurrentPage();
        for (qsizetype rest = length; rest > 0; rest -= largest)
            deliver(QString(std::min(rest, largest), u'x'), 1);
    }

    void deliver(const QString& text, int times)
    {
        for (int i = 0; i < times; ++i)
            m_service.send(text);
        QCoreApplication::processEvents();
    }

    [[nodiscard]] qsizetype seen() const { return m_seen; }

private:
    QTemporaryDir m_folder;
    FakePreferencesStore m_preferences;
    HandFedService m_service;
    HistoryStore m_history{m_folder.filePath(u"history.json"_s)};
    AppViewModel m_model{{m_preferences, m_history, m_service, m_service}};
    qsizetype m_seen = 0;
};

void appendPieces(benchmark::State& state, const Plan& plan)
{
    OpenPage page;
    const qsizetype deliveries = plan.pageLength / (plan.piecesPerDelivery * piece.size());
    const qsizetype pieces = deliveries * plan.piecesPerDelivery;
    for ([[maybe_unused]] auto iteration : state) {
        page.build(plan.pageLength);
        QElapsedTimer timer;
        timer.start();
        for (qsizetype i = 0; i < deliveries; ++i)
            page.deliver(piece, plan.piecesPerDelivery);
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        if (page.seen() != plan.pageLength + pieces * piece.size())
            state.SkipWithError("pieces are missing on the page");
    }
    state.SetItemsProcessed(state.iterations() * pieces);
}

void add(const std::string& name, const Plan& plan)
{
    benchmark::RegisterBenchmark(name.c_str(), appendPieces, plan)
        ->UseManualTime()
        ->Iterations(plan.pages);
}

void addComparison(Table& table, const std::string& name, int piecesPerDelivery)
{
    const std::string prefix = "streaming/by-" + std::to_string(piecesPerDelivery);
    add(prefix + "/1MB",
        {.pageLength = 1000000, .piecesPerDelivery = piecesPerDelivery, .pages = 1});
    add(prefix + "/2KB",
        {.pageLength = 2000, .piecesPerDelivery = piecesPerDelivery, .pages = 500});
    table.add({.name = name,
               .measure = Measure::timePerItem,
               .ours = prefix + "/1MB",
               .reference = prefix + "/2KB",
               .wanted = Bound{.kind = Bound::Kind::atMost, .ratio = 1.5}});
}

} // namespace

void addStreaming(Table& table)
{
    addComparison(table, "piece appended at 1 MB, against at 2 KB", 1);
    addComparison(table, "the same, 32 pieces in each turn of the event loop", 32);
}

} // namespace varno::bench
