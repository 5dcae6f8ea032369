#pragma once

#include "integration/calendarobject.h"
#include "model/editing.h"
#include "shell/commands/commandgroup.h"

class Item;
class ItemHost;
class QMenu;
class QPoint;
class TemplateCommands;
class TreeNode;

/// The commands on the selected item of a list, for the main view and for a
/// branch view alike: the item menu (rename, priority, icon, colour, set,
/// apply attributes, order, create, move and copy marks, paste, delete), the
/// move menu, the item properties with their note and links pages, and the
/// branch view. A branch view greys those that would reach outside it.
class ItemCommands : public CommandGroup {
    Q_OBJECT
public:
    ItemCommands(ItemHost *host, CommandHost *window, TemplateCommands *templates, QObject *parent);

    /// Opens the item menu of a row at a global position.
    void showItemMenu(int row, const QPoint &globalPos);
    /// The item menu for the current row, built from the actions.
    QMenu *buildItemMenu(QWidget *parent);

private:
    enum class RowKind { None, Title, Item };
    RowKind rowKind() const;
    TreeNode *currentNode() const;
    Item *currentItem() const;
    bool grouped() const;
    bool inMainView() const;
    bool orderEnabled() const;
    bool headingOrder() const;
    quint16 orderKey() const;
    bool orderAscending() const;

    void addItemMenuCommands();
    void addViewCommands();
    void addUndoCommands();
    void undoOrRedo(bool undo);
    void onItem(const char *name, const QString &text, std::function<void(Item *)> run,
                std::function<bool(const Item *)> checked = {});
    void setPriority(Item *item, quint16 priority);
    void changeIcon(Item *item);
    void orderChildren(quint16 key);
    void setDirection(bool ascending);
    void createCopy(Item *item);
    void paste();
    void deleteCurrent();
    void moveCurrent(Editing::Move move);
    void applyAttributes();
    void editItem(int page);
    void branchView();
    /// "Task..." and "Appointment...": objects in the calendar store for the
    /// item or its direct children; the document is not changed.
    void createInCalendar(Item *item, CalendarObject::Kind kind);
    /// Says why the calendar cannot be used and offers its options page.
    void offerCalendarOptions(const QString &reason);

    ItemHost *m_list;
    TemplateCommands *m_templates;
};
