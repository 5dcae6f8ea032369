#include "exchange/itemexport.h"

#include "model/document.h"
#include "model/editing.h"
#include "model/treewalker.h"
#include "platform/messages.h"
#include "storage/documentfile.h"

#include <unordered_map>
#include <unordered_set>

namespace {

const char *const ChoiceLabels[] = {"Completed items only", "Completed items only (with hierarchy)",
                                    "Currently selected item (with children)", "Selected item(s):"};

// Every Item of the tree in depth-first order with the index of its parent
// in the same list (-1 for a child of the root).
struct Flat {
    std::vector<Item *> items;
    std::vector<qsizetype> parent;
};

Flat flatten(const TreeNode *root)
{
    Flat flat;
    std::vector<qsizetype> open; // indices of the ancestors of the next item
    TreeWalker walker(root);
    while (Item *item = walker.next()) {
        open.resize(size_t(walker.depth() - 1));
        flat.parent.push_back(open.empty() ? -1 : open.back());
        open.push_back(qsizetype(flat.items.size()));
        flat.items.push_back(item);
    }
    return flat;
}

// A copy of an Item's own fields for the new document.
Item *copyOf(const Item *item)
{
    Item *copy = item->clone();
    copy->setCreated(item->created()); // a copy for export is the same item, not a new one
    return copy;
}

} // namespace

QString ItemExport::choiceLabel(int choice)
{
    return choice >= 0 && choice < int(std::size(ChoiceLabels)) ? QLatin1StringView(ChoiceLabels[choice]) : QString();
}

QString ItemExport::message(int result, int kept)
{
    if (result < 0)
        return QString::fromLatin1(Messages::ItemExportFailed);
    if (result == 0)
        return QString::fromLatin1(Messages::NoItemsToExport);
    QString text = QString::fromLatin1(Messages::ItemsExported).replace(QLatin1String("%d"), QString::number(result));
    if (kept > 0)
        text += QLatin1Char(' ') + QString::fromLatin1(Messages::ExportedItemsKept).arg(kept);
    return text;
}

int ItemExport::exportItems(Document &document, Choice choice, bool deleteAfter, const std::vector<Item *> &selection,
                            const QString &path, QString *error, Report *report)
{
    if (report)
        *report = Report();
    TreeNode *root = document.root();
    if (!root)
        return 0;

    if (choice == CurrentBranch) {
        TreeNode *top = document.current();
        int count = top->isItem() ? 1 : 0;
        top->forEachDescendant([&count](Item *) { ++count; });
        if (count == 0)
            return 0;
        if (!DocumentFile::saveBranch(document, top, path, error))
            return Failed;
        if (deleteAfter) {
            if (Item *item = top->asItem()) {
                Editing::deleteItem(document, item, nullptr);
            } else {
                while (top->hasChildren())
                    Editing::deleteItem(document, top->child(top->childCount() - 1), nullptr);
            }
        }
        return count;
    }

    const Flat flat = flatten(root);
    const size_t n = flat.items.size();
    std::vector<char> chosen(n, 0);
    if (choice == SelectedItems) {
        const std::unordered_set<const Item *> picked(selection.begin(), selection.end());
        for (size_t i = 0; i < n; ++i)
            chosen[i] = picked.count(flat.items[i]) ? 1 : 0;
    } else {
        for (size_t i = 0; i < n; ++i)
            chosen[i] = flat.items[i]->isComplete() ? 1 : 0;
    }

    // What is written: the chosen items, and with the hierarchy their
    // ancestors. Children come after their parents, so one backward pass
    // marks every ancestor.
    std::vector<char> written = chosen;
    if (choice == CompletedWithHierarchy) {
        for (size_t i = n; i-- > 0;) {
            if (written[i] && flat.parent[i] >= 0)
                written[size_t(flat.parent[i])] = 1;
        }
    }

    Document out;
    out.noteType = document.noteType;
    out.passwordHash = document.passwordHash;
    out.setDocFlags(document.docFlags());
    out.viewMode = document.viewMode;
    out.viewOrder = document.viewOrder;
    out.hideByStatus = document.hideByStatus;
    TreeNode *outRoot = out.root();
    outRoot->setName(root->name());
    outRoot->setImage(root->image());
    outRoot->setSort(root->sort());
    outRoot->setExtraWord(root->extraWord());
    outRoot->setAscending(root->isAscending());

    // Each written item goes under the copy of its nearest written ancestor.
    std::vector<Item *> copies(n, nullptr);
    int count = 0;
    for (size_t i = 0; i < n; ++i) {
        if (!written[i])
            continue;
        qsizetype up = flat.parent[i];
        while (up >= 0 && !written[size_t(up)])
            up = flat.parent[size_t(up)];
        Item *copy = copyOf(flat.items[i]);
        (up >= 0 ? static_cast<TreeNode *>(copies[size_t(up)]) : outRoot)->appendChild(copy);
        copies[i] = copy;
        ++count;
    }
    if (count == 0)
        return 0;
    // Expanded only holds with children, so it is set once they are there.
    outRoot->setExpanded(root->isExpanded());
    for (size_t i = 0; i < n; ++i) {
        if (copies[i])
            copies[i]->setExpanded(flat.items[i]->isExpanded());
    }
    // Links between copied items lead to the copies.
    std::unordered_map<const Item *, Item *> copyOfOriginal;
    for (size_t i = 0; i < n; ++i) {
        if (copies[i])
            copyOfOriginal.emplace(flat.items[i], copies[i]);
    }
    for (size_t i = 0; i < n; ++i) {
        if (!copies[i] || copies[i]->links().isEmpty())
            continue;
        QStringList links = copies[i]->links();
        for (QString &link : links) {
            const auto target = copyOfOriginal.find(Item::fromHandle(Item::handleOfLink(link)));
            if (target != copyOfOriginal.end())
                link = target->second->linkText();
        }
        copies[i]->setLinks(links);
    }

    if (!DocumentFile::save(out, path, error, document.path))
        return Failed;

    if (deleteAfter) {
        // A chosen item goes when its whole branch was written: computed
        // from the leaves up, then the topmost such items are deleted.
        std::vector<char> wholeBranch(chosen);
        for (size_t i = n; i-- > 0;) {
            if (!wholeBranch[i] && flat.parent[i] >= 0)
                wholeBranch[size_t(flat.parent[i])] = 0;
        }
        std::vector<Item *> doomed;
        for (size_t i = 0; i < n; ++i) {
            if (wholeBranch[i] && (flat.parent[i] < 0 || !wholeBranch[size_t(flat.parent[i])]))
                doomed.push_back(flat.items[i]);
        }
        for (Item *item : doomed)
            Editing::deleteItem(document, item, nullptr);
        if (report) {
            report->kept = 0;
            for (size_t i = 0; i < n; ++i)
                report->kept += chosen[i] && !wholeBranch[i];
        }
    }
    return count;
}
