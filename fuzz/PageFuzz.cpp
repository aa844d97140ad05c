#include "fuzz/Check.h"
#include "reader/text/DocumentWriter.h"
#include "reader/text/FindMatches.h"
#include "reader/text/Highlights.h"

#include <QGuiApplication>
#include <QSet>
#include <QStringList>
#include <QTextDocument>

#include <algorithm>
#include <cstddef>
#include <cstdint>

// A page of any text, growing piece by piece. A byte 0xFF, which no UTF-8 text has, marks where the
// fuzzer wants it cut; each piece is also what is looked for in the page.

using namespace varno;

namespace {

QStringList cutAtMarks(const QByteArray& input)
{
    QStringList pieces;
    for (const QByteArray& piece : input.split('\xFF'))
        pieces.append(QString::fromUtf8(piece));
    return pieces;
}

bool isSame(const Row& one, const Row& other)
{
    return one.start.offset == other.start.offset && one.start.block == other.start.block &&
           one.start.kind == other.start.kind && one.start.within == other.start.within &&
           one.start.form == other.start.form && one.start.number == other.start.number &&
           one.start.isHeader == other.start.isHeader && one.mark == other.mark &&
           one.text.data() == other.text.data() && one.text.size() == other.text.size() &&
           one.end == other.end;
}

QList<Row> rowsFrom(QStringView text, const RowStart& start)
{
    QList<Row> rows;
    RowReader reader(text, start);
    while (const std::optional<Row> row = reader.next())
        rows.append(*row);
    return rows;
}

/// What the rows of a block should show, blanks aside, which may be lost where a line is cut.
QString withoutBlanks(QStringView text)
{
    QString shown;
    std::copy_if(text.begin(), text.end(), std::back_inserter(shown),
                 [](QChar character) { return !character.isSpace(); });
    return shown;
}

QString itemsOf(QStringView list, BlockKind kind)
{
    QString shown;
    for (const QStringView line : list.tokenize(u'\n')) {
        if (const auto item = listItem(line, kind))
            shown += item->mark + withoutBlanks(item->text);
    }
    return withoutBlanks(shown);
}

void checkRows(QStringView text)
{
    const QList<Row> rows = rowsFrom(text, {});
    QStringList shown;
    QSet<int> formed; // blocks with more to them than their letters
    for (qsizetype index = 0; index < rows.size(); ++index) {
        const Row& row = rows[index];
        const bool begins = row.start.block == shown.size();
        fuzz::check(begins || row.start.block == shown.size() - 1, "blocks come one after another");
        if (begins) {
            fuzz::check(RowReader::kindAt(text, row.start.offset) == row.start.kind,
                        "a block is of the kind that its rows are of");
            shown.append(QString());
        }
        shown.last() += withoutBlanks(row.mark) + withoutBlanks(row.text);
        if (row.start.form != RowForm::text || !row.start.fence.mark.isNull())
            formed.insert(row.start.block);
        const QList<Row> rest = rowsFrom(text, row.start);
        fuzz::check(
            rest.size() == rows.size() - index &&
                (std::equal(rest.begin() + 1, rest.end(), rows.begin() + index + 1, isSame)) &&
                rest.first().text.data() == row.text.data() &&
                rest.first().text.size() == row.text.size() && rest.first().end == row.end &&
                rest.first().mark == row.mark,
            "reading goes on at any row");
    }
    QStringList expected;
    for (const QString& block : blocks(text)) {
        const BlockKind kind = blockKind(block);
        expected.append(isList(kind) ? itemsOf(block, kind)
                                     : withoutBlanks(blockText(block, kind)));
    }
    fuzz::check(shown.size() == expected.size(), "each block has a row");
    for (int block = 0; block < shown.size(); ++block)
        fuzz::check(formed.contains(block) || shown[block] == expected[block] ||
                        expected[block].contains(u"```") || expected[block].contains(u"~~~"),
                    "the rows are those of the blocks");
}

void checkRuns(QStringView text)
{
    const QList<InlineRun> runs = styledText(text);
    for (qsizetype index = 0; index < runs.size(); ++index) {
        fuzz::check(!runs[index].text.isEmpty(), "no run is empty");
        fuzz::check(index == 0 || runs[index - 1].styles != runs[index].styles ||
                        runs[index - 1].link != runs[index].link,
                    "neighbouring runs differ");
    }
}

void checkHighlights(const QString& text, const QString& needle)
{
    qsizetype end = 0;
    for (const TextRange& range : highlightRanges(text, needle)) {
        fuzz::check(range.begin >= end, "highlights come in order and do not overlap");
        fuzz::check(range.begin < range.end && range.end <= text.size(),
                    "highlights are in bounds");
        end = range.end;
    }
    fuzz::check(needle.isEmpty() || end > 0 || !text.contains(needle), "what is there is found");
}

void checkMatches(const QStringList& pieces, const QString& text, const QString& needle)
{
    FindMatches matches({}, needle);
    for (const QString& piece : pieces)
        matches.append(piece);
    fuzz::check(matches.findMatchBlocks() == FindMatches(text, needle).findMatchBlocks(),
                "cuts make no difference to what is found");
}

/// The fragments of all text blocks, with their formats.
struct Look {
    QStringList texts;
    QList<QTextFormat> formats;

    bool operator==(const Look&) const = default;
};

Look lookOf(const QTextDocument& document)
{
    Look look;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        look.texts.append(QString());
        look.formats.append(block.blockFormat());
        look.formats.append(block.charFormat());
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const QTextCharFormat format = fragment.fragment().charFormat();
            const bool goesOn = fragment != block.begin() && look.formats.last() == format;
            look.texts.last() += fragment.fragment().text();
            if (!goesOn)
                look.formats.append(format);
        }
    }
    return look;
}

Look written(const QStringList& pieces)
{
    QTextDocument document;
    DocumentWriter writer(document, RowFormat(16, Qt::black));
    for (const QString& piece : pieces) {
        writer.appendText(piece);
        writer.write();
    }
    return lookOf(document);
}

void checkDocument(const QStringList& pieces, const QString& text)
{
    const Look atOnce = written({text});
    fuzz::check(written(pieces) == atOnce, "cuts make no difference to the document");
    QTextDocument document;
    DocumentWriter writer(document, RowFormat(16, Qt::black));
    writer.setText(pieces.first() + pieces.last() + text);
    writer.write();
    writer.setText(text);
    writer.write();
    fuzz::check(lookOf(document) == atOnce, "the page before makes no difference to the document");
}

} // namespace

/// The system's list of fonts, which lives as long as the program.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig";
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr qsizetype mostNeedles = 4;
    const QStringList pieces =
        cutAtMarks(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    const QString text = pieces.join(QString());
    checkRows(text);
    checkRuns(text);
    for (const QString& needle : pieces.first(std::min(pieces.size(), mostNeedles))) {
        checkHighlights(text, needle);
        checkMatches(pieces, text, needle);
    }
    checkDocument(pieces, text);
    return 0;
}
