#pragma once

#include "views/findcriteria.h"

#include <QHash>
#include <vector>

class Document;
class Item;
class TreeNode;

/// Runs a search over the note tree. Matching rules:
/// - name: the text occurs in the name; without case, both are lower-cased
///   one UTF-16 unit at a time first;
/// - category: equal by the locale comparison, always with case;
/// - due date: the item has one, and its day (time of day dropped) is less
///   than, equal to or greater than the chosen day;
/// - note phrase: the note's plain text contains the phrase (lower-cased
///   without case); an item without a note never matches;
/// - progress, priority, colour, italic, show icon: equal.
class Finder {
public:
    /// noteType is the document's NoteType, which says how to read notes.
    Finder(const FindCriteria &criteria, quint16 noteType);

    bool matches(const Item *item) const;

    /// Every match below the root, in depth-first order (the root itself is
    /// not tested), without the items the document's filters hide.
    static std::vector<Item *> search(const Document &document, const FindCriteria &criteria);

    /// Lower-cases one UTF-16 unit at a time, as the name and note searches do.
    static QString lowered(const QString &text);

private:
    bool nameMatches(const QString &name) const;
    bool categoryMatches(const QString &category) const;
    bool dueDateMatches(const Item *item) const;
    bool noteMatches(const Item *item) const;

    FindCriteria m_criteria;
    QString m_name;
    QString m_phrase;
    qint64 m_day = 0;
    quint16 m_noteType;
    // Most items repeat a few categories: each distinct text is compared once.
    mutable QHash<QString, bool> m_categoryResults;
    mutable QString m_buffer;
};
