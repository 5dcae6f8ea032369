#pragma once

#include <QString>
#include <QtGlobal>
#include <vector>

/// Formatted note text as the rich-text notes carry it: paragraphs with an
/// alignment, each a list of runs of equally formatted text. The RTF reader
/// produces it, the RTF writer writes it, and the note editor shows it.
class RichText {
public:
    struct CharFormat {
        bool bold = false;
        bool italic = false;
        bool underline = false;
        bool strikeOut = false;
        /// In half-points, as RTF counts; 0 leaves the reader's default size.
        int fontSize = 0;
        bool hasColour = false;
        /// 0xRRGGBB, meaningful when hasColour.
        quint32 colour = 0;

        friend bool operator==(const CharFormat &, const CharFormat &) = default;
    };

    struct Run {
        QString text;
        CharFormat format;

        friend bool operator==(const Run &, const Run &) = default;
    };

    enum class Alignment : quint8 { Left, Centre, Right, Justify };

    struct Paragraph {
        Alignment alignment = Alignment::Left;
        std::vector<Run> runs;

        QString text() const;
        /// Adds text in that format, joining it to the last run when the
        /// formats agree.
        void append(const QString &text, const CharFormat &format);

        friend bool operator==(const Paragraph &, const Paragraph &) = default;
    };

    std::vector<Paragraph> paragraphs;

    /// The text without formatting: the paragraphs joined by CR LF, as the
    /// plain-text notes keep line breaks.
    QString plainText() const;
    /// One unformatted paragraph per line; CR LF, a lone CR and a lone LF all
    /// end a line. Empty text gives one empty paragraph.
    static RichText fromPlainText(const QString &text);

    friend bool operator==(const RichText &, const RichText &) = default;
};
