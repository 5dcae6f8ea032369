#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

struct UConverter;

/// Text in the configured ANSI code page (a setting, "windows-1252" unless
/// changed), converted with ICU. A character the code page lacks becomes "?",
/// one "?" per character (a surrogate pair is one character). A CodePage keeps
/// conversion state, so one object serves one thread.
class CodePage {
public:
    static QString defaultName() { return QStringLiteral("windows-1252"); }

    /// Opens the converter of that name (any name ICU knows: "windows-1252",
    /// "windows-932", "ISO-8859-2" ...); check isValid().
    explicit CodePage(const QString &name = defaultName());
    ~CodePage();
    CodePage(const CodePage &) = delete;
    CodePage &operator=(const CodePage &) = delete;

    bool isValid() const { return m_converter != nullptr; }
    const QString &name() const { return m_name; }

    /// The bytes of text in this code page.
    QByteArray fromUnicode(QStringView text);
    /// The text of bytes in this code page; bytes the code page does not
    /// define become the converter's substitute. *ok is false when the
    /// converter is missing or fails (or the input is too large for it).
    QString toUnicode(QByteArrayView bytes, bool *ok = nullptr);

    /// The bytes that the exports write for a piece of text: the conversion
    /// cut or zero-padded to exactly text.size() bytes, one per UTF-16 unit.
    /// Text that needs more bytes than it has units (double-byte code pages)
    /// is cut; a surrogate pair, which becomes one "?", leaves a zero byte at
    /// the end of the piece. The file length so always equals the number of
    /// UTF-16 units written, as the export file formats fix it.
    QByteArray exportBytes(QStringView text);

    /// Piecewise conversion of one long text: appending the pieces in order
    /// gives the same bytes as fromUnicode() of the whole, even when a piece
    /// ends inside a surrogate pair. Call finish() after the last piece.
    void append(QStringView piece, QByteArray *out);
    void finish(QByteArray *out);

private:
    void convertRun(const QChar *begin, const QChar *end, QByteArray *out, bool flush);

    QString m_name;
    UConverter *m_converter = nullptr;
    bool m_asciiTransparent = false; // code points below 0x80 map to the same bytes
    bool m_pending = false;          // the converter may hold the first half of a pair
};
