#include "storage/documentfile.h"

#include "notes/noteconverter.h"
#include "model/document.h"
#include "platform/messages.h"
#include "storage/bytereader.h"
#include "storage/bytewriter.h"
#include "storage/documentwriter.h"
#include "storage/password.h"
#include "storage/safesave.h"

#include <QFile>
#include <QHash>
#include <QStandardPaths>
#include <QThread>
#include <memory>
#include <new>
#include <vector>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <sys/file.h>
#endif

namespace {

// An Image of 0xFFFF in a file stands for the icon 826.
constexpr quint16 ImageUnset = 0xFFFF;
constexpr quint16 ImageUnsetValue = 826;
constexpr quint16 ColourUnset = 0xFFFF;
constexpr quint32 MaxTaskTimeUnits = 7;
// Version 410 stores fixed-size records.
constexpr qint64 LegacyRecordSize = 392;
constexpr int LegacyLinkUnits = 260;
// The smallest item entry (version 500, every string empty).
constexpr qint64 MinEntrySize = 84;
constexpr quint16 LegacyImageBase = 796;

QString g_legacyFolder;
bool g_legacyFolderSet = false;

QString legacyLink(const QString &link)
{
    if (Item::isItemLink(link))
        return link;
    // Version 410 files name the documents folder "\My Documents"; a link
    // into our own documents folder is treated the same. The link keeps what
    // follows the folder, which is how file links inside it are stored today.
    static const QLatin1String legacyFolder("\\My Documents");
    if (link.startsWith(legacyFolder, Qt::CaseInsensitive)) {
        const qsizetype slash = link.indexOf(QLatin1Char('\\'), 1);
        return slash < 0 ? link : link.mid(slash + 1);
    }
    const QString folder = DocumentFile::legacyDocumentsFolder();
    if (!folder.isEmpty() && link.size() > folder.size() && link.startsWith(folder) &&
        (link[folder.size()] == QLatin1Char('/') || link[folder.size()] == QLatin1Char('\\')))
        return link.mid(folder.size() + 1);
    return link;
}

/// The number an item link carries in a file, or -1 when the text after "!"
/// is not a plain decimal number.
qint64 linkNumber(const QString &link)
{
    if (link.size() < 2 || link.size() > 11)
        return -1;
    qint64 number = 0;
    for (qsizetype i = 1; i < link.size(); ++i) {
        const char16_t c = link[i].unicode();
        if (c < u'0' || c > u'9')
            return -1;
        number = number * 10 + (c - u'0');
    }
    return number <= 0xFFFFFFFFll ? number : -1;
}

/// Places Items by their Depth as they are read, remembers what link repair
/// and the Expanded flags need, and finishes the tree at the end.
class TreeBuilder {
public:
    /// maxEntries bounds how many entries the bytes left can hold.
    TreeBuilder(TreeNode *root, bool legacy, qint64 maxEntries) : m_root(root), m_parent(root), m_legacy(legacy)
    {
        // Reserved, not touched: pages never written cost no memory, and
        // the list never has to be copied while it grows.
        m_numbers.reserve(size_t(qBound<qint64>(0, maxEntries, qint64(1) << 26)));
    }

    /// Appends item under the parent its depth names; false (item not placed)
    /// when the depth is impossible.
    bool place(Item *item, quint32 depth, quint32 number)
    {
        if (depth > m_depth) {
            // A jump of two or more levels is damage; the legacy format
            // tolerated it and made the Item a child of the last one read.
            if (!m_last || (!m_legacy && depth != m_depth + 1))
                return false;
            m_parent = m_last;
        } else {
            for (quint32 up = m_depth - depth; up > 0; --up) {
                if (!m_parent->parent()) {
                    // After a tolerated jump the legacy depths run ahead of
                    // the tree; climbing stops at the root there.
                    if (!m_legacy)
                        return false;
                    break;
                }
                m_parent = m_parent->parent();
            }
        }
        m_depth = depth;
        m_parent->appendChild(item);
        m_last = item;
        m_numbers.push_back(number);
        return true;
    }

    // Expanded is applied once the children are in place: a node is only
    // ever expanded while it has children.
    void expandLater(TreeNode *node) { m_expanded.push_back(node); }
    void repairLater(Item *item) { m_withItemLinks.push_back(item); }

