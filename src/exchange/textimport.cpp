#include "exchange/textimport.h"

#include "model/document.h"
#include "model/item.h"
#include "platform/messages.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

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

TextImport::Result TextImport::importFile(const QString &textPath, TreeNode *root, const Options &options)
{
    QFile file(textPath);
    if (!file.open(QIODevice::ReadOnly))
        return Result::Unreadable;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Result::Unreadable;
    return import(bytes, root, options);
}

TextImport::Result TextImport::import(const QByteArray &bytes, TreeNode *root, const Options &options)
{
    QString text;
    if (bytes.startsWith("\xff\xfe")) {
        // The file is read as if two zero bytes followed it: a file that is
        // only FF FE, or FF FE 00 00, has no text and is refused.
        const qsizetype units = (bytes.size() - 1) / 2;
        if (units == 0 || (bytes[2] == '\0' && (bytes.size() < 4 || bytes[3] == '\0')))
            return Result::Unreadable;
        text.resize(units);
        const auto *data = reinterpret_cast<const uchar *>(bytes.constData()) + 2;
        for (qsizetype i = 0; i < units; ++i) {
            // An odd last byte meets the first of the two zero bytes.
            const quint16 low = data[2 * i];
            const quint16 high = 2 + 2 * i + 1 < bytes.size() ? data[2 * i + 1] : 0;
            text[i] = QChar(char16_t(low | high << 8));
        }
    } else {
        CodePage codePage(options.codePage);
        bool ok = false;
        text = codePage.toUnicode(bytes, &ok);
        if (!ok || bytes.isEmpty())
            return Result::Unreadable;
    }
    const qsizetype end = text.indexOf(QChar(0));
    const QStringView all = QStringView(text).first(end >= 0 ? end : text.size());

    qsizetype pos = 0;
    auto nextLine = [&](QStringView *line) {
        while (pos < all.size() && isLineBreak(all[pos]))
            ++pos;
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
        return Result::FormatError; // not even the root's name
    root->setName(line.left(MaxName).toString());

    int level = 1;
    TreeNode *parent = root;
    TreeNode *last = root;
    while (nextLine(&line)) {
        int n = 0;
        while (n < line.size() && line[n].isSpace())
            ++n;
        if (n == 0 || n > level + 1)
            return Result::FormatError;
        if (n == level + 1) {
            parent = last;
            level = n;
        } else if (n < level) {
            // The first item may sit one level deep under the root; a later
            // line cannot climb above the root.
            for (; level > n; --level) {
                parent = parent->parent();
                if (!parent)
                    return Result::FormatError;
            }
        }
        auto *item = new Item(line.sliced(n).left(MaxName).toString(), options.icon);
        parent->appendChild(item);
        last = item;
    }
    return Result::Ok;
}

TextImport::Result TextImport::importDocument(const QString &textPath, quint16 noteType, const Options &options,
                                              Document *document)
{
    document->noteType = noteType;
    document->path = documentPath(textPath);
    return importFile(textPath, document->root(), options);
}

QString TextImport::message(Result result)
{
    switch (result) {
    case Result::Ok:
        return QString();
    case Result::FormatError:
        return QString::fromLatin1(Messages::ImportFormatInvalid);
    case Result::Unreadable:
        return QString::fromLatin1(Messages::ImportTooLarge);
    }
    return QString();
}
