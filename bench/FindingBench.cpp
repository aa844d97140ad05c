#include "bench/Benches.h"
#include "bench/PageWindow.h"
#include "bench/Samples.h"
#include "reader/text/FindMatches.h"
#include "reader/text/MarkdownContentView.h"

#include <QTextCursor>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longPage = 1000000;
constexpr qsizetype page = 100000;
constexpr int repetitions = 15;

const QString word = u"the"_s;

/// A page of that length, written and painted.
class ShownPage {
public:
    explicit ShownPage(qsizetype length)
        : text(pageSample(length))
    {
        Blocks blocks;
        view.setText(text);
        finish(view.document(), blocks);
        window.paint();
    }

    /// What a change of the find text leads to.
    qsizetype find(const QString& needle)
    {
        matches = FindMatches(text, needle);
        view.setHighlightText(needle);
        window.paint();
        return matches.findMatchBlocks().size();
    }

    const QString text;
    MarkdownContentView view;
    PageWindow window{view};
    FindMatches matches;
};

void find(benchmark::State& state)
{
    ShownPage shown(longPage);
    for ([[maybe_unused]] auto iteration : state) {
        Blocks blocks;
        qsizetype hits = 0;
        blocks.run([&] { hits = shown.find(word); });
        state.SetIterationTime(blocks.total());
        state.counters["hits"] = static_cast<double>(hits);
        shown.find({});
    }
}

void sweep(benchmark::State& state)
{
    const ShownPage shown(longPage);
    for ([[maybe_unused]] auto iteration : state) {
        Blocks blocks;
        int hits = 0;
        blocks.run([&] {
            QTextCursor hit = shown.view.document().find(word);
            for (; !hit.isNull(); hit = shown.view.document().find(word, hit))
                ++hits;
        });
        state.SetIterationTime(blocks.total());
        state.counters["hits"] = hits;
    }
}

/// Each letter as it is typed.
void type(benchmark::State& state, const QString& typed)
{
    ShownPage shown(page);
    for ([[maybe_unused]] auto iteration : state) {
        Blocks blocks;
        for (qsizetype length = 1; length <= typed.size(); ++length) {
            blocks.run([&] { shown.find(typed.first(length)); });
            finish(shown.view.document(), blocks);
        }
        state.SetIterationTime(blocks.total());
        state.counters["longest"] = blocks.longest();
        shown.find({});
    }
}

} // namespace

void addFinding(Table& table)
{
    benchmark::RegisterBenchmark("find/page", find)
        ->UseManualTime()
        ->Iterations(3)
        ->Repetitions(repetitions);
    benchmark::RegisterBenchmark("find/page/QTextDocument", sweep)
        ->UseManualTime()
        ->Iterations(3)
        ->Repetitions(repetitions);
    benchmark::RegisterBenchmark("find/letter", type, u"the"_s)
        ->UseManualTime()
        ->Iterations(3)
        ->Repetitions(repetitions);

    table.add({.name = "word found in 1 MB and highlit, against one sweep",
               .ours = "find/page",
               .reference = "find/page/QTextDocument",
               .wanted = Bound{.kind = Bound::Kind::atMost, .ratio = 3}});
    table.add({.name = "main thread: longest block, letter typed, 100 KB",
               .ours = "find/letter:longest",
               .longest = 16.7e-3});
}

} // namespace varno::bench
