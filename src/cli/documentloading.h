#pragma once

#include "model/document.h"
#include "storage/documentfile.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

/// What the document commands of qbx share: loading with the exact message of
/// a failure on stderr and the load result as exit status.
namespace DocumentLoading {

/// Loads path; on failure prints the message and returns the result code
/// (1, 2 or 4) to exit with, else 0.
inline int load(const QString &path, Document *document)
{
    const DocumentFile::LoadResult result = DocumentFile::load(path, document);
    if (result == DocumentFile::Loaded)
        return 0;
    QTextStream(stderr) << DocumentFile::loadMessage(result, path) << "\n";
    return int(result);
}

/// Parses the command line; prints help or a usage error. Returns -1 to go
/// on, else the exit status.
inline int parse(QCommandLineParser &parser, const QStringList &arguments, const char *command, int minPositional,
                 int maxPositional)
{
    parser.addHelpOption();
    // The usage line names the command, not the path of the executable.
    const QString usage = QLatin1String("qbx ") + QLatin1String(command);
    QString help = parser.helpText();
    const QString program = QCoreApplication::arguments().value(0);
    const qsizetype at = help.indexOf(program);
    if (at >= 0)
        help.replace(at, program.size(), usage);
    if (!parser.parse(arguments)) {
        QTextStream(stderr) << "qbx: " << parser.errorText() << "\n";
        return 2;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << help;
        return 0;
    }
    const qsizetype count = parser.positionalArguments().size();
    if (count < minPositional || count > maxPositional) {
        QTextStream(stderr) << "qbx: wrong number of arguments\n" << help;
        return 2;
    }
    return -1;
}

} // namespace DocumentLoading
