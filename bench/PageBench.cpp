#include "bench/Benches.h"
#include "bench/PageWindow.h"
#include "bench/Samples.h"
#include "kit/Theme.h"
#include "reader/text/MarkdownContentView.h"

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longPage = 1000000;
constexpr qsizetype page = 100000;
constexpr int repetitions = 7;
constexpr double frame = 16.7e-3;
constexpr double soon = 100e-3;

/// A page in its window.
class ShownPage {
public:
    explicit ShownPage(const QString& text)
    {
        Blocks blocks;
        view.setText(text);
        finish(view.document(), blocks);
        window.paint();
    }

    MarkdownContentView view;
    PageWindow window{view};
};

void switchTheme(benchmark::State& state)
{
    ShownPage shown(pageSample(page));
    bool isDark = false;
    for ([[maybe_unused]] auto iteration : state) {
        isDark = !isDark;
        Blocks blocks;
        blocks.run([&] {
            setTheme(shown.window.widget(), isDark ? AppTheme::dark : AppTheme::cream);
            shown.view.setTextColor(themeColor(shown.window.widget().palette(), ColorRole::text));
            shown.window.paint();
        });
        state.SetIterationTime(blocks.total());
    }
}

/// From one size to another and back, with the start or the end of the page on screen.
void switchSize(benchmark::State& state, bool atEnd)
{
    ShownPage shown(pageSample(page));
    int size = pointSize(FontSize::medium);
    for ([[maybe_unused]] auto iteration : state) {
        size = pointSize(FontSize::large) + pointSize(FontSize::medium) - size;
        if (atEnd)
            shown.window.scrollToEnd();
        shown.window.paint();
        Blocks blocks;
        blocks.run([&] {
            shown.view.setFontSize(size);
            if (atEnd)
                shown.window.scrollToEnd();
            shown.window.paint();
        });
        state.SetIterationTime(blocks.total());
        finish(shown.view.document(), blocks);
        state.counters["whole page"] = blocks.total();
        state.counters["longest"] = blocks.longest();
    }
}

/// From nothing to the whole page, and what it keeps the main thread by.
void open(benchmark::State& state, const QString& text)
{
    for ([[maybe_unused]] auto iteration : state) {
        MarkdownContentView view;
        PageWindow window(view);
        Blocks blocks;
        blocks.run([&] { view.setText(text); });
        blocks.run([&] { window.paint(); });
        state.SetIterationTime(blocks.total());
        finish(view.document(), blocks);
        blocks.run([&] {
            window.scrollToEnd();
            window.paint();
        });
        state.counters["whole page"] = blocks.total();
        state.counters["longest"] = blocks.longest();
        if (view.document().isEmpty())
            state.SkipWithError("the page is not there");
    }
}

void add(const std::string& name, const std::function<void(benchmark::State&)>& function)
{
    benchmark::RegisterBenchmark(name.c_str(), function)
        ->UseManualTime()
        ->Iterations(2)
        ->Repetitions(repetitions);
}

void addHostile(Table& table, const std::string& name, const QString& text)
{
    const std::string benchmark = "hostile/" + name;
    add(benchmark, [text](benchmark::State& state) { open(state, text); });
    table.add({.name = "the same, " + name, .ours = benchmark + ":longest", .longest = soon});
}

void addHostile(Table& table)
{
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"_s;
    addHostile(table, "one line of 1 MB", u"word "_s.repeated(200000));
    addHostile(table, "one word of 1 MB", u"w"_s.repeated(1000000));
    addHostile(table, "one paragraph of 1 MB", u"some words in a line\n"_s.repeated(50000));
    addHostile(table, "20000 levels of emphasis",
               u"*a **b "_s.repeated(10000) + u" b** a*"_s.repeated(10000));
    addHostile(table, "20000 levels of links", u"["_s.repeated(20000) + u"](a)"_s.repeated(20000));
    addHostile(table, "50000 brackets", u"["_s.repeated(50000));
    addHostile(table, "20000 combining marks", u"a"_s + QString(20000, QChar(0x301)));
    addHostile(table, "20000 bidi controls",
               QString(10000, QChar(0x202E)) + u"a"_s + QString(10000, QChar(0x202C)));
    addHostile(table, "16 KB of family emoji", family.repeated(16384 / family.toUtf8().size()));
    addHostile(table, "1 MB of headings in a row", u"## h\n"_s.repeated(200000));
}

} // namespace

void addPage(Table& table)
{
    add("page/theme", switchTheme);
    add("page/size", [](benchmark::State& state) { switchSize(state, false); });
    add("page/size/at-end", [](benchmark::State& state) { switchSize(state, true); });
    add("page/open", [](benchmark::State& state) { open(state, pageSample(longPage)); });

    table.add({.name = "theme switched, 100 KB", .ours = "page/theme", .longest = soon});
    table.add({.name = "text size switched, 100 KB", .ours = "page/size", .longest = soon});
    table.add({.name = "the same, the whole page", .ours = "page/size:whole page"});
    table.add({.name = "the same, with the page's end on screen",
               .ours = "page/size/at-end",
               .longest = soon});
    table.add({.name = "page of 1 MB opened, until it is painted", .ours = "page/open"});
    table.add({.name = "the same, the whole page", .ours = "page/open:whole page"});
    table.add({.name = "main thread: longest block, page of 1 MB opened",
               .ours = "page/open:longest",
               .longest = frame});
    addHostile(table);
}

} // namespace varno::bench
