#include "storage/password.h"

#include "model/document.h"
#include "platform/messages.h"

#include <QCryptographicHash>
#include <QtEndian>

QByteArray Password::digest(const QString &password)
{
    QByteArray units(password.size() * 2, Qt::Uninitialized);
    auto *data = reinterpret_cast<uchar *>(units.data());
    for (qsizetype i = 0; i < password.size(); ++i)
        qToLittleEndian<quint16>(password[i].unicode(), data + 2 * i);
    return QCryptographicHash::hash(units, QCryptographicHash::Md5);
}

bool Password::matches(const QByteArray &hash, const QString &password)
{
    // QByteArray equality compares the length first, then the bytes: a
    // digest of another length read from a file never matches.
    return digest(password) == hash;
}

Password::Result Password::check(const Document &document, const QString &password)
{
    if (document.passwordHash.isEmpty())
        return Result::Accepted;
    return matches(document.passwordHash, password) ? Result::Accepted : Result::NotCorrect;
}

Password::Result Password::change(Document *document, const QString &current, const QString &newPassword,
                                  const QString &confirmation)
{
    // The current password is checked before the new one is looked at.
    if (!document->passwordHash.isEmpty() && !matches(document->passwordHash, current))
        return Result::NotCorrect;
    if (newPassword != confirmation)
        return Result::Mismatch;
    if (newPassword.isEmpty()) {
        document->passwordHash.clear();
        return Result::Removed;
    }
    if (newPassword.size() > MaxLength)
        return Result::TooLong;
    document->passwordHash = digest(newPassword);
    return Result::Accepted;
}

QString Password::message(Result result)
{
    switch (result) {
    case Result::NotCorrect:
        return QString::fromUtf8(Messages::PasswordNotCorrect);
    case Result::Mismatch:
        return QString::fromUtf8(Messages::PasswordMismatch);
    default:
        return QString();
    }
}
