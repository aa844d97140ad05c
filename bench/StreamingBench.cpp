#include "bench/Benches.h"
#include "tests/ControllerFixture.h"

#include <QElapsedTimer>

#include <algorithm>

namespace varno::bench {
namespace {

const QString piece = u"a few words "_s;

/// The pieces are measured while the page grows to twice its length. So each size pays for exactly
/// one enlargement of its memory, as many pieces as that serves.
struct Plan {
    qsizetype pageLength;
    int piecesPerDelivery; ///< that the event loop finds waiting each time
};

/// The controller with one open page, and a screen that looks at the text after every piece.
class OpenPage {
public:
    OpenPage()
    {
        QObject::connect(m_fixture.model.get(), &AppViewModel::changed, m_fixture.model.get(),
                         [this] { m_seen = m_fixture.model->streamingContent().size(); });
        m_fixture.model->search(u"sediment"_s);
    }

    /// Begins the page anew and brings it to `length`, in pieces as a page grows.
    void build(qsizetype length)
    {
        constexpr qsizetype largest = 256;
        m_fixture.model->reloadCurrentPage();
        for (qsizetype rest = length; rest > 0; rest -= largest)
            deliver(QString(std::min(rest, largest), u'x'), 1);
    }

    void deliver(const QString& text, int times)
    {
        for (int i = 0; i < times; ++i)
            m_fixture.claude.entries.back().sink.send(text);
        QCoreApplication::processEvents();
    }

    [[nodiscard]] qsizetype seen() const { return m_seen; }

private:
    ControllerFixture m_fixture;
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

void addComparison(Table& table, const std::string& name, int piecesPerDelivery)
{
    const std::string prefix = "streaming/by-" + std::to_string(piecesPerDelivery);
    for (const auto& [suffix, length, pages] :
         {std::tuple("/1MB", 1000000, 1), std::tuple("/2KB", 2000, 500)})
        addTimed(prefix + suffix, pages, appendPieces, Plan{length, piecesPerDelivery});
    table.add({.name = name,
               .measure = Measure::timePerItem,
               .ours = prefix + "/1MB",
               .reference = prefix + "/2KB",
               .wanted = ratioAtMost(1.5)});
}

} // namespace

void addStreaming(Table& table)
{
    addComparison(table, "piece appended at 1 MB, against at 2 KB", 1);
    addComparison(table, "the same, 32 pieces in each turn of the event loop", 32);
}

} // namespace varno::bench
