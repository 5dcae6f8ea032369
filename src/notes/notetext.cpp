#include "notes/notetext.h"

#include "notes/noteconverter.h"
#include "notes/richink.h"
#include "notes/rtfreader.h"

#include <QtEndian>

namespace NoteText {

QString fromPlainNote(const QByteArray &note)
{
    const qsizetype units = note.size() / 2;
    QString text(units, Qt::Uninitialized);
    qFromLittleEndian<quint16>(note.constData(), units, text.data());
    if (!text.isEmpty() && text.back() == QChar(0))
        text.chop(1);
    return text;
}

QByteArray toPlainNote(const QString &text)
{
    if (text.isEmpty())
        return {};
    QByteArray bytes((text.size() + 1) * 2, '\0');
    auto *data = reinterpret_cast<uchar *>(bytes.data());
    for (qsizetype i = 0; i < text.size(); ++i)
        qToLittleEndian<quint16>(text[i].unicode(), data + 2 * i);
    return bytes;
}

QString plainText(const QByteArray &note, quint16 noteType)
{
    switch (noteType) {
    case 0: {
        QString text = fromPlainNote(note);
        const qsizetype end = text.indexOf(QChar(0));
        if (end >= 0)
            text.truncate(end);
        return text;
    }
    case 1:
        return RichInk::fromNote(note).plainText();
    case 2:
        return RtfReader::plainText(note);
    default:
        return QString();
    }
}

QByteArray fromText(const QString &text, quint16 noteType)
{
    QByteArray note;
    NoteConverter converter;
    if (!converter.convert(toPlainNote(text), 0, noteType, &note))
        return {};
    return note;
}

} // namespace NoteText
