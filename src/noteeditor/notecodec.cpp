#include "noteeditor/notecodec.h"

#include "exchange/notetext.h"

#include <QTextBlock>
#include <QTextDocument>

namespace NoteCodec {

namespace {

// RTF of plain paragraphs: ASCII with \uN escapes for everything else.
QByteArray paragraphsToRtf(const QTextDocument *doc)
{
    QByteArray rtf = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Tahoma;}}\\f0\\fs20 ";
    bool first = true;
    for (QTextBlock block = doc->begin(); block.isValid(); block = block.next()) {
        if (!first)
            rtf += "\\par\r\n";
        first = false;
        const QString text = block.text();
        for (QChar c : text) {
            const ushort u = c.unicode();
            if (u == '\\' || u == '{' || u == '}') {
                rtf += '\\';
                rtf += char(u);
            } else if (u == '\t') {
                rtf += "\\tab ";
            } else if (u >= 0x20 && u < 0x80) {
                rtf += char(u);
            } else {
                rtf += "\\u" + QByteArray::number(qint16(u)) + '?';
            }
        }
    }
    rtf += "}";
    return rtf;
}

} // namespace

void read(const QByteArray &note, quint16 noteType, QTextDocument *doc)
{
    doc->setPlainText(noteType == 0 ? NoteText::fromPlainNote(note) : NoteText::plainText(note, noteType));
}

QByteArray write(const QTextDocument *doc, quint16 noteType)
{
    if (doc->isEmpty())
        return {};
    if (noteType == 0)
        return NoteText::toPlainNote(doc->toPlainText());
    return paragraphsToRtf(doc);
}

} // namespace NoteCodec
