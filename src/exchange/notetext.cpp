#include "exchange/notetext.h"

#include <QtEndian>

namespace NoteText {

QString fromPlainNote(const QByteArray &note)
{
    qsizetype units = note.size() / 2;
    const auto *data = reinterpret_cast<const uchar *>(note.constData());
    QString text(units, Qt::Uninitialized);
    for (qsizetype i = 0; i < units; ++i)
        text[i] = QChar(qFromLittleEndian<quint16>(data + 2 * i));
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
    if (noteType == 0)
        return fromPlainNote(note);
    // Rich text and rich ink are read by the note converters.
    return QString();
}

} // namespace NoteText
