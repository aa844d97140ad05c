#pragma once

#include <QScrollArea>

namespace varno {

/// A scroll area whose content is as wide as itself, with a thin bar, without a frame or a
/// background of its own, and never the one that has the focus.
class VerticalScrollArea : public QScrollArea {
    Q_OBJECT

public:
    explicit VerticalScrollArea(QWidget* parent = nullptr);

    /// Takes ownership unless it has a parent by then or is a member of somebody.
    void setContent(QWidget& content);
};

} // namespace varno
