#include "reader/CopiedEntry.h"

#include <QCoreApplication>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QString heading()
{
    return QCoreApplication::translate("varno::RelatedTopics", "See also");
}

QString plainTopics(const QStringList& topics)
{
    return topics.isEmpty() ? QString()
                            : "\n\n## %1\n\n- %2"_L1.arg(heading(), topics.join("\n- "_L1));
}

QString richTopics(const QStringList& topics)
{
    QString items;
    for (const QString& topic : topics)
        items += "<li>%1</li>"_L1.arg(topic.toHtmlEscaped());
    return topics.isEmpty() ? QString()
                            : "<h2>%1</h2><ul>%2</ul>"_L1.arg(heading().toHtmlEscaped(), items);
}

} // namespace

std::unique_ptr<QMimeData> copiedEntry(const QString& title, QStringView markdown,
                                       const QMimeData& text, const QStringList& relatedTopics)
{
    auto entry = std::make_unique<QMimeData>();
    entry->setText("# %1\n\n%2%3"_L1.arg(title, markdown.trimmed(), plainTopics(relatedTopics)));
    if (text.hasHtml())
        entry->setHtml("<h1>%1</h1>"_L1.arg(title.toHtmlEscaped()) + text.html() +
                       richTopics(relatedTopics));
    return entry;
}

} // namespace varno
