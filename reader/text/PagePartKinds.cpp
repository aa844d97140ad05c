#include "reader/text/PagePart.h"
#include "reader/text/RowFormat.h"
#include "reader/text/TextSurface.h"

#include <QDesktopServices>
#include <QUrl>

#include <algorithm>

namespace varno {
namespace {

/// A table, whose parts are its cells. No cell, row or column is ever selected.
class PageTable final : public PagePart, private QAccessibleTableInterface {
public:
    using PagePart::PagePart;

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface*>(this)
                                                   : PagePart::interface_cast(type);
    }

    [[nodiscard]] QAccessibleInterface* caption() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* summary() const override { return nullptr; }
    /// Null where a line has fewer cells than others.
    [[nodiscard]] QAccessibleInterface* cellAt(int row, int column) const override
    {
        PagePart* cell = parts().at(firstAfter(row, column));
        return cell && cell->start().line == row && cell->start().column == column ? cell : nullptr;
    }
    [[nodiscard]] int columnCount() const override { return firstAfter(1, 0); }
    [[nodiscard]] int rowCount() const override
    {
        const PagePart* last = parts().at(parts().count() - 1);
        return last ? last->start().line + 1 : 0;
    }
    [[nodiscard]] QString columnDescription(int column) const override
    {
        const QAccessibleInterface* header = cellAt(0, column);
        return header ? header->text(QAccessible::Name) : QString();
    }
    [[nodiscard]] QString rowDescription(int) const override { return {}; }

    [[nodiscard]] int selectedCellCount() const override { return 0; }
    [[nodiscard]] QList<QAccessibleInterface*> selectedCells() const override { return {}; }
    [[nodiscard]] int selectedColumnCount() const override { return 0; }
    [[nodiscard]] int selectedRowCount() const override { return 0; }
    [[nodiscard]] QList<int> selectedColumns() const override { return {}; }
    [[nodiscard]] QList<int> selectedRows() const override { return {}; }
    [[nodiscard]] bool isColumnSelected(int) const override { return false; }
    [[nodiscard]] bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent*) override {}

private:
    /// The index of the first cell that is not before that place.
    [[nodiscard]] int firstAfter(int row, int column) const
    {
        int begin = 0;
        int end = parts().count();
        while (begin < end) {
            const int middle = (begin + end) / 2;
            const PartStart& cell = parts().at(middle)->start();
            if (std::pair(cell.line, cell.column) < std::pair(row, column))
                begin = middle + 1;
            else
                end = middle;
        }
        return begin;
    }
};

class PageCell final : public PagePart, private QAccessibleTableCellInterface {
public:
    using PagePart::PagePart;

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableCellInterface
                   ? static_cast<QAccessibleTableCellInterface*>(this)
                   : PagePart::interface_cast(type);
    }

    [[nodiscard]] bool isSelected() const override { return false; }
    [[nodiscard]] QList<QAccessibleInterface*> columnHeaderCells() const override
    {
        QAccessibleInterface* header = parent()->tableInterface()->cellAt(0, columnIndex());
        return header && role() == QAccessible::Cell ? QList{header}
                                                     : QList<QAccessibleInterface*>();
    }
    [[nodiscard]] QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    [[nodiscard]] int columnIndex() const override { return start().column; }
    [[nodiscard]] int rowIndex() const override { return start().line; }
    [[nodiscard]] int columnExtent() const override { return 1; }
    [[nodiscard]] int rowExtent() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* table() const override { return parent(); }
};

/// A link, which opens when it is pressed.
class PageLink final : public PagePart, private QAccessibleActionInterface {
public:
    using PagePart::PagePart;

    [[nodiscard]] QRect rect() const override
    {
        return characterRect(0) | characterRect(characterCount() - 1);
    }
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = PagePart::state();
        state.linked = true;
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : PagePart::interface_cast(type);
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override
    {
        QTextCursor cursor(&document());
        const int inside = static_cast<int>(range().begin) + 1;
        if (name != pressAction() || inside >= document().characterCount())
            return;
        cursor.setPosition(inside);
        const QString address = cursor.charFormat().anchorHref();
        if (mayBeOpened(address))
            QDesktopServices::openUrl(QUrl(address));
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }
};

} // namespace

PagePart* makePart(QAccessibleInterface& parent, TextSurface& surface, const PartStart& start)
{
    PagePart* part = nullptr;
    switch (start.role) {
    case QAccessible::Table:
        part = new PageTable(parent, surface, start);
        break;
    case QAccessible::Cell:
    case QAccessible::ColumnHeader:
        part = new PageCell(parent, surface, start);
        break;
    case QAccessible::Link:
        part = new PageLink(parent, surface, start);
        break;
    default:
        part = new PagePart(parent, surface, start);
    }
    QAccessible::registerAccessibleInterface(part);
    return part;
}

} // namespace varno
