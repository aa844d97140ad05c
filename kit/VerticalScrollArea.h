#pragma once

#include <QScrollArea>

namespace varno {

/// A scroll area whose content has its width. It has a thin scroll bar, no frame and no background,
/// and never takes the focus. Keys that nothing in it wants scroll it; what gets the focus in it
/// comes into view.
class VerticalScrollArea : public QScrollArea {
    Q_OBJECT

public:
    explicit VerticalScrollArea(QWidget* parent = nullptr);

    /// Shows `content`, and owns it unless it is a member of another object.
    void setContent(QWidget& content);

    /// Scrolls, if it has to, until a part of `owner`, which is in it, is in view; of one that is
    /// higher than the area, any part will do.
    void showPart(const QWidget& owner, const QRect& part);

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace varno
