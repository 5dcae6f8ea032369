#include "storage/documentwriter.h"

#include "model/document.h"
#include "model/item.h"
#include "model/treewalker.h"
#include "storage/bytewriter.h"

#include <QHash>
#include <QSet>
#include <vector>

namespace {

/// Numbers Items as the writer meets them. The current Item and item link
/// targets met before their own entry get theirs early, so the numbers are
/// unique in the file but not in file order.
class Numbering {
public:
    /// Link targets must be Items of scope (the document's whole tree), so a
    /// target outside a written branch still gets a number while one removed
    /// from the tree, or of another document, is written as a dead link.
    explicit Numbering(const TreeNode *scope) { m_live.insert(scope); }

    /// The current Item is numbered first, before anything is written.
    quint32 numberFirst(const Item *item)
    {
        m_first = item;
        return numberOf(item);
    }

    quint32 numberOf(const Item *item)
    {
        if (item == m_first && m_firstNumber)
            return m_firstNumber;
        if (item == m_first)
            return m_firstNumber = m_next++;
        // Only an Item that has a handle can be named by a link, so only such
        // Items need remembering; the rest take the next number.
        if (!item->hasHandle())
            return m_next++;
        auto found = m_numbers.find(item);
        if (found == m_numbers.end())
            found = m_numbers.insert(item, m_next++);
        return *found;
    }
    QString fileLink(const QString &link)
    {
        if (!Item::isItemLink(link))
            return link;
        const Item *target = Item::fromHandle(Item::handleOfLink(link));
        if (!target || !isLive(target))
            return QStringLiteral("!0");
        return QLatin1Char('!') + QString::number(numberOf(target));
    }

private:
    // Climbs from node until a node known to be in scope (live) or the top of
    // another tree (dead); what the climb passed is remembered either way, so
    // every node is climbed over at most once however deep the tree.
    bool isLive(const TreeNode *node)
    {
        std::vector<const TreeNode *> path;
        bool live = false;
        for (const TreeNode *up = node; up; up = up->parent()) {
            if (m_live.contains(up)) {
                live = true;
                break;
            }
            if (m_dead.contains(up))
                break;
            path.push_back(up);
        }
        for (const TreeNode *passed : path)
            (live ? m_live : m_dead).insert(passed);
        return live;
    }

    QHash<const Item *, quint32> m_numbers;
    const Item *m_first = nullptr;
    quint32 m_firstNumber = 0;
    QSet<const TreeNode *> m_live;
    QSet<const TreeNode *> m_dead;
    quint32 m_next = 1;
};

void writeNodeRecord(ByteWriter &out, const TreeNode *node)
{
    out.u16(node->image());
    out.string(node->name());
    out.u32(node->extraWord());
    out.u32(node->stdFlags());
    out.u16(node->sort());
}

void writeHeader(ByteWriter &out, const Document &doc, quint32 currentNumber)
{
    out.u32(DocumentWriter::Version);
    out.u16(quint16(doc.passwordHash.size()));
    out.block(doc.passwordHash.left(0xFFFF));
    out.u32(doc.docFlags());
    out.u16(doc.noteType);
    out.u16(doc.viewMode);
    out.u16(doc.viewOrder);
    out.u32(doc.hideByStatus);
    out.u32(currentNumber);
}

void writeEntries(ByteWriter &out, const TreeNode *top, Numbering *numbering)
{
    TreeWalker walker(top);
    while (const Item *item = walker.next()) {
        out.u32(quint32(walker.depth()));
        out.u32(numbering->numberOf(item));
        writeNodeRecord(out, item);
        out.string(item->taskTime());
        out.u16(item->colour());
        out.time(item->created());
        out.u16(item->progress());
        out.u16(item->statusType());
        out.u32(item->flags());
        out.string(item->category());
        out.u16(item->priority());
        out.time(item->dueDate());
        out.time(item->reminderTime());
        const QByteArray note = item->note();
        out.u32(quint32(note.size()));
        out.block(note);
        const QStringList links = item->links();
        out.u32(quint32(links.size()));
        for (const QString &link : links)
            out.string(numbering->fileLink(link));
        if (!out.ok())
            return;
    }
}

} // namespace

namespace DocumentWriter {

bool writeDocument(ByteWriter &out, const Document &doc)
{
    const TreeNode *root = doc.root();
    Numbering numbering(root);
    quint32 currentNumber = 0;
    const Item *current = doc.currentItem();
    const TreeNode *top = current;
    while (top && top->parent())
        top = top->parent();
    if (current && top == root) {
        currentNumber = numbering.numberFirst(current);
    }
    writeHeader(out, doc, currentNumber);
    writeNodeRecord(out, root);
    writeEntries(out, root, &numbering);
    return out.finish();
}

bool writeBranch(ByteWriter &out, const Document &doc, const TreeNode *node)
{
    Numbering numbering(doc.root());
    writeHeader(out, doc, 0);
    writeNodeRecord(out, node);
    writeEntries(out, node, &numbering);
    return out.finish();
}

} // namespace DocumentWriter
