#pragma once

#include "core/AppViewModel.h"
#include "reader/BreadcrumbBar.h"
#include "reader/EntryFind.h"
#include "reader/FindBar.h"
#include "reader/ReadingColumn.h"
#include "reader/ResizeDivider.h"
#include "reader/TOCSidebarView.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTimer>

#include <functional>

class QKeySequence;
class QShortcut;

namespace varno {

/// The screen that shows one page of the open session: breadcrumbs, find, contents, and the reading
/// column. Colours come from its palette; see `themePalette`.
///
/// While it is hidden it only records what has changed.
class EntryView final : public QWidget {
    Q_OBJECT

public:
    /// The view model outlives the view.
    explicit EntryView(AppViewModel& viewModel, QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    using Change = AppViewModel::Change;

    void connectBars();
    void connectPage();
    void bindKeys();
    QShortcut& bind(const QList<QKeySequence>& keys, const std::function<void()>& action);

    void takeNote(AppViewModel::Changes what);
    void scheduleFlush();
    void flush();
    void leavePage();
    void openPage();
    void showPage();
    void showText();
    void showPieces();
    void showContents();
    void showFind();
    [[nodiscard]] QStringView textInColumn() const;
    void openFind();
    void copyEntry();
    void stepTextSize(int steps);

    void jumpTo(const QUuid& pageId);
    void dragSidebar(int translation);
    [[nodiscard]] bool closesFind(const QKeyEvent& event) const;

    AppViewModel& m_viewModel;
    double m_sidebarWidth = 200;
    std::optional<double> m_sidebarDragStartWidth;
    QUuid m_shownPageId;
    QUuid m_shownSessionId;
    QHash<QUuid, ReadingColumn::Place> m_places; ///< where its other pages were left
    bool m_isWrittenAnew = false;                ///< the page, from nothing

    AppViewModel::Changes m_pendingChanges;
    QTimer m_nextFlush;
    QElapsedTimer m_sinceFlush;

    BreadcrumbBar m_breadcrumbBar;
    FindBar m_findBar;
    TOCSidebarView m_sidebar;
    ResizeDivider m_divider;
    ReadingColumn m_column;
    EntryFind m_find;
};

} // namespace varno
