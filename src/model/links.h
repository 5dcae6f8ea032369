#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

class Document;
class Item;

/// An item's links: item links ("!" + handle), URLs, phone numbers ("ph:")
/// and files (absolute, or relative to the documents folder), and how the
/// Links page reads, stores back, adds and follows them.
namespace Links {

enum class Kind { ItemLink, Url, Phone, File };

/// The kind of a stored link, tested in this order: "!" first; "://" or
/// "mailto:" anywhere; "ph:" anywhere; anything else is a file.
Kind kindOf(const QString &link);

/// One row of the Links page.
struct Row {
    QString text;           ///< what the row shows
    Kind kind = Kind::File;
    Item *target = nullptr; ///< the linked Item of an item-link row
};

struct Page {
    QList<Row> rows;
    int dropped = 0; ///< item links whose target no longer exists
};

/// The rows for an item's links: item links show the target's name and keep
/// the target; a link to an Item that is not live in the document gives no
/// row and is counted. Phone rows show the text after the first three
/// characters.
Page fill(const Document &document, const Item &item);
/// The link texts for the rows, in row order: item rows as "!" + handle,
/// phone rows as "ph:" + shown text, others as shown.
QStringList store(const QList<Row> &rows);

Row itemRow(Item *target);
Row urlRow(const QString &text);
Row phoneRow(const QString &number);
/// A file row for a chosen path: stored relative to the documents folder when
/// the path lies inside it, so the link survives the folder moving.
Row fileRow(const QString &path, const QString &documentsFolder);

/// Where following a link leads (web, mailto:, tel: or a local file); an
/// invalid URL for item links, which the view follows itself.
QUrl target(const QString &link, const QString &documentsFolder);

} // namespace Links
