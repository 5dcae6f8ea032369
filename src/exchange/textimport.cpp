#include "exchange/textimport.h"

#include "model/document.h"
#include "model/item.h"
#include "platform/messages.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <new>

namespace {

constexpr qsizetype MaxName = 96;

bool isLineBreak(QChar c)
{
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

} // namespace

QString TextImport::documentPath(const QString &textPath)
{
    const qsizetype slash = qMax(textPath.lastIndexOf(QLatin1Char('/')), textPath.lastIndexOf(QLatin1Char('\\')));
    const qsizetype dot = textPath.lastIndexOf(QLatin1Char('.'));
    const QString base = dot > slash ? textPath.left(dot) : textPath;
    return base + QLatin1String(".qbx");
}

TextImport::Result TextImport::importFile(const QString &textPath, TreeNode *root, const Options &options,
                                          int *errorLine)
{
    // Only a regular file of a sensible size: a device or a pipe has no end,
    // and a huge file would only exhaust memory.
    const QFileInfo info(textPath);
    if (!info.isFile() || info.size() > MaxFileSize)
        return Result::Unreadable;
    QFile file(textPath);
    if (!file.open(QIODevice::ReadOnly))
        return Result::Unreadable;
    try {
        const QByteArray bytes = file.read(MaxFileSize + 1);
        if (file.error() != QFileDevice::NoError || bytes.size() > MaxFileSize)
            return Result::Unreadable;
        return import(bytes, root, options, errorLine);
    } catch (const std::bad_alloc &) {
        return Result::Unreadable;
    }
}

namespace {

// The text of the file: UTF-8, UTF-16LE or UTF-16BE after its byte-order
// mark, UTF-8 without one when asked, else the ANSI code page. False when it
// cannot be converted.
bool decode(const QByteArray &bytes, const TextImport::Options &options, QString *text)
{
    const auto utf16 = [&](qsizetype skip, bool bigEndian) {
        // The file is read as if two zero bytes followed it: a file that is
        // only the mark, or the mark and 00 00, has no text and is refused.
        const qsizetype units = (bytes.size() - skip + 1) / 2;
        if (units == 0 || (bytes[skip] == '\0' && (bytes.size() < skip + 2 || bytes[skip + 1] == '\0')))
            return false;
        text->resize(units);
        const auto *data = reinterpret_cast<const uchar *>(bytes.constData()) + skip;
        const qsizetype size = bytes.size() - skip;
        for (qsizetype i = 0; i < units; ++i) {
            // An odd last byte meets the first of the two zero bytes.
            const quint16 first = data[2 * i];
            const quint16 second = 2 * i + 1 < size ? data[2 * i + 1] : 0;
            (*text)[i] = QChar(char16_t(bigEndian ? (first << 8 | second) : (first | second << 8)));
        }
        return true;
    };
    if (bytes.startsWith("\xff\xfe"))
        return utf16(2, false);
    if (bytes.startsWith("\xfe\xff"))
        return utf16(2, true);
    const bool bom = bytes.startsWith("\xef\xbb\xbf");
    if (bom || options.encoding == TextImport::Encoding::Utf8) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        *text = decoder.decode(QByteArrayView(bytes).sliced(bom ? 3 : 0));
        return !decoder.hasError() && !text->isEmpty();
    }
    CodePage codePage(options.codePage);
    bool ok = false;
    *text = codePage.toUnicode(bytes, &ok);
    return ok && !bytes.isEmpty();
}

} // namespace

TextImport::Result TextImport::import(const QByteArray &bytes, TreeNode *root, const Options &options,
                                      int *errorLine)
{
    try {
        return importText(bytes, root, options, errorLine);
    } catch (const std::bad_alloc &) {
        return Result::Unreadable;
    }
}

TextImport::Result TextImport::importText(const QByteArray &bytes, TreeNode *root, const Options &options,
                                          int *errorLine)
{
    if (errorLine)
        *errorLine = 0;
    QString text;
    if (!decode(bytes, options, &text))
        return Result::Unreadable;
    // A zero unit is an error on its line, never a silent end of the text.
    const QStringView all(text);

    // Lines are numbered as an editor numbers them: CR LF, a lone CR and a
    // lone LF each end one.
    qsizetype pos = 0;
    int lineNumber = 1;
    const auto formatError = [&] {
        if (errorLine)
            *errorLine = lineNumber;
        return Result::FormatError;
    };
    auto nextLine = [&](QStringView *line) {
        while (pos < all.size() && isLineBreak(all[pos])) {
            if (!(all[pos] == QLatin1Char('\n') && pos > 0 && all[pos - 1] == QLatin1Char('\r')))
                ++lineNumber;
            ++pos;
        }
        if (pos == all.size())
            return false;
        const qsizetype start = pos;
        while (pos < all.size() && !isLineBreak(all[pos]))
            ++pos;
        *line = all.sliced(start, pos - start);
        return true;
    };

    QStringView line;
    if (!nextLine(&line))
        return formatError(); // not even the root's name
    if (line.contains(QChar(0)))
        return formatError();
    root->setName(line.left(MaxName).toString());

    int level = 1;
    TreeNode *parent = root;
    TreeNode *last = root;
    while (nextLine(&line)) {
        if (line.contains(QChar(0)))
            return formatError();
        int n = 0;
        while (n < line.size() && line[n].isSpace())
            ++n;
        if (n == 0 || n > level + 1)
            return formatError();
        if (n == level + 1) {
            parent = last;
            level = n;
        } else if (n < level) {
            // The first item may sit one level deep under the root; a later
            // line cannot climb above the root.
            for (; level > n; --level) {
                parent = parent->parent();
                if (!parent)
                    return formatError();
            }
        }
        auto *item = new Item(line.sliced(n).left(MaxName).toString(), options.icon);
        parent->appendChild(item);
        last = item;
    }
    return Result::Ok;
}

TextImport::Result TextImport::importDocument(const QString &textPath, quint16 noteType, const Options &options,
                                              Document *document, int *errorLine)
{
    document->noteType = noteType;
    document->path = documentPath(textPath);
    return importFile(textPath, document->root(), options, errorLine);
}

QString TextImport::message(Result result, int line)
{
    switch (result) {
    case Result::Ok:
        return QString();
    case Result::FormatError:
        if (line > 0)
            return QString::fromLatin1(Messages::ImportFormatInvalid) + QLatin1Char(' ') +
                   QString::fromLatin1(Messages::ImportFormatLine).arg(line);
        return QString::fromLatin1(Messages::ImportFormatInvalid);
    case Result::Unreadable:
        return QString::fromLatin1(Messages::ImportTooLarge);
    }
    return QString();
}
