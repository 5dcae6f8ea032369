#pragma once

#include <QByteArray>
#include <QString>

class Document;

/// Password protection of a document. The file never holds the password, only
/// its MD5 digest over the UTF-16LE code units (no terminator); an empty
/// digest means the document is not protected. Notes are not enciphered.
class Password {
public:
    /// Every password edit box takes at most this many characters.
    static constexpr int MaxLength = 15;

    enum class Result {
        Accepted,   ///< "enter": the password is right; "set": the new digest is in place
        Removed,    ///< "set" with both new boxes empty: the document is no longer protected
        NotCorrect, ///< the current password does not match the digest
        Mismatch,   ///< the new password and its confirmation differ
        TooLong,    ///< a new password longer than MaxLength (an edit box never lets one through)
    };

    /// The MD5 digest of the text's UTF-16LE code units.
    static QByteArray digest(const QString &password);
    /// True when digest(password) equals hash in length and bytes.
    static bool matches(const QByteArray &hash, const QString &password);

    /// The "enter" check of a protected document: Accepted or NotCorrect. An
    /// unprotected document accepts anything.
    static Result check(const Document &document, const QString &password);
    /// The "set" rules: on a protected document the current password is
    /// checked first; then new and confirmation must agree exactly (case
    /// counts). Both empty removes the protection. PasswordHash changes only
    /// on Accepted or Removed.
    static Result change(Document *document, const QString &current, const QString &newPassword,
                         const QString &confirmation);

    /// The message for a refusal (NotCorrect, Mismatch), else empty.
    static QString message(Result result);
};
