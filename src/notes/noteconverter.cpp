#include "notes/noteconverter.h"

#include "notes/notetext.h"
#include "notes/richink.h"
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"
#include "model/document.h"

#include <utility>
#include <vector>

bool NoteConverter::convert(const QByteArray &note, quint16 from, quint16 to, QByteArray *result)
{
    if (from > Document::RichText || to > Document::RichText)
        return false;
    if (from == to || note.isEmpty()) {
        *result = note;
        return true;
    }
    switch (from) {
    case Document::PlainText: {
        const QString text = NoteText::plainText(note, from);
        if (text.isEmpty())
            *result = QByteArray();
        else if (to == Document::RichText)
            *result = RtfWriter::fromPlainText(text);
        else
            *result = RichInk::fromRtf(RtfWriter::fromPlainText(text)).toNote();
        return true;
    }
    case Document::RichInk: {
        const RichInk ink = RichInk::fromNote(note);
        if (to == Document::PlainText)
            *result = NoteText::toPlainNote(ink.plainText());
        else
            *result = ink.rtf();
        return true;
    }
    case Document::RichText:
        if (to == Document::PlainText) {
            *result = NoteText::toPlainNote(RtfReader::plainText(note));
        } else {
            // The RTF goes into the container as it is, formatting and all;
            // a terminating zero of the stored note is not part of it.
            QByteArray rtf = note;
            while (rtf.endsWith('\0'))
                rtf.chop(1);
            *result = rtf.isEmpty() ? QByteArray() : RichInk::fromRtf(rtf).toNote();
        }
        return true;
    }
    return false;
}

bool NoteConverter::convertAllNotes(TreeNode *root, quint16 from, quint16 to)
{
    // Every converted note is kept aside until all have succeeded, so that a
    // failure leaves the tree untouched.
    std::vector<std::pair<Item *, QByteArray>> converted;
    TreeWalker walker(root);
    while (Item *item = walker.next()) {
        if (item->noteSize() == 0)
            continue;
        QByteArray result;
        if (!convert(item->note(), from, to, &result))
            return false;
        converted.emplace_back(item, std::move(result));
    }
    for (auto &[item, note] : converted)
        item->setNote(note);
    return true;
}

bool NoteConverter::convertDocument(Document &document, quint16 to)
{
    if (!convertAllNotes(document.root(), document.noteType, to))
        return false;
    document.noteType = to;
    return true;
}

void NoteConverter::convertImported(TreeNode *importedRoot, quint16 from, quint16 to)
{
    NoteConverter converter;
    converter.convertAllNotes(importedRoot, from, to);
}
