#pragma once

#include "reader/text/PagePart.h"

#include <QAccessibleWidget>
#include <QTimer>

#include <optional>

namespace varno {

/// The text of a page, to assistive technology: a section with the parts that its rows make.
///
/// The parts are made when somebody asks for them. From then on it reads again, in the next turn of
/// the event loop, what of the document has changed, so that text that grows at its end costs the
/// same however long the page is. It never changes while it is asked.
class PageAccessible final : public QAccessibleWidget, public AccessibleText {
public:
    explicit PageAccessible(TextSurface& surface);

    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int childCount() const override { return parts().count(); }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    using AccessibleText::text;
    [[nodiscard]] QString text(QAccessible::Text what) const override;
    [[nodiscard]] QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

protected:
    [[nodiscard]] TextRange range() const override;

private:
    [[nodiscard]] const PageParts& parts() const;
    void readFirst();
    void takeNote(int position);
    void update();
    void readRow(const QTextBlock& row);
    PagePart& openPart(const QTextBlock& row);
    PagePart& openItem(const QTextBlock& row);
    PagePart& openCell(const QTextBlock& row);
    void readLinks(const QTextBlock& row, PagePart& part);

    PageParts m_parts;
    bool m_isRead = false;            ///< whether anybody has asked for the parts
    std::optional<int> m_changedFrom; ///< a position in the document
    QTimer m_update;
};

/// Has assistive technology take a surface for a page. For its constructor.
void installPageAccessible(TextSurface& surface);

} // namespace varno
