#pragma once

#include "model/item.h"

#include <QString>

/// A named, reusable set of item attributes and a note, kept in the template
/// file rather than in a document. A template never holds links.
class Template : public Item {
public:
    /// The icon a template's item part starts with.
    static constexpr quint16 DefaultImage = 826;
    static constexpr int MaxNameLength = 32;

    /// An empty template: icon 826, no name, note type 1 (rich ink).
    Template();
    /// A template for documents of noteType, as the name dialog makes it.
    explicit Template(quint16 noteType);

    /// The name shown in menus, 1 to 32 characters.
    const QString &templateName() const { return m_templateName; }
    void setTemplateName(const QString &name) { m_templateName = name; }
    /// The NoteType of the template's note: it is offered only to documents
    /// of that type.
    quint16 templateNoteType() const { return m_templateNoteType; }
    void setTemplateNoteType(quint16 type) { m_templateNoteType = type; }

    /// A copy: the item part as item cloning copies it (with a creation date
    /// of now), the template name and note type.
    Template *clone() const override;

    /// Copies the template's attributes into an item being created or
    /// edited: name, icon, priority, category, status type, automatic flag,
    /// progress (rolled up when the item is in a tree), colour, italic, show
    /// icon, due date, task time and its unit, reminder time and note. The
    /// item keeps its own links, creation date, children and child order.
    void applyTo(Item *item) const;

    /// The message for a name the dialog cannot accept ("Please enter a
    /// name."), or empty when the name is good.
    static QString nameError(const QString &name);

private:
    QString m_templateName;
    quint16 m_templateNoteType = 1;
};
