#include "noteeditor/notecodec.h"

#include "notes/notetext.h"
#include "notes/richink.h"
#include "notes/richtext.h"
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace NoteCodec {

namespace {

Qt::Alignment toQt(RichText::Alignment alignment)
{
    switch (alignment) {
    case RichText::Alignment::Centre:
        return Qt::AlignHCenter;
    case RichText::Alignment::Right:
        return Qt::AlignRight;
    case RichText::Alignment::Justify:
        return Qt::AlignJustify;
    case RichText::Alignment::Left:
        break;
    }
    return Qt::AlignLeft;
}

RichText::Alignment fromQt(Qt::Alignment alignment)
{
    if (alignment & Qt::AlignHCenter)
        return RichText::Alignment::Centre;
    if (alignment & Qt::AlignRight)
        return RichText::Alignment::Right;
    if (alignment & Qt::AlignJustify)
        return RichText::Alignment::Justify;
    return RichText::Alignment::Left;
}

void fill(const RichText &text, QTextDocument *doc)
{
    doc->clear();
    QTextCursor cursor(doc);
    bool first = true;
    for (const RichText::Paragraph &paragraph : text.paragraphs) {
        QTextBlockFormat block;
        block.setAlignment(toQt(paragraph.alignment));
        if (first)
            cursor.setBlockFormat(block);
        else
            cursor.insertBlock(block);
        first = false;
        for (const RichText::Run &run : paragraph.runs) {
            QTextCharFormat format;
            format.setFontWeight(run.format.bold ? QFont::Bold : QFont::Normal);
            format.setFontItalic(run.format.italic);
            format.setFontUnderline(run.format.underline);
            format.setFontStrikeOut(run.format.strikeOut);
            if (run.format.fontSize > 0)
                format.setFontPointSize(run.format.fontSize / 2.0);
            if (run.format.hasColour)
                format.setForeground(QColor::fromRgb(QRgb(run.format.colour)));
            cursor.insertText(run.text, format);
        }
    }
}

RichText collect(const QTextDocument *doc)
{
    RichText text;
    for (QTextBlock block = doc->begin(); block.isValid(); block = block.next()) {
        RichText::Paragraph paragraph;
        paragraph.alignment = fromQt(block.blockFormat().alignment());
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (!fragment.isValid())
                continue;
            const QTextCharFormat f = fragment.charFormat();
            RichText::CharFormat format;
            format.bold = f.fontWeight() >= QFont::Bold;
            format.italic = f.fontItalic();
            format.underline = f.fontUnderline();
            format.strikeOut = f.fontStrikeOut();
            if (f.hasProperty(QTextFormat::FontPointSize))
                format.fontSize = qRound(f.fontPointSize() * 2);
            if (f.hasProperty(QTextFormat::ForegroundBrush)) {
                format.hasColour = true;
                format.colour = f.foreground().color().rgb() & 0xFFFFFF;
            }
            paragraph.append(fragment.text(), format);
        }
        text.paragraphs.push_back(std::move(paragraph));
    }
    return text;
}

} // namespace

void read(const QByteArray &note, quint16 noteType, QTextDocument *doc)
{
    switch (noteType) {
    case 0:
        doc->setPlainText(NoteText::fromPlainNote(note));
        return;
    case 1: {
        const QByteArray rtf = RichInk::fromNote(note).rtf();
        if (rtf.isEmpty())
            doc->clear();
        else
            fill(RtfReader::read(rtf), doc);
        return;
    }
    default:
        if (note.isEmpty())
            doc->clear();
        else
            fill(RtfReader::read(note), doc);
        return;
    }
}

QByteArray write(const QTextDocument *doc, quint16 noteType, const QByteArray &original)
{
    const bool empty = doc->isEmpty();
    switch (noteType) {
    case 0:
        return empty ? QByteArray() : NoteText::toPlainNote(doc->toPlainText());
    case 1: {
        // The drawings and recordings of the note stay as they were.
        RichInk ink = original.isEmpty() ? RichInk() : RichInk::fromNote(original);
        ink.setChunk(RichInk::rtfTag(), empty ? QByteArray() : RtfWriter::write(collect(doc)));
        return ink.chunks().empty() ? QByteArray() : ink.toNote();
    }
    default:
        return empty ? QByteArray() : RtfWriter::write(collect(doc));
    }
}

} // namespace NoteCodec
