#include "model/links.h"

#include "model/document.h"

#include <QDir>

namespace Links {

Kind kindOf(const QString &link)
{
    if (Item::isItemLink(link))
        return Kind::ItemLink;
    if (link.contains(QLatin1String("://")) || link.contains(QLatin1String("mailto:")))
        return Kind::Url;
    if (link.contains(QLatin1String("ph:")))
        return Kind::Phone;
    return Kind::File;
}

Page fill(const Document &document, const Item &item)
{
    Page page;
    for (const QString &link : item.links()) {
        const Kind kind = kindOf(link);
        if (kind == Kind::ItemLink) {
            if (Item *target = document.linkTarget(link))
                page.rows.append(itemRow(target));
            else
                ++page.dropped;
        } else {
            // A phone row shows what follows the first three characters,
            // wherever "ph:" stood.
            page.rows.append({kind == Kind::Phone ? link.mid(3) : link, kind, nullptr});
        }
    }
    return page;
}

QStringList store(const QList<Row> &rows)
{
    QStringList links;
    for (const Row &row : rows) {
        if (row.target)
            links.append(row.target->linkText());
        else if (row.kind == Kind::Phone)
            links.append(QLatin1String("ph:") + row.text);
        else
            links.append(row.text);
    }
    return links;
}

Row itemRow(Item *target)
{
    return {target->name(), Kind::ItemLink, target};
}

Row urlRow(const QString &text)
{
    return {text, Kind::Url, nullptr};
}

Row phoneRow(const QString &number)
{
    return {number, Kind::Phone, nullptr};
}

Row fileRow(const QString &path, const QString &documentsFolder)
{
    const QString folder = QDir::cleanPath(documentsFolder) + QLatin1Char('/');
    const QString clean = QDir::cleanPath(path);
    if (!documentsFolder.isEmpty() && clean.startsWith(folder))
        return {clean.mid(folder.size()), Kind::File, nullptr};
    return {path, Kind::File, nullptr};
}

QUrl target(const QString &link, const QString &documentsFolder)
{
    switch (kindOf(link)) {
    case Kind::ItemLink:
        return {};
    case Kind::Url:
        return QUrl::fromUserInput(link);
    case Kind::Phone:
        return QUrl(QLatin1String("tel:") + link.mid(3).trimmed());
    case Kind::File:
        break;
    }
    const QString path = QDir::isAbsolutePath(link) ? link : documentsFolder + QLatin1Char('/') + link;
    return QUrl::fromLocalFile(path);
}

} // namespace Links
