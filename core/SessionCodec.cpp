#include "core/SessionCodec.h"

#include "core/JsonReader.h"
#include "core/JsonWriter.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace varno {
namespace {

QString canonical(const QUuid& id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

void writeStrings(JsonWriter& writer, QStringView key, const QStringList& strings)
{
    writer.key(key).beginArray();
    for (const QString& string : strings)
        writer.string(string);
    writer.endArray();
}

void write(JsonWriter& writer, const Page& page)
{
    writer.beginObject();
    writer.key(u"id").string(canonical(page.id));
    writer.key(u"title").string(page.title);
    writer.key(u"content").string(page.content);
    writeStrings(writer, u"tableOfContents", page.tableOfContents);
    writeStrings(writer, u"seeAlso", page.seeAlso);
    if (page.parentPageId)
        writer.key(u"parentPageId").string(canonical(*page.parentPageId));
    if (page.parentSectionName)
        writer.key(u"parentSectionName").string(*page.parentSectionName);
    writer.key(u"entryType").string(rawValue(page.entryType));
    writer.endObject();
}

void write(JsonWriter& writer, const Session& session)
{
    writer.beginObject();
    writer.key(u"id").string(canonical(session.id));
    writer.key(u"rootQuery").string(session.rootQuery);
    writer.key(u"pages").beginArray();
    for (auto page = session.pages.cbegin(); page != session.pages.cend(); ++page) {
        writer.string(canonical(page.key()));
        write(writer, *page);
    }
    writer.endArray();
    writer.key(u"navigationHistory").beginArray();
    for (const QUuid& id : session.navigationHistory)
        writer.string(canonical(id));
    writer.endArray();
    writer.key(u"createdAt").real(session.createdAt);
    writer.endObject();
}

/// The 36 characters of the canonical form, in either case; QUuid itself is more lenient.
std::optional<QUuid> readId(std::string_view text)
{
    constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    const auto fits = [](char character, char place) {
        return place == '-' ? character == '-' : std::isxdigit(static_cast<quint8>(character)) != 0;
    };
    if (!std::equal(text.begin(), text.end(), form.begin(), form.end(), fits))
        return std::nullopt;
    return QUuid::fromString(QLatin1StringView(text.data(), static_cast<qsizetype>(text.size())));
}

/// Reads the members of one object; remembers whether all of them were as they should be.
class MemberReader {
public:
    explicit MemberReader(json::Object object)
        : m_object(object)
    {
    }

    template <typename Type>
    Type required(std::string_view name)
    {
        return checked(json::requiredMember<Type>(m_object, name));
    }
    QString string(std::string_view name)
    {
        return json::toQString(required<std::string_view>(name));
    }
    QUuid id(std::string_view name) { return checked(readId(required<std::string_view>(name))); }

    QStringList strings(std::string_view name)
    {
        const auto array = json::requiredMember<json::Array>(m_object, name);
        return checked(array ? json::strings(*array) : std::nullopt);
    }

    std::optional<std::string_view> optionalString(std::string_view name)
    {
        const auto found = json::optionalMember<std::string_view>(m_object, name);
        m_valid = m_valid && found.valid;
        return found.value;
    }

    template <typename Type>
    Type checked(std::optional<Type> value)
    {
        m_valid = m_valid && value.has_value();
        return value ? *std::move(value) : Type();
    }

    [[nodiscard]] bool valid() const { return m_valid; }

private:
    json::Object m_object;
    bool m_valid = true;
};

std::optional<Page> readPage(json::Value value)
{
    const auto object = json::as<json::Object>(value);
    if (!object)
        return std::nullopt;
    MemberReader reader(*object);
    Page page;
    page.id = reader.id("id");
    page.title = reader.string("title");
    page.content = reader.string("content");
    page.tableOfContents = reader.strings("tableOfContents");
    page.seeAlso = reader.strings("seeAlso");
    if (const auto id = reader.optionalString("parentPageId"))
        page.parentPageId = reader.checked(readId(*id));
    if (const auto name = reader.optionalString("parentSectionName"))
        page.parentSectionName = json::toQString(*name);
    page.entryType = reader.checked(fromRawValue<EntryType>(reader.string("entryType")));
    return reader.valid() ? std::optional(std::move(page)) : std::nullopt;
}

using Pages = QHash<QUuid, Page>;

bool readPair(Pages& pages, std::string_view key, json::Value value)
{
    const std::optional<QUuid> id = readId(key);
    std::optional<Page> page = readPage(value);
    if (!id || !page || page->id != *id)
        return false;
    pages.emplace(*id, *std::move(page));
    return true;
}

std::optional<Pages> readPages(json::Object object)
{
    Pages pages;
    for (const auto [key, value] : object) {
        if (!readPair(pages, key, value))
            return std::nullopt;
    }
    return pages;
}

std::optional<Pages> readPages(json::Array alternating)
{
    Pages pages;
    std::optional<std::string_view> key;
    for (const json::Value element : alternating) {
        if (!key) {
            key = json::as<std::string_view>(element);
            if (!key)
                return std::nullopt;
        } else if (!readPair(pages, *std::exchange(key, std::nullopt), element)) {
            return std::nullopt;
        }
    }
    return key ? std::nullopt : std::optional(std::move(pages));
}

std::optional<Pages> readPages(json::Value value)
{
    if (const auto array = json::as<json::Array>(value))
        return readPages(*array);
    const auto object = json::as<json::Object>(value);
    return object ? readPages(*object) : std::nullopt;
}

std::optional<QList<QUuid>> readIds(json::Array array)
{
    QList<QUuid> ids;
    for (const json::Value element : array) {
        const auto text = json::as<std::string_view>(element);
        const auto id = text ? readId(*text) : std::nullopt;
        if (!id)
            return std::nullopt;
        ids.append(*id);
    }
    return ids;
}

std::optional<Session> readSession(json::Value value)
{
    const auto object = json::as<json::Object>(value);
    if (!object)
        return std::nullopt;
    MemberReader reader(*object);
    Session session;
    session.id = reader.id("id");
    session.rootQuery = reader.string("rootQuery");
    session.createdAt = reader.required<double>("createdAt");
    const auto pages = json::member(*object, "pages");
    session.pages = reader.checked(pages ? readPages(*pages) : std::nullopt);
    const auto history = json::requiredMember<json::Array>(*object, "navigationHistory");
    session.navigationHistory = reader.checked(history ? readIds(*history) : std::nullopt);
    // The root page alone has a place of its own.
    if (QList<QUuid>& trail = session.navigationHistory; !trail.isEmpty())
        trail.erase(std::remove_if(trail.begin() + 1, trail.end(),
                                   [&](const QUuid& id) { return !session.pages.contains(id); }),
                    trail.end());
    return reader.valid() ? std::optional(std::move(session)) : std::nullopt;
}

} // namespace

QByteArray encodeSessions(const QList<Session>& sessions, qsizetype limit)
{
    QByteArray array = "[";
    for (const Session& session : sessions) {
        JsonWriter writer;
        write(writer, session);
        if (array.size() + writer.text().size() + 2 > limit) // with a comma and a bracket
            continue;
        if (array.size() > 1)
            array += ',';
        array += writer.text();
    }
    return array + ']';
}

std::optional<DecodedSessions> decodeSessions(const QByteArray& json)
{
    json::Parser parser;
    const auto value = json::parse(parser, json);
    const auto array = value ? json::as<json::Array>(*value) : std::nullopt;
    if (!array)
        return std::nullopt;
    DecodedSessions decoded;
    for (const json::Value element : *array) {
        if (std::optional<Session> session = readSession(element))
            decoded.sessions.append(*std::move(session));
        else
            ++decoded.refused;
    }
    return decoded;
}

} // namespace varno
