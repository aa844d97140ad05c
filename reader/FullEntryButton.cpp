#include "reader/FullEntryButton.h"

namespace varno {
namespace {

const ButtonStyle fullEntryStyle{
    .text = {.size = 13, .weight = QFont::Medium, .role = ColorRole::accent},
    .symbol = {.size = 12, .role = ColorRole::accent},
    .spacing = 6,
    .horizontal = 14,
    .vertical = 7,
    .radius = 6,
    .outlineWidth = 1,
    .outline = Ink{.role = ColorRole::accent, .opacity = 0.5},
};

} // namespace

FullEntryButton::FullEntryButton(QWidget* parent)
    : PlainButton(Symbol::docTextMagnifyingGlass, tr("Full Entry"), fullEntryStyle, parent)
{
    setFocusPolicy(Qt::NoFocus);
}

} // namespace varno
