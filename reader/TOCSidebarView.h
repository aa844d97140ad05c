#pragma once

#include "kit/ThemedText.h"
#include "kit/VerticalScrollArea.h"
#include "reader/ListRest.h"
#include "reader/LoadingPlaceholders.h"
#include "reader/Surface.h"

#include <QStringList>
#include <QVBoxLayout>

#include <optional>

namespace varno {

class TOCEntry;

/// The table of contents beside the page. One entry at a time can be reached by Tab; Up and Down go
/// on to the others.
class TOCSidebarView final : public Surface {
    Q_OBJECT

public:
    explicit TOCSidebarView(QWidget* parent = nullptr);

    /// Shows the sections, up to `contentsLimit`.
    void setSections(const QStringList& sections);
    /// Shows placeholders instead of the sections.
    void setLoading(bool loading);
    /// Marks the section that is on show, if one is, and brings it into view.
    void setActiveSection(const std::optional<QString>& section);

Q_SIGNALS:
    void sectionPressed(const QString& section);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    TOCEntry* addEntry(int number, const QString& section);
    void setTabStop(qsizetype index);
    void focusEntry(qsizetype index);
    void showActive();

    QStringList m_sections; ///< those on show
    QList<TOCEntry*> m_entries;
    std::optional<QString> m_activeSection;

    ThemedText m_heading;
    LoadingPlaceholders m_placeholders;
    VerticalScrollArea m_scroll;
    QWidget m_list;
    QVBoxLayout m_column;
    ListRest m_rest;
};

} // namespace varno
