#pragma once

#include "reader/text/TextSurface.h"

#include <QTextCursor>

namespace varno::bench {

/// A text as it comes, in one font, on the same surface and as high as its text as a
/// `MarkdownContentView` is: the least that showing a text which grows can cost.
class PlainView final : public QWidget {
public:
    PlainView();

    void appendText(QStringView piece);
    [[nodiscard]] const QTextDocument& document() const { return *m_surface.document(); }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void adjustHeight();

    TextSurface m_surface;
    QTextCursor m_cursor; ///< at the end
};

} // namespace varno::bench
