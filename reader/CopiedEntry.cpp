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

/// Where the content of a document, or of a part of one, begins and ends.
struct Content {
    qsizetype begin = 0;
    qsizetype end = 0;
};

Content contentOf(const QString& html)
{
    const qsizetype body = html.indexOf("<body"_L1);
    const qsizetype end = html.lastIndexOf("</body>"_L1);
    return {.begin = body < 0 ? 0 : html.indexOf(u'>', body) + 1,
            .end = end < 0 ? html.size() : end};
}

} // namespace

std::unique_ptr<QMimeData> copiedEntry(const QString& title, QStringView markdown,
                                       const QMimeData& text, const QStringList& relatedTopics)
{
    auto entry = std::make_unique<QMimeData>();
    entry->setText("# %1\n\n%2%3"_L1.arg(title, markdown.trimmed(), plainTopics(relatedTopics)));
    if (!text.hasHtml())
        return entry;
    QString html = text.html();
    const Content content = contentOf(html);
    html.insert(content.end, richTopics(relatedTopics));
    html.insert(content.begin, "<h1>%1</h1>"_L1.arg(title.toHtmlEscaped()));
    entry->setHtml(html);
    return entry;
}

} // namespace varno
