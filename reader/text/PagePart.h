#pragma once

#include "kit/Accessibility.h"
#include "reader/text/AccessibleText.h"

#include <algorithm>
#include <vector>

namespace varno {

class PagePart;

/// What a part of a page is, and where it begins.
struct PartStart {
    qsizetype position = 0; ///< in the document
    QAccessible::Role role = QAccessible::Paragraph;
    int level = 0;  ///< of a heading
    int line = 0;   ///< of a table, that a cell is in
    int column = 0; ///< of a cell

    bool operator==(const PartStart&) const = default;
};

/// The parts of something, in the order of the text. It owns them, as far as assistive technology's
/// register of interfaces lets anybody.
///
/// When the text has changed behind a position, it is read again from there: `keepUpTo`, `begin`
/// for each part, `close`. A part that is again what it was stays the same to assistive technology.
class PageParts {
public:
    explicit PageParts(QAccessibleInterface& owner);
    ~PageParts();
    Q_DISABLE_COPY_MOVE(PageParts)

    [[nodiscard]] int count() const { return static_cast<int>(m_parts.size()); }
    /// Null where there is none.
    [[nodiscard]] PagePart* at(int index) const;
    /// -1 for what is no part of this.
    [[nodiscard]] int indexOf(const QAccessibleInterface* part) const;
    [[nodiscard]] PagePart* under(const QPoint& point) const;

    /// Keeps the parts that begin before `position`, and of the last one what is before it.
    void keepUpTo(qsizetype position);
    PagePart& begin(TextSurface& surface, const PartStart& start);
    /// The last part that was kept or begun; null if there is none.
    [[nodiscard]] PagePart* open() const { return at(m_kept - 1); }
    /// Removes what was neither kept nor begun.
    void close();

    /// From now on assistive technology is told what comes and goes; it knows the owner.
    void tellChanges();

private:
    void removeFrom(int index);
    void tell(PagePart* part, QAccessible::Event what) const;

    QAccessibleInterface& m_owner;
    std::vector<PagePart*> m_parts;
    int m_kept = 0;
    bool m_tellsChanges = false;
};

/// A part of a page as assistive technology knows it: a heading, a paragraph, a list, an item.
class PagePart : public QAccessibleInterface, public AccessibleText, protected AccessibleLevel {
public:
    PagePart(QAccessibleInterface& parent, TextSurface& surface, const PartStart& start);

    [[nodiscard]] const PartStart& start() const { return m_start; }
    void extendTo(qsizetype end) { m_end = end; }
    void cutAt(qsizetype end) { m_end = std::min(m_end, end); }
    /// What the text does not say: of an item its mark, of code that it is code.
    void setNote(const QString& note) { m_note = note; }
    [[nodiscard]] PageParts& parts() { return m_parts; }
    [[nodiscard]] const PageParts& parts() const { return m_parts; }

    [[nodiscard]] bool isValid() const override { return true; }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QWindow* window() const override;
    [[nodiscard]] QAccessibleInterface* parent() const override { return &m_parent; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int childCount() const override { return m_parts.count(); }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    using AccessibleText::text;
    [[nodiscard]] QString text(QAccessible::Text what) const override;
    void setText(QAccessible::Text, const QString&) override {}
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override { return m_start.role; }
    [[nodiscard]] QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

protected:
    [[nodiscard]] TextRange range() const override;

private:
    QAccessibleInterface& m_parent;
    PartStart m_start;
    qsizetype m_end;
    QString m_note;
    PageParts m_parts;
};

/// The part of the kind that its role says. It belongs to the register of interfaces.
[[nodiscard]] PagePart* makePart(QAccessibleInterface& parent, TextSurface& surface,
                                 const PartStart& start);

} // namespace varno
