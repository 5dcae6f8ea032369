#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "platform/messages.h"
#include "tools/documentgenerator.h"

namespace {

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes a synthetic document for benchmarks and examples: names with some non-ASCII "
                       "letters, notes on about one item in five, categories, due dates, priorities, progress "
                       "and item links. The same options always give the same file.\n"
                       "With --sample, writes the small example outline instead."));
    const QCommandLineOption items(QStringLiteral("items"), QStringLiteral("Number of items."), QStringLiteral("N"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("Random seed (default 1)."),
                                  QStringLiteral("S"), QStringLiteral("1"));
    const QCommandLineOption chain(QStringLiteral("chain"),
                                   QStringLiteral("Nest every item under the previous one (one deep chain)."));
    const QCommandLineOption noteType(QStringLiteral("note-type"),
                                      QStringLiteral("Note format: 0 plain text (default), 1 rich ink, 2 rich text."),
                                      QStringLiteral("T"), QStringLiteral("0"));
    const QCommandLineOption sample(QStringLiteral("sample"), QStringLiteral("Write the example outline."));
    parser.addOptions({items, seed, chain, noteType, sample});
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The .qbx file to write."));
    if (const int status = DocumentLoading::parse(parser, arguments, "generate", 1, 1); status >= 0)
        return status;

    QTextStream err(stderr);
    Document document;
    if (parser.isSet(sample)) {
        DocumentGenerator::sample(&document);
    } else {
        DocumentGenerator::Options options;
        bool ok = parser.isSet(items);
        options.items = parser.value(items).toInt(&ok);
        if (!ok || options.items < 0) {
            err << "qbx: --items needs a count of 0 or more\n";
            return 2;
        }
        options.seed = parser.value(seed).toUInt(&ok);
        if (!ok) {
            err << "qbx: --seed needs a number\n";
            return 2;
        }
        options.noteType = quint16(parser.value(noteType).toUInt(&ok));
        if (!ok || options.noteType > 2) {
            err << "qbx: --note-type is 0, 1 or 2\n";
            return 2;
        }
        options.chain = parser.isSet(chain);
        DocumentGenerator::generate(&document, options);
    }
    QString error;
    if (!DocumentFile::save(document, parser.positionalArguments().at(0), &error)) {
        err << Messages::SaveFailed << "\n" << error << "\n";
        return 5;
    }
    return 0;
}

const CliCommand command("generate", "Write a synthetic document for benchmarks and examples", run);

} // namespace
