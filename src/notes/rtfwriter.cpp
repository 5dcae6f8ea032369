#include "notes/rtfwriter.h"

#include <algorithm>

namespace {

void appendText(QByteArray &out, const QString &text)
{
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        if (unit == u'\\' || unit == u'{' || unit == u'}') {
            out += '\\';
            out += char(unit);
        } else if (unit == u'\t') {
            out += "\\tab ";
        } else if (unit == u'\n' || unit == 0x2028) {
            out += "\\line ";
        } else if (unit >= 0x20 && unit < 0x7f) {
            out += char(unit);
        } else if (unit < 0x20 || unit == 0x7f) {
            // Other control characters (a lone CR, a zero) are no text.
        } else {
            // RTF numbers are signed 16-bit: units above 32767 are written
            // negative. Each half of a surrogate pair is its own escape.
            out += "\\u";
            out += QByteArray::number(int(qint16(unit)));
            out += '?';
        }
    }
}

} // namespace

QByteArray RtfWriter::write(const RichText &text)
{
    std::vector<quint32> colours;
    for (const RichText::Paragraph &paragraph : text.paragraphs) {
        for (const RichText::Run &run : paragraph.runs) {
            if (run.format.hasColour && std::find(colours.begin(), colours.end(), run.format.colour) == colours.end())
                colours.push_back(run.format.colour);
        }
    }

    QByteArray out("{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fnil Tahoma;}}");
    if (!colours.empty()) {
        // Entry 0 is the automatic colour; \cf0 returns to it.
        out += "{\\colortbl ;";
        for (quint32 rgb : colours) {
            out += "\\red" + QByteArray::number((rgb >> 16) & 0xff) + "\\green" +
                   QByteArray::number((rgb >> 8) & 0xff) + "\\blue" + QByteArray::number(rgb & 0xff) + ';';
        }
        out += '}';
    }
    out += "\r\n";

    RichText::CharFormat current;
    for (const RichText::Paragraph &paragraph : text.paragraphs) {
        out += "\\pard";
        switch (paragraph.alignment) {
        case RichText::Alignment::Left:
            break;
        case RichText::Alignment::Centre:
            out += "\\qc";
            break;
        case RichText::Alignment::Right:
            out += "\\qr";
            break;
        case RichText::Alignment::Justify:
            out += "\\qj";
            break;
        }
        for (const RichText::Run &run : paragraph.runs) {
            const RichText::CharFormat &wanted = run.format;
            QByteArray controls;
            if (wanted.fontSize == 0 && current.fontSize != 0) {
                // Only \plain brings back the reader's own default size.
                controls += "\\plain";
                current = RichText::CharFormat();
            }
            if (wanted.bold != current.bold)
                controls += wanted.bold ? "\\b" : "\\b0";
            if (wanted.italic != current.italic)
                controls += wanted.italic ? "\\i" : "\\i0";
            if (wanted.underline != current.underline)
                controls += wanted.underline ? "\\ul" : "\\ulnone";
            if (wanted.strikeOut != current.strikeOut)
                controls += wanted.strikeOut ? "\\strike" : "\\strike0";
            if (wanted.fontSize != current.fontSize)
                controls += "\\fs" + QByteArray::number(wanted.fontSize);
            if (wanted.hasColour != current.hasColour || (wanted.hasColour && wanted.colour != current.colour)) {
                const auto index = wanted.hasColour
                                       ? std::find(colours.begin(), colours.end(), wanted.colour) - colours.begin() + 1
                                       : 0;
                controls += "\\cf" + QByteArray::number(qint64(index));
            }
            current = wanted;
            if (!controls.isEmpty()) {
                out += controls;
                out += ' ';
            } else if (&run == &paragraph.runs.front()) {
                out += ' ';
            }
            appendText(out, run.text);
        }
        out += "\\par\r\n";
    }
    out += '}';
    return out;
}
