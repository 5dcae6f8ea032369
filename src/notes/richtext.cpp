#include "notes/richtext.h"

QString RichText::Paragraph::text() const
{
    QString text;
    for (const Run &run : runs)
        text += run.text;
    return text;
}

void RichText::Paragraph::append(const QString &text, const CharFormat &format)
{
    if (text.isEmpty())
        return;
    if (!runs.empty() && runs.back().format == format)
        runs.back().text += text;
    else
        runs.push_back({text, format});
}

QString RichText::plainText() const
{
    QString text;
    for (size_t i = 0; i < paragraphs.size(); ++i) {
        if (i > 0)
            text += QLatin1String("\r\n");
        for (const Run &run : paragraphs[i].runs)
            text += run.text;
    }
    return text;
}

RichText RichText::fromPlainText(const QString &text)
{
    RichText rich;
    qsizetype start = 0;
    for (;;) {
        qsizetype end = start;
        while (end < text.size() && text[end] != QLatin1Char('\r') && text[end] != QLatin1Char('\n'))
            ++end;
        Paragraph paragraph;
        paragraph.append(text.mid(start, end - start), CharFormat());
        rich.paragraphs.push_back(std::move(paragraph));
        if (end == text.size())
            break;
        start = end + 1;
        if (text[end] == QLatin1Char('\r') && start < text.size() && text[start] == QLatin1Char('\n'))
            ++start;
    }
    return rich;
}
