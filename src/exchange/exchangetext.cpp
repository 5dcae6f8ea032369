#include "exchange/exchangetext.h"

#include "model/item.h"
#include "notes/notetext.h"

namespace ExchangeText {

QString unixLines(const QString &text)
{
    if (!text.contains(QLatin1Char('\r')))
        return text;
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('\r')) {
            out += QLatin1Char('\n');
            if (i + 1 < text.size() && text[i + 1] == QLatin1Char('\n'))
                ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

namespace {

// The length of the XML character at i (1 or 2 units), or 0 when it is none.
int xmlCharAt(const QString &text, qsizetype i)
{
    const char16_t c = text[i].unicode();
    if (c < 0x20)
        return c == u'\t' || c == u'\n' || c == u'\r' ? 1 : 0;
    if (QChar::isHighSurrogate(c))
        return i + 1 < text.size() && text[i + 1].isLowSurrogate() ? 2 : 0;
    if (QChar::isLowSurrogate(c) || c == 0xfffe || c == 0xffff)
        return 0;
    return 1;
}

} // namespace

QString xmlSafe(const QString &text)
{
    // Nearly every text is clean: a plain scan finds the first doubtful unit.
    const char16_t *data = reinterpret_cast<const char16_t *>(text.constData());
    qsizetype i = 0;
    while (i < text.size() && data[i] >= 0x20 && data[i] < 0xd800)
        ++i;
    for (int n; i < text.size() && (n = xmlCharAt(text, i)) != 0; i += n) {
    }
    if (i == text.size())
        return text;
    QString out = text.left(i);
    while (i < text.size()) {
        const int n = xmlCharAt(text, i);
        if (n == 0) {
            ++i;
            continue;
        }
        out += QStringView(text).sliced(i, n);
        i += n;
    }
    return out;
}

QString noteText(const Item &item, quint16 noteType)
{
    if (item.noteSize() == 0)
        return QString();
    return unixLines(NoteText::plainText(item.note(), noteType));
}

QString firstOuterLink(const Item &item)
{
    const QStringList links = item.links();
    for (const QString &link : links) {
        if (!Item::isItemLink(link) && !link.isEmpty())
            return link;
    }
    return QString();
}

} // namespace ExchangeText
