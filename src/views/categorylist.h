#pragma once

#include <QStringList>

class Document;

/// The categories offered wherever a category is picked.
namespace CategoryList {

/// The document's categories in order, then, when the calendar store's
/// categories are in use, every store category that is not equal to a
/// document category. Equality is the locale's comparison, case-sensitive:
/// "Work" from the store is offered beside the document's "work".
QStringList fill(const Document &document, bool useStoreCategories, const QStringList &storeCategories);

} // namespace CategoryList
