#pragma once

#include "model/links.h"

#include <QWidget>

class Document;
class Item;
class Prompts;
class QAction;
class QPushButton;
class QTreeWidget;

/// The Links page of an item's properties: one row per link with the icon of
/// its kind, commands to add file links, URLs, phone numbers and item links,
/// to modify and delete a row or all rows, and following a row's link.
/// The rules of the rows (kinds, dead item links, file paths kept relative
/// to the documents folder, what is stored back) are the Links module's.
class LinksPage : public QWidget {
    Q_OBJECT
public:
    LinksPage(Document *document, Prompts *prompts, const QString &documentsFolder, QWidget *parent = nullptr);

    /// Fills the rows from the item's links. Item links whose target is gone
    /// get no row; their count is reported once here and they disappear from
    /// the item when the rows are stored. Returns that count.
    int fill(const Item &item);
    bool isFilled() const { return m_filled; }
    /// The link texts for the rows, in row order.
    QStringList links() const;
    const QList<Links::Row> &rows() const { return m_rows; }

    QTreeWidget *list() const { return m_list; }
    /// The page's commands: "actionAddFileLink", "actionAddUrl",
    /// "actionAddPhone", "actionAddItemLink", "actionModifyLink",
    /// "actionDeleteLink" and "actionDeleteAllLinks".
    QAction *action(const QString &name) const;

    void addFileLink();
    void addUrl();
    void addPhoneNumber();
    void addItemLink();
    void modifySelected();
    void deleteSelected();
    void deleteAll();
    /// Follows the link of a row: an item link asks for its target to be
    /// selected, any other kind goes to the desktop's application for it.
    void follow(int row);

Q_SIGNALS:
    /// An item link was followed: its target should become the current item.
    void itemLinkFollowed(Item *target);

private:
    QAction *makeAction(const QString &name, const QString &text, void (LinksPage::*slot)());
    bool askLinkText(const QString &prompt, QString *text);
    Item *pickItem(const Item *preset);
    void addRow(const Links::Row &row);
    void showRows(int select);
    void updateButtons();
    QIcon iconFor(const Links::Row &row) const;

    Document *m_document;
    Prompts *m_prompts;
    QString m_documentsFolder;
    QList<Links::Row> m_rows;
    bool m_filled = false;
    QTreeWidget *m_list = nullptr;
    QPushButton *m_modify = nullptr;
    QPushButton *m_delete = nullptr;
    QPushButton *m_deleteAll = nullptr;
    QList<QAction *> m_actions;
};
