#include "bench/PageSamples.h"

#include "core/EntryText.h"
#include "demo/EntryLibrary.h"

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

QString wholeLibrary()
{
    QString all;
    const EntryLibrary library;
    for (const LibraryTopic& topic : library.topics()) {
        if (topic.article)
            all += cleanEntryText(*topic.article) + u"\n\n"_s;
        for (const LibrarySection& section : topic.sections)
            all += cleanEntryText(section.text) + u"\n\n"_s;
    }
    return all;
}

} // namespace

QString pageSample(qsizetype length)
{
    static const QString library = wholeLibrary();
    return library.repeated(length / library.size() + 1).first(length);
}

} // namespace varno::bench
