#include "bench/Benches.h"
#include "bench/PageWindow.h"
#include "bench/Samples.h"
#include "kit/Theme.h"
#include "reader/text/FindMatches.h"
#include "reader/text/MarkdownContentView.h"

#include <QTextCursor>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longPage = 1000000;
constexpr qsizetype page = 100000;

const QString word = u"the"_s;

/// A page in its window, written and painted.
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

    /// What a change of the find text leads to; how often it is found.
    qsizetype find(const QString& needle)
    {
        const FindMatches matches(text, needle);
        view.setHighlightText(needle);
        window.paint();
        return matches.findMatchBlocks().size();
    }

    const QString text;
    MarkdownContentView view;
    PageWindow window{view};
};

void switchTheme(benchmark::State& state)
{
    ShownPage shown(page);
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
    ShownPage shown(page);
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
    }
}

void find(benchmark::State& state)
{
    ShownPage shown(longPage);
    for ([[maybe_unused]] auto iteration : state) {
        Blocks blocks;
        blocks.run([&] { state.counters["hits"] = static_cast<double>(shown.find(word)); });
        state.SetIterationTime(blocks.total());
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
void type(benchmark::State& state)
{
    ShownPage shown(page);
    for ([[maybe_unused]] auto iteration : state) {
        Blocks blocks;
        for (qsizetype length = 1; length <= word.size(); ++length) {
            blocks.run([&] { shown.find(word.first(length)); });
            finish(shown.view.document(), blocks);
        }
        state.SetIterationTime(blocks.total());
        state.counters["longest"] = blocks.longest();
        shown.find({});
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

template <typename... Run>
void add(const std::string& name, Run... run)
{
    addTimed(name, 2, run...)->Repetitions(7);
}

void addHostile(Table& table)
{
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"_s;
    const std::initializer_list<std::pair<std::string, QString>> texts = {
        {"one line of 1 MB", u"word "_s.repeated(200000)},
        {"one word of 1 MB", u"w"_s.repeated(1000000)},
        {"one paragraph of 1 MB", u"some words in a line\n"_s.repeated(50000)},
        {"20000 levels of emphasis", u"*a **b "_s.repeated(10000) + u" b** a*"_s.repeated(10000)},
        {"20000 levels of links", u"["_s.repeated(20000) + u"](a)"_s.repeated(20000)},
        {"50000 brackets", u"["_s.repeated(50000)},
        {"20000 combining marks", u"a"_s + QString(20000, QChar(0x301))},
        {"20000 bidi controls",
         QString(10000, QChar(0x202E)) + u"a"_s + QString(10000, QChar(0x202C))},
        {"16 KB of family emoji", family.repeated(16384 / family.toUtf8().size())},
        {"1 MB of headings in a row", u"## h\n"_s.repeated(200000)},
    };
    for (const auto& [name, text] : texts) {
        const std::string benchmark = "hostile/" + name;
        add(benchmark, open, text);
        table.add({.name = "the same, " + name, .ours = benchmark + ":longest", .wanted = atOnce});
    }
}

} // namespace

void addPage(Table& table)
{
    add("find/page", find);
    add("find/page/QTextDocument", sweep);
    add("find/letter", type);
    table.add({.name = "word found in 1 MB and highlit, against one sweep",
               .ours = "find/page",
               .reference = "find/page/QTextDocument",
               .wanted = ratioAtMost(3)});
    table.add({.name = "main thread: longest block, letter typed, 100 KB",
               .ours = "find/letter:longest",
               .wanted = withinFrame});

    add("page/theme", switchTheme);
    add("page/size", switchSize, false);
    add("page/size/at-end", switchSize, true);
    add("page/open", open, pageSample(longPage));
    table.add({.name = "theme switched, 100 KB", .ours = "page/theme", .wanted = atOnce});
    table.add({.name = "text size switched, 100 KB", .ours = "page/size", .wanted = atOnce});
    table.add({.name = "the same, the whole page", .ours = "page/size:whole page"});
    table.add({.name = "the same, with the page's end on screen",
               .ours = "page/size/at-end",
               .wanted = atOnce});
    table.add({.name = "page of 1 MB opened, until it is painted", .ours = "page/open"});
    table.add({.name = "the same, the whole page", .ours = "page/open:whole page"});
    table.add({.name = "main thread: longest block, page of 1 MB opened",
               .ours = "page/open:longest",
               .wanted = withinFrame});
    addHostile(table);
}

} // namespace varno::bench
