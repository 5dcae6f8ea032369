#include "notes/richink.h"
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"
#include "exchange/markdownexport.h"
#include "exchange/markdownimport.h"
#include "exchange/opmlexport.h"
#include "exchange/opmlimport.h"
#include "exchange/textexport.h"
#include "exchange/xmlexport.h"
#include "model/document.h"
#include "tools/documentgenerator.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

// One generated document of a million items, made once for every benchmark.
Document &millionItems()
{
    static Document *document = [] {
        auto *d = new Document;
        DocumentGenerator::Options options;
        options.items = 1000000;
        DocumentGenerator::generate(d, options);
        return d;
    }();
    return *document;
}

QTemporaryDir &outputDir()
{
    static QTemporaryDir dir;
    return dir;
}

void xmlExport(benchmark::State &state)
{
    Document &document = millionItems();
    XmlExport::Options options;
    options.encoding = quint16(state.range(0));
    options.noteType = document.noteType;
    const QString path = outputDir().filePath(QStringLiteral("bench.xml"));
    for (auto _ : state) {
        if (!XmlExport::exportXml(path, document.root(), options))
            state.SkipWithError("export failed");
    }
    state.SetItemsProcessed(state.iterations() * 1000000);
    state.SetLabel(options.encoding == XmlExport::Utf16Encoding ? "UTF-16" : "code page");
}
BENCHMARK(xmlExport)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(3);

// A chain a million levels deep, with the generator's item links: the
// export must neither recurse nor climb from each link target to the root.
void xmlExportDeepChain(benchmark::State &state)
{
    Document document;
    DocumentGenerator::Options options;
    options.items = 1000000;
    options.chain = true;
    DocumentGenerator::generate(&document, options);
    const QString path = outputDir().filePath(QStringLiteral("chain.xml"));
    for (auto _ : state) {
        if (!XmlExport::exportXml(path, document.root(), {}))
            state.SkipWithError("export failed");
    }
}
BENCHMARK(xmlExportDeepChain)->Unit(benchmark::kMillisecond)->Iterations(1);

// The whole safe save: written, synced and renamed over the target.
void opmlExport(benchmark::State &state)
{
    Document &document = millionItems();
    const QString path = outputDir().filePath(QStringLiteral("bench.opml"));
    for (auto _ : state) {
        if (!OpmlExport::exportOpml(path, document.root(), {document.noteType}))
            state.SkipWithError("export failed");
    }
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(opmlExport)->Unit(benchmark::kMillisecond)->Iterations(3);

void opmlImport(benchmark::State &state)
{
    Document &document = millionItems();
    const QString path = outputDir().filePath(QStringLiteral("import.opml"));
    if (!OpmlExport::exportOpml(path, document.root(), {document.noteType})) {
        state.SkipWithError("export failed");
        return;
    }
    for (auto _ : state) {
        Document imported;
        if (OpmlImport::importDocument(path, {}, &imported) != OpmlImport::Result::Ok)
            state.SkipWithError("import failed");
    }
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(opmlImport)->Unit(benchmark::kMillisecond)->Iterations(1);

void opmlExportDeepChain(benchmark::State &state)
{
    Document document;
    DocumentGenerator::Options options;
    options.items = 1000000;
    options.chain = true;
    DocumentGenerator::generate(&document, options);
    const QString path = outputDir().filePath(QStringLiteral("chain.opml"));
    for (auto _ : state) {
        if (!OpmlExport::exportOpml(path, document.root(), {}))
            state.SkipWithError("export failed");
    }
}
BENCHMARK(opmlExportDeepChain)->Unit(benchmark::kMillisecond)->Iterations(1);

void markdownExport(benchmark::State &state)
{
    Document &document = millionItems();
    const QString path = outputDir().filePath(QStringLiteral("bench.md"));
    for (auto _ : state) {
        if (MarkdownExport::exportMarkdown(path, document.root(), {document.noteType}) != MarkdownExport::Result::Ok)
            state.SkipWithError("export failed");
    }
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(markdownExport)->Unit(benchmark::kMillisecond)->Iterations(3);

void markdownImport(benchmark::State &state)
{
    Document &document = millionItems();
    const QString path = outputDir().filePath(QStringLiteral("import.md"));
    if (MarkdownExport::exportMarkdown(path, document.root(), {document.noteType}) != MarkdownExport::Result::Ok) {
        state.SkipWithError("export failed");
        return;
    }
    for (auto _ : state) {
        Document imported;
        if (MarkdownImport::importDocument(path, {}, &imported) != MarkdownImport::Result::Ok)
            state.SkipWithError("import failed");
    }
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(markdownImport)->Unit(benchmark::kMillisecond)->Iterations(1);

void textExports(benchmark::State &state)
{
    Document &document = millionItems();
    TextExport::Options options;
    options.noteType = document.noteType;
    const QString path = outputDir().filePath(QStringLiteral("bench.txt"));
    for (auto _ : state) {
        const bool ok = state.range(0) == 0   ? TextExport::exportView(path, document.root(), options)
                        : state.range(0) == 1 ? TextExport::exportNotes(path, document.root(), options)
                                              : TextExport::exportLinks(path, document.root(), options);
        if (!ok)
            state.SkipWithError("export failed");
    }
    state.SetLabel(state.range(0) == 0 ? "view" : state.range(0) == 1 ? "notes" : "links");
}
BENCHMARK(textExports)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->Iterations(3);

// A note of about 200 characters as a word processor would save it.
void rtfToPlainText(benchmark::State &state)
{
    const QByteArray rtf =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}{\\colortbl ;\\red255\\green0"
        "\\blue0;}\\viewkind4\\uc1\\pard\\f0\\fs20 Call the \\b removal company\\b0  about the \\cf1 date\\cf0 , "
        "and ask whether they take the piano as well. \\i Caf\\'e9\\i0  on the corner opens at 8.\\par "
        "Second line with \\u8364? 25 and \\ldblquote quotes\\rdblquote .\\par}";
    for (auto _ : state)
        benchmark::DoNotOptimize(RtfReader::plainText(rtf));
    state.SetBytesProcessed(state.iterations() * rtf.size());
}
BENCHMARK(rtfToPlainText);

void plainTextToRichInk(benchmark::State &state)
{
    const QString text = QStringLiteral("Call the removal company about the date, and ask whether they take the "
                                        "piano as well.\r\nThe caf\u00e9 on the corner opens at 8.");
    for (auto _ : state)
        benchmark::DoNotOptimize(RichInk::fromRtf(RtfWriter::fromPlainText(text)).toNote());
}
BENCHMARK(plainTextToRichInk);

} // namespace

BENCHMARK_MAIN();
