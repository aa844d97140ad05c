#include "reader/ListRest.h"

namespace varno {

ListRest::ListRest(QWidget* parent)
    : ThemedText({}, {.size = 11, .opacity = 0.7}, Overflow::elide, parent)
{
    hide();
}

void ListRest::setCount(qsizetype count)
{
    setText(tr("… and %n more", nullptr, int(count)));
    setVisible(count > 0);
}

} // namespace varno
