#pragma once

#include <QByteArray>
#include <QString>

class Document;

/// The shell's one road to the document files: load with its result code and
/// message, save, and the password check of a protected document.
namespace DocumentStore {

/// 0 loaded, 1 damaged, 2 unsupported version, 4 not found.
int load(const QString &path, Document *document);
/// The message for a failed load result; empty for success.
QString loadMessage(int result, const QString &path);
/// Writes the document to path (its own path when empty) by a safe save.
bool save(const Document &document, const QString &path = QString());
bool passwordMatches(const QByteArray &hash, const QString &password);

} // namespace DocumentStore
