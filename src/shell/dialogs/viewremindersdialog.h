#pragma once

#include <QDialog>

class Item;
class QPushButton;
class QTreeWidget;
class ReminderService;

/// The list of the document's pending reminders: name, reminder time and due
/// date, in the order of the reminder list. "Go To" (or a double click)
/// closes it with the chosen item for the main list to select; "Dismiss"
/// ends the chosen reminder, "Dismiss All" every listed one.
class ViewRemindersDialog : public QDialog {
    Q_OBJECT
public:
    explicit ViewRemindersDialog(ReminderService &service, QWidget *parent = nullptr);

    /// The item chosen by "Go To", or null.
    Item *chosen() const { return m_chosen; }
    QTreeWidget *list() const { return m_list; }

private:
    void fill();
    Item *selected() const;
    void goTo();
    void dismissSelected();
    void dismissEvery();

    ReminderService &m_service;
    QTreeWidget *m_list = nullptr;
    QPushButton *m_goTo = nullptr;
    QPushButton *m_dismiss = nullptr;
    QPushButton *m_dismissAll = nullptr;
    Item *m_chosen = nullptr;
};
