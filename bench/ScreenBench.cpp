#include "bench/Benches.h"
#include "bench/PageWindow.h"
#include "kit/Layout.h"
#include "kit/Theme.h"
#include "reader/BreadcrumbBar.h"
#include "reader/EntryHeader.h"
#include "reader/ErrorPanel.h"
#include "reader/RelatedTopics.h"
#include "reader/TOCSidebarView.h"

#include <QPixmap>
#include <QUuid>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longText = 64000;
constexpr int listLength = 2000;
constexpr int pageHeight = 700;

QStringList entries()
{
    QStringList all;
    for (int number = 1; number <= listLength; ++number)
        all.append(u"The name of number %1"_s.arg(number));
    return all;
}

/// From a part of the screen without a text to its being painted with one, in a width of the panel
/// and then in another.
template <typename Part>
void show(benchmark::State& state, const std::function<void(Part&)>& setText)
{
    for ([[maybe_unused]] auto iteration : state) {
        QWidget page;
        Part part;
        page.setMinimumHeight(pageHeight);
        page.setLayout(column({}, {grow(part)}));
        PageWindow window(page);
        const QPixmap before = page.grab();
        Blocks blocks;
        blocks.run([&] {
            setText(part);
            window.paint();
        });
        if (page.grab().toImage() == before.toImage())
            state.SkipWithError("the text is not there");
        blocks.run([&] {
            page.resize(page.width() - 40, page.height());
            window.paint();
        });
        state.SetIterationTime(blocks.total());
        state.counters["longest"] = blocks.longest();
    }
}

template <typename Part>
void add(Table& table, const std::string& name, const std::function<void(Part&)>& setText)
{
    const std::string benchmark = "screen/" + name;
    addTimed(benchmark, 2, show<Part>, setText)->Repetitions(7);
    table.add({.name = "main thread: longest block, " + name,
               .ours = benchmark + ":longest",
               .wanted = withinFrame});
}

} // namespace

void addScreen(Table& table)
{
    const QString word(longText, u'x');
    add<EntryHeader>(table, "a title of 64 KB", [=](EntryHeader& part) { part.setTitle(word); });
    add<BreadcrumbBar>(table, "a crumb of 64 KB", [=](BreadcrumbBar& part) {
        part.setCrumbs({{QUuid(), word}, {QUuid(), word}});
    });
    add<TOCSidebarView>(table, "2000 contents",
                        [all = entries()](TOCSidebarView& part) { part.setSections(all); });
    add<RelatedTopics>(table, "2000 topics",
                       [all = entries()](RelatedTopics& part) { part.setTopics(all); });
    add<ErrorPanel>(table, "an error text of 64 KB",
                    [=](ErrorPanel& part) { part.showFailure(word); });
}

} // namespace varno::bench
