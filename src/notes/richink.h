#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

/// A "Rich Ink" note. Notes made here use our container: the eight bytes
/// "QBINK\r\n\x1a", then tagged chunks, each a four-byte ASCII tag, a 32-bit
/// little-endian length and that many bytes. "RTF " holds the text with its
/// formatting as RTF, "INKS" the drawn strokes, "VOIC" a voice clip; the
/// order is free and chunks of other tags are kept as they are.
///
/// A note without our magic came from another program (an ink format we do
/// not read): its bytes are kept exactly until the note is replaced, and its
/// text is recovered as well as can be (an embedded RTF document, or runs of
/// UTF-16 text).
class RichInk {
public:
    struct Chunk {
        QByteArray tag;
        QByteArray data;
    };

    static QByteArray rtfTag() { return QByteArrayLiteral("RTF "); }
    static QByteArray strokesTag() { return QByteArrayLiteral("INKS"); }
    static QByteArray voiceTag() { return QByteArrayLiteral("VOIC"); }
    static QByteArray magic() { return QByteArrayLiteral("QBINK\r\n\x1a"); }

    RichInk() = default;
    /// Reads a stored note. A chunk that runs past the end marks the
    /// container damaged; the chunks before it are kept.
    static RichInk fromNote(const QByteArray &note);
    /// A container holding only this RTF.
    static RichInk fromRtf(const QByteArray &rtf);

    /// True for our container (and for a new, empty one).
    bool isOurs() const { return !m_isForeign; }
    bool isDamaged() const { return m_damaged; }

    const std::vector<Chunk> &chunks() const { return m_chunks; }
    /// The data of the first chunk with that tag, or empty.
    QByteArray chunk(const QByteArray &tag) const;
    /// Replaces the chunks of that tag by one (appended when there was none);
    /// empty data removes them. A foreign note becomes ours.
    void setChunk(const QByteArray &tag, const QByteArray &data);

    /// The RTF of the text: our "RTF " chunk; for a foreign note that is a
    /// bare RTF document, that document; for any other foreign note, RTF made
    /// from the text found in it. Empty when there is no text at all.
    QByteArray rtf() const;
    /// The text without formatting, drawings or recordings.
    QString plainText() const;

    /// The bytes to store: our container, or a foreign note's own bytes.
    QByteArray toNote() const;

    /// What text a note in another program's ink format shows: an embedded
    /// RTF document's text, otherwise the runs of UTF-16 text found in it,
    /// one per line.
    static QString extractText(const QByteArray &bytes);

private:
    std::vector<Chunk> m_chunks;
    QByteArray m_foreign;
    bool m_isForeign = false;
    bool m_damaged = false;
};
