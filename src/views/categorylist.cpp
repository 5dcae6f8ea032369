#include "views/categorylist.h"

#include "model/document.h"
#include "platform/collation.h"

#include <QCollatorSortKey>
#include <set>

namespace CategoryList {

QStringList fill(const Document &document, bool useStoreCategories, const QStringList &storeCategories)
{
    QStringList list = document.categories;
    if (!useStoreCategories)
        return list;
    // The document's categories by sort key: each store category costs one
    // key and a logarithmic look-up, not a pass over the document's list.
    const Collation &collation = Collation::instance();
    const auto before = [](const QCollatorSortKey &a, const QCollatorSortKey &b) { return a.compare(b) < 0; };
    std::set<QCollatorSortKey, decltype(before)> own(before);
    for (const QString &category : document.categories)
        own.insert(collation.sortKey(category));
    for (const QString &name : storeCategories) {
        if (!own.count(collation.sortKey(name)))
            list.append(name);
    }
    return list;
}

} // namespace CategoryList
