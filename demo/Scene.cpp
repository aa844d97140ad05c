#include "demo/Scene.h"

#include <QFile>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QByteArray readText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is not built in", qPrintable(path));
    return file.readAll().trimmed();
}

/// A page of our own, which looks for the limits of the screen.
Scene specialPage(const QString& name)
{
    const QString folder = u":/varno/shots/%1/"_s.arg(name);
    return {.name = name,
            .query = QString::fromUtf8(readText(folder + u"query.txt"_s)),
            .answer = {.text = "<entry>" + readText(folder + u"article.md"_s) + "</entry>"},
            .contents = {.text = readText(folder + u"contents.json"_s)}};
}

Scene tallPage(const QString& name)
{
    Scene scene = specialPage(name);
    scene.windowSize = {860, 1150};
    return scene;
}

Scene endOf(Scene scene)
{
    scene.name += u"-end"_s;
    scene.endsBelow = true;
    return scene;
}

Scene findIn(Scene scene, const QString& text)
{
    scene.name += u"-find"_s;
    scene.findText = text;
    return scene;
}

} // namespace

QList<Scene> scenes()
{
    const QString article = u"the history of the roman empire"_s;
    const Script hanging = {.hangAfterEvents = 0};
    const Script halfWritten = {.pieceLength = 40, .hangAfterEvents = 22};
    return {
        {.name = u"waiting"_s,
         .query = u"palimpsest"_s,
         .moment = Scene::Moment::waiting,
         .answer = hanging},
        {.name = u"streaming"_s,
         .query = article,
         .moment = Scene::Moment::writing,
         .answer = halfWritten},
        {.name = u"contents-loading"_s,
         .query = article,
         .moment = Scene::Moment::writingBoth,
         .answer = halfWritten,
         .contents = hanging},
        {.name = u"definition"_s, .query = u"palimpsest"_s},
        {.name = u"short-answer"_s, .query = u"plate tectonics"_s},
        {.name = u"article"_s, .query = article},
        {.name = u"article-end"_s, .query = article, .endsBelow = true},
        {.name = u"selection"_s, .query = article, .selectsAll = true},
        {.name = u"menu"_s, .query = article, .opensMenu = true},
        {.name = u"menu-selection"_s, .query = article, .selectsAll = true, .opensMenu = true},
        {.name = u"section"_s, .query = article, .opensSection = true},
        {.name = u"find-matches"_s, .query = article, .findText = u"emperor"_s},
        {.name = u"find-none"_s, .query = article, .findText = u"zeppelin"_s},
        {.name = u"error"_s, .query = article, .answer = {.statusCode = 529}},
        {.name = u"narrow"_s, .query = article, .windowSize = {640, 440}},
        {.name = u"narrow-find"_s,
         .query = article,
         .windowSize = {640, 440},
         .opensSection = true,
         .findText = u"rome"_s},
        tallPage(u"blocks"_s),
        tallPage(u"forms"_s),
        specialPage(u"long-words"_s),
        endOf(specialPage(u"long-words"_s)),
        tallPage(u"right-to-left"_s),
        findIn(tallPage(u"right-to-left"_s), u"الضوء"_s),
        tallPage(u"chinese"_s),
        tallPage(u"emoji"_s),
    };
}

} // namespace varno
