#include "reader/PageMenu.h"

#include "kit/Menu.h"
#include "kit/TextCuts.h"

#include <QClipboard>
#include <QGuiApplication>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr TextLimit quotedLimit{.letters = 24};

/// With the keys that do the same.
QString withKeys(const QString& text, QKeySequence::StandardKey keys)
{
    return text + u'\t' + QKeySequence(keys).toString(QKeySequence::NativeText);
}

} // namespace

PageMenu::PageMenu(const Occasion& occasion, QWidget& page)
    : QMenu(&page)
{
    setUpMenu(*this, page);
    if (!occasion.selectedText.isEmpty())
        addAction(withKeys(tr("Copy"), QKeySequence::Copy), this, &PageMenu::copy);
    if (!occasion.link.isEmpty())
        addAction(tr("Copy Link"), this,
                  [link = occasion.link] { QGuiApplication::clipboard()->setText(link); });
    if (occasion.hasText)
        addAction(withKeys(tr("Select All"), QKeySequence::SelectAll), this, &PageMenu::selectAll);
    if (!occasion.selectedText.isEmpty())
        offerSelection(occasion.selectedText);
    else if (occasion.hasText && occasion.isWritten)
        addAction(tr("Copy Entry"), this, &PageMenu::copyEntry);
}

/// As a search.
void PageMenu::offerSelection(const QString& text)
{
    const QString query = text.left(longestSearch).simplified();
    if (query.isEmpty())
        return;
    addSeparator();
    QString quoted = shortened(query, quotedLimit);
    addAction(tr("Search for “%1”").arg(quoted.replace(u'&', "&&"_L1)), this,
              [this, query] { Q_EMIT search(query); });
}

} // namespace varno
