#include "demo/EntryLibrary.h"

#include "core/EntryText.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>
#include <utility>

// Outside of any namespace, because of what the macro declares.
static void initialiseResources()
{
    Q_INIT_RESOURCE(library);
}

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr auto root = ":/varno/library"_L1;
constexpr auto relatedTopicsMarker = "SEE_ALSO_JSON:"_L1;

/// Shorter names, and the topics they mean, both as `lookupKey` leaves them.
constexpr std::array<std::pair<QLatin1StringView, QLatin1StringView>, 15> aliases = {{
    {"black hole"_L1, "black holes"_L1},
    {"english"_L1, "how the english language came to be"_L1},
    {"english language"_L1, "how the english language came to be"_L1},
    {"history of english"_L1, "how the english language came to be"_L1},
    {"history of rome"_L1, "history of the roman empire"_L1},
    {"longitude"_L1, "long search for longitude at sea"_L1},
    {"palimpsests"_L1, "palimpsest"_L1},
    {"roman empire"_L1, "history of the roman empire"_L1},
    {"rome"_L1, "history of the roman empire"_L1},
    {"stoics"_L1, "stoicism"_L1},
    {"tectonic plates"_L1, "plate tectonics"_L1},
    {"tides"_L1, "why the sea has tides twice daily"_L1},
    {"vaccination"_L1, "how do vaccines work"_L1},
    {"vaccine"_L1, "how do vaccines work"_L1},
    {"vaccines"_L1, "how do vaccines work"_L1},
}};

QString lookupKey(const QString& query)
{
    QString key = query.simplified().toLower();
    while (key.endsWith(u'?') || key.endsWith(u'.') || key.endsWith(u'!'))
        key.chop(1);
    if (key.startsWith("the "_L1))
        key.remove(0, 4);
    return key.trimmed();
}

std::optional<QString> readText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return QString::fromUtf8(file.readAll());
}

/// The sections of `folder`, whose files are called "NUMBER NAME.md".
QList<LibrarySection> readSections(const QDir& folder)
{
    const auto number = [](const QString& file) { return file.section(u' ', 0, 0).toInt(); };
    QStringList files = folder.entryList({u"*.md"_s}, QDir::Files);
    std::ranges::sort(files, {}, number);

    QList<LibrarySection> sections;
    for (const QString& file : std::as_const(files)) {
        const QString name = file.section(u' ', 1).chopped(3);
        sections.append({.name = name, .text = readText(folder.filePath(file)).value_or(u""_s)});
    }
    return sections;
}

/// The first paragraph of an article with its related topics.
QString opening(const QString& article)
{
    const QString related = article.sliced(qMax(0, article.indexOf(relatedTopicsMarker)));
    return article.section(u"\n\n"_s, 0, 0) + u"\n\n"_s + related;
}

} // namespace

std::optional<QString> LibraryTopic::entry(EntryType type) const
{
    if (type == EntryType::full)
        return article;
    const std::optional<QString>& own = type == EntryType::definition ? definition : answer;
    if (own || !article)
        return own;
    return opening(*article);
}

const LibrarySection* LibraryTopic::section(const QString& name) const
{
    const auto found = std::ranges::find_if(sections, [&](const LibrarySection& section) {
        return section.name.compare(name.trimmed(), Qt::CaseInsensitive) == 0;
    });
    return found == sections.end() ? nullptr : &*found;
}

EntryLibrary::EntryLibrary()
{
    initialiseResources();
    const QStringList folders = QDir(root).entryList(QDir::Dirs, QDir::Name);
    for (const QString& name : folders) {
        const QDir folder(root + u'/' + name);
        m_topics.append({.title = capitalised(QString(name).replace(u'-', u' ')),
                         .definition = readText(folder.filePath(u"definition.md"_s)),
                         .answer = readText(folder.filePath(u"answer.md"_s)),
                         .article = readText(folder.filePath(u"article.md"_s)),
                         .sections = readSections(QDir(folder.filePath(u"sections"_s)))});
    }
}

QStringList EntryLibrary::titles() const
{
    QStringList titles;
    for (const LibraryTopic& topic : m_topics)
        titles.append(topic.title);
    return titles;
}

const LibraryTopic* EntryLibrary::find(const QString& query) const
{
    QString key = lookupKey(query);
    const auto* const alias =
        std::ranges::find(aliases, key, [](const auto& a) { return a.first; });
    if (alias != aliases.end())
        key = alias->second;
    const auto found =
        std::ranges::find(m_topics, key, [](const auto& t) { return lookupKey(t.title); });
    return found == m_topics.end() ? nullptr : &*found;
}

} // namespace varno
