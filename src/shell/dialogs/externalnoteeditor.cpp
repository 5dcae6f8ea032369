#include "shell/dialogs/externalnoteeditor.h"

#include "notes/noteconverter.h"
#include "notes/rtfwriter.h"
#include "model/document.h"
#include "platform/messages.h"
#include "shell/widgets/prompts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryFile>
#include <QUrl>

ExternalNoteEditor::Result ExternalNoteEditor::edit(QWidget *parent, Prompts *prompts, QByteArray *note,
                                                    quint16 noteType, const QString &folder)
{
    NoteConverter converter;
    QByteArray rtf;
    if (!converter.convert(*note, noteType, Document::RichText, &rtf))
        return Result::Failed;
    // An empty note still opens as an empty document.
    if (rtf.isEmpty())
        rtf = RtfWriter::fromPlainText(QString());

    const QString dir = folder.isEmpty() ? QDir::tempPath() : folder;
    QString path;
    {
        QTemporaryFile file(QDir(dir).filePath(QStringLiteral("qlbXXXXXX.rtf")));
        file.setAutoRemove(false);
        if (!file.open())
            return Result::Failed;
        path = file.fileName();
        const bool written = file.write(rtf) == rtf.size() && file.flush();
        file.close();
        if (!written) {
            QFile::remove(path);
            return Result::Failed;
        }
    }
    if (!prompts->openUrl(QUrl::fromLocalFile(path))) {
        QFile::remove(path);
        return Result::Failed;
    }
    if (!prompts->askOkCancel(parent, QString::fromLatin1(Messages::EditInWordDone))) {
        QFile::remove(path);
        return Result::Cancelled;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        QFile::remove(path);
        return Result::Failed;
    }
    const QByteArray edited = file.readAll();
    file.close();
    QFile::remove(path);
    QByteArray result;
    if (!converter.convert(edited, Document::RichText, noteType, &result))
        return Result::Failed;
    *note = result;
    return Result::Updated;
}
