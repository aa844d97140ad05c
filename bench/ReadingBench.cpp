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
constexpr qsizetype usual = 10000;

/// A page whose every part is within one list.
QString listSample()
{
    QString list = pageSample(longest);
    list.replace(u'\n', u' ');
    for (qsizetype end = 0; end < list.size(); end += 80)
        list.replace(end, 3, u"\n- "_s);
    return list.sliced(1);
}

/// A page of nothing but tables and code: one of each, as long as it can be.
QString formSample()
{
    constexpr qsizetype half = 100000;
    const QString row = u"| a cell of *words* | `code` in it | 42 |\n"_s;
    const QString line = u"    call(of, a, function); // and why\n"_s;
    return u"| One | Two | Three |\n|---|:-:|--:|\n"_s + row.repeated(half / row.size()) +
           u"\n```cpp\n"_s + line.repeated(half / line.size()) + u"```\n"_s;
}

/// The time that pieces of a page take, with the painting that goes with them: all of them, and
/// those of the first and of the last tenth.
struct Growth {
    double total = 0;
    double first = 0;
    double last = 0;
};

/// Appends what is missing of a text, piece by piece, while the end of it is on screen. The window
/// is painted every `piecesPerFrame` pieces; never when that is 0. Not inlined:
/// scripts/instructions counts what happens in here.
template <typename View>
[[gnu::noinline]] Growth streamPage(View& view, PageWindow& window, QStringView text,
                                    int piecesPerFrame)
{
    Growth growth;
    const qsizetype tenth = text.size() / 10;
    int piece = 0;
    for (qsizetype begin = 0; begin < text.size(); begin += pieceLength) {
        const double start = processorTime();
        view.appendText(text.sliced(begin, std::min(text.size() - begin, pieceLength)));
        if (piecesPerFrame > 0 && ++piece % piecesPerFrame == 0) {
            window.scrollToEnd();
            window.paint();
        }
        const double time = processorTime() - start;
        growth.total += time;
        if (begin < tenth)
            growth.first += time;
        else if (begin >= 9 * tenth)
            growth.last += time;
    }
    return growth;
}

/// Fonts are loaded and glyphs are drawn once, before anything is measured.
template <typename View>
void warmUp()
{
    View view;
    PageWindow window(view);
    Blocks blocks;
    view.appendText(pageSample(usual));
    finish(view.document(), blocks);
    window.scrollToEnd();
    window.paint();
}

template <typename View>
void stream(benchmark::State& state, const QString& text, int piecesPerFrame)
{
    warmUp<View>();
    for ([[maybe_unused]] auto iteration : state) {
        View view;
        PageWindow window(view);
        view.appendText(QStringView(text).first(shortest));
        window.scrollToEnd();
        window.paint();
        const Growth growth =
            streamPage(view, window, QStringView(text).sliced(shortest), piecesPerFrame);
        if (view.document().characterCount() < text.size() / 2)
            state.SkipWithError("the page is not there");
        state.SetIterationTime(growth.total);
        const double pieces = static_cast<double>(text.size() - shortest) / 10 / pieceLength;
        state.counters["first tenth"] = growth.first / pieces;
        state.counters["last tenth"] = growth.last / pieces;
    }
}

/// Few times when it takes long.
template <typename View>
void addStream(const std::string& benchmark, const QString& text, int piecesPerFrame)
{
    auto* added = addTimed(benchmark, 1, stream<View>, text, piecesPerFrame);
    if (text.size() > usual)
        added->Repetitions(3);
}

/// Ours against the plain view.
void addTotal(Table& table, const std::string& name, const std::string& benchmark,
              const QString& text, int piecesPerFrame)
{
    addStream<MarkdownContentView>(benchmark, text, piecesPerFrame);
    addStream<PlainView>(benchmark + "/plain", text, piecesPerFrame);
    table.add({.name = name,
               .ours = benchmark,
               .reference = benchmark + "/plain",
               .wanted = ratioAtMost(1.25)});
}

void addFlatness(Table& table, const std::string& name, const std::string& benchmark)
{
    table.add({.name = name,
               .ours = benchmark + ":last tenth",
               .reference = benchmark + ":first tenth",
               .wanted = ratioAtMost(1.3)});
}

} // namespace

void addReading(Table& table)
{
    constexpr int piecesPerFrame = 16;
    const QString page = pageSample(longest);
    addStream<MarkdownContentView>("reader/stream-list", listSample(), 0);
    addStream<MarkdownContentView>("reader/stream-forms", formSample(), 0);

    addFlatness(table, "piece shown on a page of 1 MB, against on 100 KB", "reader/stream");
    addFlatness(table, "the same, all of it one list", "reader/stream-list");
    addFlatness(table, "the same, 200 KB of a table and of code", "reader/stream-forms");
    addTotal(table, "page of 1 MB streamed, against as plain text", "reader/stream", page, 0);
    addTotal(table, "the same, painted every 16 pieces", "reader/stream-painted", page,
             piecesPerFrame);
    addTotal(table, "page of 10 KB streamed, against as plain text", "reader/short",
             page.first(usual), 0);
}

} // namespace varno::bench