    /// Applies Expanded, rewrites item links from record numbers to handles
    /// (an absent number gives a dead link) and returns the Item that
    /// currentNumber names, or null for the root.
    Item *finish(qint32 currentNumber)
    {
        for (TreeNode *node : m_expanded)
            node->setExpanded(true);
        if (m_withItemLinks.empty() && currentNumber < 1)
            return nullptr;

        // Only the numbers that something refers to go into the map, so it
        // stays small however many Items there are.
        QHash<quint32, Item *> wanted;
        for (const Item *item : m_withItemLinks) {
            for (const QString &link : item->links()) {
                if (Item::isItemLink(link)) {
                    const qint64 number = linkNumber(link);
                    if (number >= 0)
                        wanted.insert(quint32(number), nullptr);
                }
            }
        }
        if (currentNumber >= 1)
            wanted.insert(quint32(currentNumber), nullptr);
        // Every Item goes in as the last one of the tree so far, so the
        // tree's depth-first order is the file's order and pairs the Items
        // with their numbers. In file order, a later equal number replaces an
        // earlier one.
        TreeWalker walker(m_root);
        for (const quint32 number : m_numbers) {
            Item *item = walker.next();
            const auto found = wanted.find(number);
            if (found != wanted.end())
                *found = item;
        }
        for (Item *item : m_withItemLinks) {
            QStringList links = item->links();
            for (QString &link : links) {
                if (!Item::isItemLink(link))
                    continue;
                const qint64 number = linkNumber(link);
                const Item *target = number >= 0 ? wanted.value(quint32(number)) : nullptr;
                link = target ? target->linkText() : QStringLiteral("!0");
            }
            item->setLinks(links);
        }
        return currentNumber >= 1 ? wanted.value(quint32(currentNumber)) : nullptr;
    }

private:
    TreeNode *m_root;
    TreeNode *m_parent;
    Item *m_last = nullptr;
    quint32 m_depth = 1;
    bool m_legacy;
    std::vector<quint32> m_numbers; // in file order
    std::vector<TreeNode *> m_expanded;
    std::vector<Item *> m_withItemLinks;
};

struct NodeRecord {
    quint16 image = 0;
    QString name;
    quint32 extraWord = 0;
    quint32 stdFlags = 0;
    quint16 sort = TreeNode::SortManual;
};

NodeRecord readNodeRecord(ByteReader &in, quint32 version)
{
    NodeRecord r;
    r.image = in.u16();
    if (r.image == ImageUnset)
        r.image = ImageUnsetValue;
    r.name = in.string();
    r.extraWord = in.u32();
    r.stdFlags = in.u32();
    r.sort = in.u16();
    // Version 500 numbered "Creation Date" where manual order now is.
    if (version == 500 && r.sort == TreeNode::SortCreationDate)
        r.sort = TreeNode::SortManual;
    return r;
}

void applyNodeRecord(const NodeRecord &r, TreeNode *node, TreeBuilder *builder)
{
    node->setImage(r.image);
    node->setName(r.name);
    node->setExtraWord(r.extraWord);
    node->setStdFlags(r.stdFlags);
    node->setSort(r.sort);
    if (r.stdFlags & 1)
        builder->expandLater(node);
}

/// Reads item entries to the end of the input. Categories are collected into
/// categoryOwner.
bool readEntries(ByteReader &in, quint32 version, Document *categoryOwner, TreeBuilder *builder)
{
    while (in.ok() && !in.atEnd()) {
        const quint32 depth = in.u32();
        const quint32 number = in.u32();
        const NodeRecord node = readNodeRecord(in, version);
        // A longer TaskTime is outside the format; refusing it keeps the
        // Item's 7-unit field exact.
        const QString taskTime = in.string(MaxTaskTimeUnits);
        quint16 colour = in.u16();
        if (colour == ColourUnset)
            colour = 0;
        const SystemTime created = in.time();
        const quint16 progress = in.u16();
        const quint16 statusType = in.u16();
        const quint32 flags = in.u32();
        const QString category = in.string();
        const quint16 priority = in.u16();
        const SystemTime dueDate = in.time();
        const SystemTime reminderTime = version == 551 ? in.time() : SystemTime();
        const qint32 noteSize = qint32(in.u32());
        const QByteArray note = noteSize > 0 ? in.block(noteSize) : QByteArray();
        const qint32 linkCount = qint32(in.u32());
        QStringList links;
        if (linkCount > 0) {
            // Every link takes at least its 4-byte count. The list is not
            // reserved ahead: it grows only with links actually read.
            if (qint64(linkCount) * 4 > in.bytesLeft())
                return false;
            for (qint32 i = 0; i < linkCount && in.ok(); ++i)
                links.append(in.string());
        }
        if (!in.ok())
            return false;

        auto item = std::make_unique<Item>(node.name, node.image, created);
        applyNodeRecord(node, item.get(), builder);
        if (!taskTime.isEmpty())
            item->setTaskTime(taskTime);
        item->setColour(colour);
        item->storeProgress(progress);
        item->setStatusType(statusType);
        item->setFlags(flags);
        item->setCategory(categoryOwner->collectCategory(category));
        item->setPriority(priority);
        item->setDueDate(dueDate);
        if (!reminderTime.isZero())
            item->setReminderTime(reminderTime);
        if (!note.isEmpty())
            item->setNote(note);
        bool hasItemLink = false;
        if (!links.isEmpty()) {
            for (const QString &link : std::as_const(links))
                hasItemLink = hasItemLink || Item::isItemLink(link);
            item->setLinks(links);
        }
        Item *placed = item.get();
        if (!builder->place(item.release(), depth, number)) {
            delete placed;
            return false;
        }
        if (hasItemLink)
            builder->repairLater(placed);
        in.forgetRead();
    }
    return in.ok();
}

DocumentFile::LoadResult readCurrent(ByteReader &in, quint32 version, Document *doc)
{
    quint32 docFlags = 0;
    if (version >= 550) {
        const quint16 hashLength = in.u16();
        doc->passwordHash = in.block(hashLength);
        docFlags = in.u32();
        doc->noteType = in.u16();
    } else {
        // Older files kept the password itself; only its digest is kept now.
        const QString password = in.string();
        docFlags = in.u32();
        doc->noteType = (docFlags & 0x100) ? Document::RichInk : Document::PlainText;
        doc->passwordHash = password.isEmpty() ? QByteArray() : Password::digest(password);
    }
    doc->setDocFlags(docFlags);
    doc->viewMode = in.u16();
    doc->viewOrder = in.u16();
    doc->hideByStatus = in.u32();
    const qint32 currentNumber = qint32(in.u32());
    if (!in.ok())
        return DocumentFile::Damaged;

    doc->setRoot(std::make_unique<TreeNode>());
    TreeNode *root = doc->root();
    TreeBuilder builder(root, false, in.bytesLeft() / MinEntrySize);
    const NodeRecord rootRecord = readNodeRecord(in, version);
    if (!in.ok())
        return DocumentFile::Damaged;
    applyNodeRecord(rootRecord, root, &builder);
    if (!readEntries(in, version, doc, &builder))
        return DocumentFile::Damaged;
    doc->setCurrent(builder.finish(currentNumber));
    return DocumentFile::Loaded;
}

DocumentFile::LoadResult readLegacy(ByteReader &in, Document *doc)
{
    const QString password = in.fixedString(16);
    const quint32 flags = in.u32();
    const quint32 viewMode = in.u32();
    const quint32 viewOrder = in.u32();
    const QString title = in.fixedString(96);
    if (!in.ok())
        return DocumentFile::Damaged;
    doc->passwordHash = password.isEmpty() ? QByteArray() : Password::digest(password);
    doc->hideCompleted = flags & (1u << 0);
    doc->showNoteWindow = !(flags & (1u << 1)); // the legacy bit is inverted
    doc->showDueDate = flags & (1u << 2);
    doc->viewAscending = flags & (1u << 4);
    doc->noteType = (flags & (1u << 9)) ? Document::PlainText : Document::RichInk;
    doc->showStatistics = flags & (1u << 10);
    doc->hideByStatus = ((flags >> 14) & 7u) << 4;
    doc->viewMode = quint16(viewMode);
    doc->viewOrder = quint16(viewOrder);

    doc->setRoot(std::make_unique<TreeNode>(title));
    TreeNode *root = doc->root();
    TreeBuilder builder(root, true, in.bytesLeft() / LegacyRecordSize);
    Item *current = nullptr;
    while (!in.atEnd()) {
        if (in.bytesLeft() < LegacyRecordSize)
            return DocumentFile::Damaged;
        const quint32 itemFlags = in.u32();
        const QString name = in.fixedString(96);
        const quint16 icon = in.u16();
        const quint16 priority = in.u16();
        const QString category = in.fixedString(64);
        const SystemTime dueDate = in.time();
        const QString taskTime = in.fixedString(8);
        const quint16 taskTimeUnit = in.u16();
        const quint16 colour = in.u16();
        const SystemTime created = in.time();
        const quint32 depth = in.u32();
        const quint32 number = in.u32();
        const quint32 progress = in.u32();
        const qint32 linkCount = qint32(in.u32());
        QStringList links;
        if (linkCount > 0) {
            if (qint64(linkCount) * LegacyLinkUnits * 2 > in.bytesLeft())
                return DocumentFile::Damaged;
            for (qint32 i = 0; i < linkCount && in.ok(); ++i)
                links.append(legacyLink(in.fixedString(LegacyLinkUnits)));
        }
        const qint32 noteSize = qint32(in.u32());
        const QByteArray note = noteSize > 0 ? in.block(noteSize) : QByteArray();
        if (!in.ok() || quint32(taskTime.size()) > MaxTaskTimeUnits)
            return DocumentFile::Damaged;

        // The record's values are taken as they are: the 0xFFFF rules of the
        // later versions do not apply to this layout.
        auto item = std::make_unique<Item>(name, quint16(icon + LegacyImageBase), created);
        if (itemFlags & (1u << 2))
            builder.expandLater(item.get());
        item->setPriority(quint16(priority + 1));
        item->setCategory(doc->collectCategory(category));
        item->setDueDate(dueDate);
        if (!taskTime.isEmpty())
            item->setTaskTime(taskTime);
        item->setTaskTimeType(taskTimeUnit ? quint16(taskTimeUnit + 1) : 0);
        item->setColour(colour);
        item->storeProgress((itemFlags & 1u) ? 100 : quint16(progress));
        const bool bit7 = itemFlags & (1u << 7);
        const bool bit8 = itemFlags & (1u << 8);
        item->setStatusType(bit7 && !bit8 ? Item::NoStatus : bit7 && bit8 ? Item::ProgressBar : Item::CheckBox);
        item->setAutoProgress(itemFlags & (1u << 9));
        bool hasItemLink = false;
        for (const QString &link : std::as_const(links))
            hasItemLink = hasItemLink || Item::isItemLink(link);
        if (!links.isEmpty())
            item->setLinks(links);
        if (!note.isEmpty())
            item->setNote(note);
        Item *placed = item.get();
        if (!builder.place(item.release(), depth, number)) {
            delete placed;
            return DocumentFile::Damaged;
        }
        if (hasItemLink)
            builder.repairLater(placed);
        if (itemFlags & (1u << 4))
            current = placed;
        in.forgetRead();
    }
    builder.finish(0);
    doc->setCurrent(current);
    return DocumentFile::Loaded;
}

DocumentFile::LoadResult loadFrom(ByteReader &in, Document *doc)
{
    const quint32 version = in.u32();
    if (!in.ok())
        return DocumentFile::Damaged;
    doc->version = version;
    switch (version) {
    case 410:
        return readLegacy(in, doc);
    case 500:
    case 501:
    case 550:
    case 551:
        return readCurrent(in, version, doc);
    default:
        return DocumentFile::UnsupportedVersion;
    }
}

DocumentFile::LoadResult openForReading(const QString &path, QFile *file)
{
    file->setFileName(path);
    if (!file->open(QIODevice::ReadOnly))
        return file->error() == QFileDevice::OpenError && !QFile::exists(path) ? DocumentFile::NotFound
                                                                               : DocumentFile::Damaged;
    return DocumentFile::Loaded;
}

} // namespace

