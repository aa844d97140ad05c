#pragma once

#include <QMenu>

namespace varno {

/// The menu of a page, which offers only what applies. It opens itself, and is gone when closed.
class PageMenu final : public QMenu {
    Q_OBJECT

public:
    struct Occasion {
        QString selectedText{}; ///< empty when nothing is selected
        QString link{};         ///< the address of the link in question; empty when there is none
        bool hasText = false;
        bool isWritten = false; ///< to its end
    };
    PageMenu(const Occasion& occasion, QWidget& page);

Q_SIGNALS:
    void copy();
    void selectAll();
    void search(const QString& query);
    void copyEntry();

private:
    void offerSelection(const QString& text);
};

} // namespace varno
