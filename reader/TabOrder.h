#pragma once

#include <QList>

class QWidget;

namespace varno {

/// Puts widgets right after `before` in the tab order. By default widgets made later come last in
/// their window.
void setTabOrderAfter(QWidget& before, const QList<QWidget*>& widgets);

} // namespace varno
