#include "bench/PageWindow.h"
#include "bench/PlainView.h"
#include "bench/Samples.h"
#include "reader/text/MarkdownContentView.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// One page streamed, for a tool that counts the instructions of `streamPage` alone.
//     varno-instructions styled|plain [PIECES_PER_FRAME]

namespace varno::bench {
namespace {

constexpr qsizetype pageLength = 10000;

/// Fonts are loaded and glyphs are drawn once, before anything is counted.
template <typename View>
void warmUp()
{
    View view;
    PageWindow window(view);
    view.appendText(pageSample(pageLength));
    Blocks blocks;
    finish(view.document(), blocks);
    window.scrollToEnd();
    window.paint();
}

} // namespace

/// Appends piece by piece; lays out and paints the window after every `piecesPerFrame`, never when
/// that is 0.
template <typename View>
[[gnu::noinline]] void streamPage(View& view, PageWindow& window, QStringView text,
                                  int piecesPerFrame)
{
    int piece = 0;
    for (; !text.isEmpty(); text = text.sliced(std::min(text.size(), pieceLength))) {
        view.appendText(text.first(std::min(text.size(), pieceLength)));
        if (piecesPerFrame == 0 || ++piece % piecesPerFrame != 0)
            continue;
        window.scrollToEnd();
        window.paint();
    }
}

namespace {

template <typename View>
int stream(int piecesPerFrame)
{
    View view;
    PageWindow window(view);
    streamPage(view, window, pageSample(pageLength), piecesPerFrame);
    return view.document().characterCount() > pageLength / 2 ? 0 : 1;
}

} // namespace
} // namespace varno::bench

int main(int argc, char** argv)
{
    using namespace varno::bench;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const std::string_view side = argc > 1 ? argv[1] : "";
    const int piecesPerFrame = argc > 2 ? std::atoi(argv[2]) : 0;
    warmUp<varno::MarkdownContentView>();
    warmUp<PlainView>();
    if (side == "styled")
        return stream<varno::MarkdownContentView>(piecesPerFrame);
    if (side == "plain")
        return stream<PlainView>(piecesPerFrame);
    std::fputs("varno-instructions styled|plain [PIECES_PER_FRAME]\n", stderr);
    return 2;
}
