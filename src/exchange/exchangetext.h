#pragma once

#include <QString>

class Item;

/// Small text rules that the OPML and Markdown exchanges share.
namespace ExchangeText {

/// The text with every line break (CR LF, CR or LF) made one LF.
QString unixLines(const QString &text);

/// The text without the characters an XML 1.0 document cannot carry:
/// control characters other than tab, LF and CR, unpaired surrogates, and
/// U+FFFE and U+FFFF. Returns the text itself when it is clean.
QString xmlSafe(const QString &text);

/// The note of an Item as plain text with LF line ends.
QString noteText(const Item &item, quint16 noteType);

/// The first link of an Item that names something outside the document
/// (an item link cannot leave it); empty when it has none.
QString firstOuterLink(const Item &item);

} // namespace ExchangeText