DocumentFile::LoadResult DocumentFile::load(const QString &path, Document *document)
{
    QFile file;
    const LoadResult opened = openForReading(path, &file);
    if (opened != Loaded)
        return opened;
#ifdef Q_OS_UNIX
    // A file being rewritten in place holds an exclusive flock until it is
    // whole again; a reader waits for that, but not for ever.
    for (int tries = 0; tries < 100 && ::flock(file.handle(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
         ++tries)
        QThread::msleep(50);
#endif
    // Running out of memory ends the load like a damaged file, never the
    // program; the counts in the file are checked before anything is
    // allocated, so this takes a file that is large and whole.
    try {
        ByteReader in(&file);
        const LoadResult result = loadFrom(in, document);
        if (result == Loaded)
            document->path = path;
        return result;
    } catch (const std::bad_alloc &) {
        return Damaged;
    }
}

DocumentFile::LoadResult DocumentFile::loadFromBytes(const QByteArray &bytes, Document *document)
{
    try {
        ByteReader in(bytes);
        return loadFrom(in, document);
    } catch (const std::bad_alloc &) {
        return Damaged;
    }
}

QByteArray DocumentFile::toBytes(const Document &document)
{
    ByteWriter out;
    if (document.root())
        DocumentWriter::writeDocument(out, document);
    out.finish();
    return out.bytes();
}

bool DocumentFile::save(const Document &document, const QString &path, QString *error, const QString &source)
{
    if (!document.root())
        return true;
    const QString target = path.isEmpty() ? document.path : path;
    return SafeSave::write(
        target,
        [&document](QIODevice &device) {
            ByteWriter out(&device);
            return DocumentWriter::writeDocument(out, document);
        },
        error, SafeSave::Options{source});
}

QByteArray DocumentFile::branchToBytes(const Document &document, const TreeNode *node)
{
    ByteWriter out;
    DocumentWriter::writeBranch(out, document, node);
    return out.bytes();
}

bool DocumentFile::saveBranch(const Document &document, const TreeNode *node, const QString &path, QString *error)
{
    return SafeSave::write(
        path,
        [&document, node](QIODevice &device) {
            ByteWriter out(&device);
            return DocumentWriter::writeBranch(out, document, node);
        },
        error, SafeSave::Options{document.path});
}

DocumentFile::LoadResult DocumentFile::importInto(Document *document, TreeNode *target, const QString &path,
                                                  const PasswordPrompt &askPassword, const NoteConverter &convertNotes)
{
    try {
        return importFile(document, target, path, askPassword, convertNotes);
    } catch (const std::bad_alloc &) {
        return Damaged; // nothing joined the document: the items move in only at the end
    }
}

DocumentFile::LoadResult DocumentFile::importFile(Document *document, TreeNode *target, const QString &path,
                                                  const PasswordPrompt &askPassword, const NoteConverter &convertNotes)
{
    QFile file;
    if (openForReading(path, &file) != Loaded)
        return Damaged;
    ByteReader in(&file);
    const quint32 version = in.u32();
    if (!in.ok())
        return Damaged;
    if (version != DocumentWriter::Version)
        return UnsupportedVersion;

    const quint16 hashLength = in.u16();
    const QByteArray hash = in.block(hashLength);
    in.u32(); // DocFlags
    const quint16 noteType = in.u16();
    in.skip(8); // ViewMode, ViewOrder, HideByStatus
    in.u32();   // CurrentNumber
    TreeNode importedRoot;
    TreeBuilder builder(&importedRoot, false, in.bytesLeft() / MinEntrySize);
    const NodeRecord rootRecord = readNodeRecord(in, version);
    if (!in.ok())
        return Damaged;
    applyNodeRecord(rootRecord, &importedRoot, &builder);
    // Categories are collected apart and join the document only when the
    // import goes ahead, so a failed import changes nothing.
    Document scratch;
    scratch.categories = document->categories;
    if (!readEntries(in, version, &scratch, &builder))
        return Damaged;
    builder.finish(0);

    if (!hash.isEmpty() && (!askPassword || !askPassword(hash)))
        return Cancelled;
    if (noteType != document->noteType) {
        if (convertNotes)
            convertNotes(&importedRoot, noteType, document->noteType);
        else if (!::NoteConverter().convertAllNotes(&importedRoot, noteType, document->noteType))
            return Damaged; // notes of a type we do not know
    }
    for (qsizetype i = document->categories.size(); i < scratch.categories.size(); ++i)
        document->collectCategory(scratch.categories.at(i));
    const std::vector<Item *> imported = importedRoot.copyOfChildren();
    while (importedRoot.hasChildren())
        importedRoot.takeChild(importedRoot.childCount() - 1);
    for (Item *item : imported)
        target->appendChild(item);
    return Loaded;
}

QString DocumentFile::legacyDocumentsFolder()
{
    if (!g_legacyFolderSet)
        return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return g_legacyFolder;
}

void DocumentFile::setLegacyDocumentsFolder(const QString &folder)
{
    g_legacyFolder = folder;
    g_legacyFolderSet = true;
}

QString DocumentFile::loadMessage(LoadResult result, const QString &path)
{
    switch (result) {
    case Damaged:
        return QString::fromUtf8(Messages::LoadDamaged);
    case UnsupportedVersion:
        return QString::fromUtf8(Messages::LoadUnsupportedVersion);
    case NotFound:
        return QString::fromUtf8(Messages::LoadNotFound).arg(path);
    default:
        return QString();
    }
}

QString DocumentFile::importMessage(LoadResult result)
{
    switch (result) {
    case Damaged:
    case NotFound:
        return QString::fromUtf8(Messages::LoadDamaged);
    case UnsupportedVersion:
        return QString::fromUtf8(Messages::ImportUnsupportedVersion);
    default:
        return QString();
    }
}
