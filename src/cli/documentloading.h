#pragma once

#include "cli/exitcodes.h"
#include "model/document.h"
#include "platform/messages.h"
#include "storage/documentfile.h"
#include "storage/documentlock.h"
#include "storage/filefingerprint.h"
#include "storage/safesave.h"

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

/// How long an in-place command waits for another writer of the same
/// document: QBX_LOCK_TIMEOUT seconds, 30 by default.
inline int lockTimeoutMs()
{
    bool ok = false;
    const int seconds = qEnvironmentVariableIntValue("QBX_LOCK_TIMEOUT", &ok);
    return ok && seconds >= 0 ? seconds * 1000 : 30000;
}

/// The option of every command that changes its document in place.
inline QCommandLineOption forceOption()
{
    return QCommandLineOption(QStringLiteral("force"),
                              QStringLiteral("Save even when the file changed on disk since it was read."));
}

/// A document that a command changes and writes back: the lock is held from
/// before the load until the object goes, so a second writer waits and then
/// works on what this one wrote.
struct Update {
    explicit Update(const QString &documentPath) : path(documentPath), lock(documentPath) {}
    QString path;
    DocumentLock lock;
    FileFingerprint loaded;
};

/// Takes the lock and loads. Returns 0, a load result, or Locked.
inline int loadForUpdate(Update *update, Document *document)
{
    QString error;
    if (!update->lock.lock(lockTimeoutMs(), &error)) {
        QTextStream(stderr) << "qbx: " << error << "\n";
        return ExitCode::Locked;
    }
    // Taken before reading: a change during the load shows at the save.
    update->loaded = FileFingerprint::of(update->path);
    return load(update->path, document);
}

/// Reports a failed write: the given text (one of the fixed messages) when
/// the disk is full or the reason is unknown, then the file and the reason.
inline void reportWriteFailure(const char *message, const QString &error)
{
    QTextStream err(stderr);
    const SafeSave::Failure why = SafeSave::lastFailure();
    if (why == SafeSave::Failure::DiskFull || why == SafeSave::Failure::Other || why == SafeSave::Failure::None)
        err << message << "\n";
    err << "qbx: " << error << "\n";
}

/// Writes the document back to its own file unless it changed on disk since
/// the load (force writes anyway). Returns 0, ChangedOnDisk or WriteFailed.
inline int saveUpdate(const Update &update, const Document &document, bool force,
                      const char *failureMessage = Messages::SaveFailed)
{
    if (!force && !update.loaded.matches(update.path)) {
        QTextStream(stderr) << "qbx: " << update.path
                            << " changed on disk since it was read; nothing was saved (--force saves anyway)\n";
        return ExitCode::ChangedOnDisk;
    }
    QString error;
    if (!DocumentFile::save(document, update.path, &error)) {
        reportWriteFailure(failureMessage, error);
        return ExitCode::WriteFailed;
    }
    return ExitCode::Ok;
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
