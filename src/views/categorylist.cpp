#include "views/categorylist.h"

#include "model/document.h"
#include "platform/collation.h"

#include <algorithm>

namespace CategoryList {

QStringList fill(const Document &document, bool useStoreCategories, const QStringList &storeCategories)
{
    QStringList list = document.categories;
    if (!useStoreCategories)
        return list;
    const Collation &collation = Collation::instance();
    for (const QString &name : storeCategories) {
        const bool known = std::any_of(document.categories.begin(), document.categories.end(),
                                       [&](const QString &own) { return collation.equal(own, name); });
        if (!known)
            list.append(name);
    }
    return list;
}

} // namespace CategoryList
