#include "exchange/textexport.h"

#include "model/linktargets.h"
#include "notes/notetext.h"
#include "model/document.h"
#include "model/item.h"
#include "model/treewalker.h"
#include "platform/messages.h"
#include "views/groupview.h"

#include "storage/safesave.h"

#include <QIODevice>
#include <QtEndian>
#include <vector>

namespace {

const char *const IndentLabels[] = {"(None)", "Tab", "1 Space", "2 Spaces", "3 Spaces", "4 Spaces", "5 Spaces"};
const char *const IndentUnits[] = {"", "\t", " ", "  ", "   ", "    ", "     "};
const char *const Separators[] = {":", "\\", "/", ",", "|", "-"};

// The one writer of the text exports: writes FF FE for Unicode, then each
// piece of text as soon as it is ready, into the safe save's device.
class TextWriter {
public:
    TextWriter(QIODevice &out, const TextExport::Options &options)
        : m_file(out), m_unicode(options.unicode),
          m_codePage(options.unicode ? CodePage::defaultName() : options.codePage)
    {
        m_ok = m_codePage.isValid();
        if (m_ok && m_unicode)
            m_ok = m_file.write("\xff\xfe", 2) == 2;
    }

    bool write(QStringView text)
    {
        if (!m_ok)
            return false;
        QByteArray bytes;
        if (m_unicode) {
            bytes.resize(2 * text.size());
            qToLittleEndian<quint16>(text.data(), text.size(), bytes.data());
        } else {
            bytes = m_codePage.exportBytes(text);
        }
        m_ok = m_file.write(bytes) == bytes.size();
        return m_ok;
    }
    bool line(const QString &text) { return write(text + QLatin1String("\r\n")); }
    bool ok() const { return m_ok; }

private:
    QIODevice &m_file;
    bool m_unicode;
    CodePage m_codePage;
    bool m_ok = false;
};

// The path lines of the notes and links exports. One growing text and the
// length it had at each depth, so a deep tree costs no more than its lines.
class PathLines {
public:
    PathLines(const TreeNode *root, const QString &separator) : m_separator(separator)
    {
        m_prefix = root->name() + separator;
        m_lengths.push_back(m_prefix.size());
    }
    /// The line of an Item at that depth; prepares the prefix of its children.
    QString line(const Item *item, int depth)
    {
        m_prefix.truncate(m_lengths[size_t(depth - 1)]);
        m_lengths.resize(size_t(depth));
        m_prefix += item->name();
        const QString line = m_prefix;
        m_prefix += m_separator;
        m_lengths.push_back(m_prefix.size());
        return line;
    }

private:
    QString m_separator;
    QString m_prefix;
    std::vector<qsizetype> m_lengths;
};

} // namespace

QStringList TextExport::indentLabels()
{
    QStringList labels;
    for (const char *label : IndentLabels)
        labels << QLatin1StringView(label);
    return labels;
}

QString TextExport::indentUnit(int index)
{
    return index >= 0 && index < int(std::size(IndentUnits)) ? QLatin1StringView(IndentUnits[index]) : QString();
}

QStringList TextExport::separators()
{
    QStringList list;
    for (const char *separator : Separators)
        list << QLatin1StringView(separator);
    return list;
}

QString TextExport::separator(int index)
{
    return index >= 0 && index < int(std::size(Separators)) ? QLatin1StringView(Separators[index])
                                                            : QLatin1StringView(Separators[0]);
}

bool TextExport::exportOutline(const QString &path, const QString &rootName, const RowSource &rows,
                               const Options &options, QString *error)
{
    return write(path, options, error, [&](QIODevice &out) {
        TextWriter writer(out, options);
        const QString unit = indentUnit(options.indent);
        writer.line(rootName);
        int depth = 0;
        QString name;
        while (writer.ok() && rows(&depth, &name))
            writer.line(unit.repeated(depth) + name);
        return writer.ok();
    });
}

bool TextExport::write(const QString &path, const Options &options, QString *error,
                       const std::function<bool(QIODevice &)> &content)
{
    if (!CodePage(options.unicode ? CodePage::defaultName() : options.codePage).isValid()) {
        if (error)
            *error = QStringLiteral("%1: the code page '%2' is not known").arg(path, options.codePage);
        return false;
    }
    return SafeSave::write(path, content, error, SafeSave::Options{options.source});
}

bool TextExport::exportView(const QString &path, const TreeNode *root, const Options &options, QString *error)
{
    TreeWalker walker(root);
    return exportOutline(
        path, root->name(),
        [&walker](int *depth, QString *name) {
            const Item *item = walker.next();
            if (!item)
                return false;
            *depth = walker.depth();
            *name = item->name();
            return true;
        },
        options, error);
}

bool TextExport::exportView(const QString &path, const GroupView &view, const Options &options, QString *error)
{
    size_t heading = 0;
    size_t item = 0; // 0: the heading's own row, then its items from 1
    const auto &headings = view.headings();
    return exportOutline(
        path, view.rootName(),
        [&](int *depth, QString *name) {
            while (heading < headings.size()) {
                const GroupHeading *h = headings[heading];
                if (item == 0) {
                    ++item;
                    *depth = 1;
                    *name = h->text();
                    return true;
                }
                if (item <= h->items().size()) {
                    *depth = 2;
                    *name = h->items()[item - 1]->name();
                    ++item;
                    return true;
                }
                ++heading;
                item = 0;
            }
            return false;
        },
        options, error);
}

bool TextExport::exportView(const QString &path, const Document &document, const Options &options, QString *error)
{
    if (document.viewMode < GroupView::ByCategory || document.viewMode > GroupView::ByPercentComplete)
        return exportView(path, document.root(), options, error);
    const GroupView view(document, document.viewMode);
    return exportView(path, view, options, error);
}

bool TextExport::exportNotes(const QString &path, const TreeNode *root, const Options &options, QString *error)
{
    return write(path, options, error, [&](QIODevice &out) {
        TextWriter writer(out, options);
        PathLines paths(root, separator(options.separator));
        TreeWalker walker(root);
        while (writer.ok()) {
            const Item *item = walker.next();
            if (!item)
                break;
            writer.line(paths.line(item, walker.depth()));
            if (item->noteSize() > 0)
                writer.write(NoteText::plainText(item->note(), options.noteType));
            writer.write(u"\r\n");
        }
        return writer.ok();
    });
}

bool TextExport::exportLinks(const QString &path, const TreeNode *root, const Options &options, QString *error)
{
    return write(path, options, error, [&](QIODevice &out) {
    TextWriter writer(out, options);
    PathLines paths(root, separator(options.separator));
    const LinkTargets targets(root);
    TreeWalker walker(root);
    while (writer.ok()) {
        const Item *item = walker.next();
        if (!item)
            break;
        writer.line(paths.line(item, walker.depth()));
        const QStringList links = item->links();
        if (links.isEmpty())
            writer.line(QString::fromLatin1(Messages::NoLinks));
        for (const QString &link : links) {
            if (!Item::isItemLink(link)) {
                writer.line(link);
                continue;
            }
            if (const Item *target = targets.target(link))
                writer.line(target->name());
        }
        writer.write(u"\r\n");
    }
    return writer.ok();
    });
}
