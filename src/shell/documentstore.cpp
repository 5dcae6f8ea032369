#include "shell/documentstore.h"

#if __has_include("storage/documentfile.h")
#include "storage/documentfile.h"
#include "storage/password.h"

namespace DocumentStore {

int load(const QString &path, Document *document)
{
    return DocumentFile::load(path, document);
}

QString loadMessage(int result, const QString &path)
{
    return DocumentFile::loadMessage(DocumentFile::LoadResult(result), path);
}

bool save(const Document &document, const QString &path)
{
    return DocumentFile::save(document, path);
}

bool passwordMatches(const QByteArray &hash, const QString &password)
{
    return Password::matches(hash, password);
}

} // namespace DocumentStore
#else
#include "platform/messages.h"

namespace DocumentStore {

int load(const QString &, Document *)
{
    return 1;
}

QString loadMessage(int, const QString &)
{
    return QString::fromLatin1(Messages::LoadDamaged);
}

bool save(const Document &, const QString &)
{
    return false;
}

bool passwordMatches(const QByteArray &, const QString &)
{
    return false;
}

} // namespace DocumentStore
#endif
