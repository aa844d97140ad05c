#pragma once

#include <QList>

class QWidget;

namespace varno {

/// Lets Tab come to these right after `before`, in this order. Widgets that are made later stand
/// behind all others of the window by default.
void setTabOrderAfter(QWidget& before, const QList<QWidget*>& widgets);

} // namespace varno
