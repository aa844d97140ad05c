#include "bench/Benches.h"
#include "bench/PageWindow.h"
#include "bench/PlainView.h"
#include "bench/Samples.h"
#include "reader/text/MarkdownContentView.h"

#include <algorithm>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype shortest = 2000; // characters that are there when the measurement begins
constexpr qsizetype longest = 1000000;
constexpr int repetitions = 3;

/// A page whose every part is within one list.
QString listSample()
{
    QString list = pageSample(longest);
    list.replace(u'\n', u' ');
    for (qsizetype end = 0; end < list.size(); end += 80)
        list.replace(end, 3, u"\n- "_s);
    return list.sliced(1);
}

/// The time of each piece of a page that grows from its shortest to its longest, together with the
/// painting that goes with it, from `from` to `to` of the length in between.
class Growth {
public:
    explicit Growth(qsizetype length)
        : m_tenth((length - shortest) / 10)
    {
    }

    template <typename Work>
    void run(qsizetype position, Work work)
    {
        const double begin = processorTime();
        work();
        const double time = processorTime() - begin;
        m_total += time;
        if (position < shortest + m_tenth)
            m_first += time;
        else if (position >= shortest + 9 * m_tenth)
            m_last += time;
    }

    void report(benchmark::State& state) const
    {
        const double pieces = static_cast<double>(m_tenth) / pieceLength;
        state.SetIterationTime(m_total);
        state.counters["total"] = m_total;
        state.counters["first tenth"] = m_first / pieces;
        state.counters["last tenth"] = m_last / pieces;
    }

private:
    qsizetype m_tenth;
    double m_first = 0;
    double m_last = 0;
    double m_total = 0;
};

/// Streams a page while its end is on screen. Every `piecesPerFrame` pieces the window is painted;
/// never when that is 0.
template <typename View>
void stream(benchmark::State& state, const QString& text, int piecesPerFrame)
{
    for ([[maybe_unused]] auto iteration : state) {
        View view;
        PageWindow window(view);
        view.appendText(QStringView(text).first(shortest));
        window.scrollToEnd();
        window.paint();
        Growth growth(text.size());
        qsizetype piece = 0;
        for (qsizetype begin = shortest; begin < text.size(); begin += pieceLength) {
            const QStringView rest = QStringView(text).sliced(begin);
            growth.run(begin,
                       [&] { view.appendText(rest.first(std::min(rest.size(), pieceLength))); });
            if (piecesPerFrame == 0 || ++piece % piecesPerFrame != 0)
                continue;
            growth.run(begin, [&] {
                window.scrollToEnd();
                window.paint();
            });
        }
        if (view.document().characterCount() < text.size() / 2)
            state.SkipWithError("the page is not there");
        growth.report(state);
    }
}

using Streaming = void (*)(benchmark::State&, const QString&, int);

void add(const std::string& name, Streaming streaming, const QString& text, int piecesPerFrame)
{
    benchmark::RegisterBenchmark(name.c_str(), streaming, text, piecesPerFrame)
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(repetitions);
}

void addFlatness(Table& table, const std::string& name, const std::string& benchmark)
{
    table.add({.name = name,
               .ours = benchmark + ":last tenth",
               .reference = benchmark + ":first tenth",
               .wanted = Bound{.kind = Bound::Kind::atMost, .ratio = 1.3}});
}

void addTotal(Table& table, const std::string& name, const std::string& benchmark,
              const std::string& reference)
{
    table.add({.name = name,
               .ours = benchmark + ":total",
               .reference = reference + ":total",
               .wanted = Bound{.kind = Bound::Kind::atMost, .ratio = 1.25}});
}

} // namespace

void addReading(Table& table)
{
    constexpr int piecesPerFrame = 16;
    const QString page = pageSample(longest);
    add("reader/stream", stream<MarkdownContentView>, page, 0);
    add("reader/stream/plain", stream<PlainView>, page, 0);
    add("reader/stream-painted", stream<MarkdownContentView>, page, piecesPerFrame);
    add("reader/stream-painted/plain", stream<PlainView>, page, piecesPerFrame);
    add("reader/stream-list", stream<MarkdownContentView>, listSample(), 0);

    addFlatness(table, "piece shown on a page of 1 MB, against on 100 KB", "reader/stream");
    addFlatness(table, "the same, all of it one list", "reader/stream-list");
    addTotal(table, "page of 1 MB streamed, against as plain text", "reader/stream",
             "reader/stream/plain");
    addTotal(table, "the same, painted every 16 pieces", "reader/stream-painted",
             "reader/stream-painted/plain");
}

} // namespace varno::bench
