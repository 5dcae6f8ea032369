#include "shell/document/itemmenu.h"

#include "model/progress.h"
#include "rows/colourtable.h"

#include <QGridLayout>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>

namespace {

QAction *addEntry(QMenu *menu, QAction *command)
{
    auto *entry = new QAction(command->icon(), command->text(), menu);
    entry->setObjectName(command->objectName());
    entry->setToolTip(command->toolTip());
    entry->setEnabled(command->isEnabled());
    entry->setCheckable(command->isCheckable());
    entry->setChecked(command->isChecked());
    QObject::connect(entry, &QAction::triggered, command, &QAction::trigger, Qt::QueuedConnection);
    menu->addAction(entry);
    return entry;
}

QMenu *addSubmenu(QMenu *menu, const QString &title, const QString &name)
{
    auto *sub = new QMenu(title, menu);
    sub->setObjectName(name);
    menu->addMenu(sub);
    return sub;
}

/// Greys a submenu none of whose entries is available.
void greyWhenEmpty(QMenu *sub, const QList<QAction *> &entries)
{
    bool any = false;
    for (const QAction *entry : entries)
        any = any || entry->isEnabled();
    sub->menuAction()->setEnabled(any);
}

/// Lays the entries out as a grid of buttons inside the menu, filled column
/// by column with rows entries each. The entries stay children of the menu.
QList<QAction *> addGrid(QMenu *menu, const QList<QAction *> &commands, int rows, QSize buttonSize)
{
    auto *holder = new QWidget(menu);
    auto *grid = new QGridLayout(holder);
    grid->setContentsMargins(4, 4, 4, 4);
    grid->setSpacing(2);
    QList<QAction *> entries;
    for (int i = 0; i < commands.size(); ++i) {
        QAction *entry = addEntry(menu, commands[i]);
        menu->removeAction(entry);
        entries.append(entry);
        auto *button = new QToolButton(holder);
        button->setDefaultAction(entry);
        button->setAutoRaise(true);
        button->setFixedSize(buttonSize);
        button->setIconSize(buttonSize - QSize(8, 8));
        button->setToolButtonStyle(entry->icon().isNull() ? Qt::ToolButtonTextOnly : Qt::ToolButtonIconOnly);
        grid->addWidget(button, i % rows, i / rows);
        QObject::connect(entry, &QAction::triggered, menu, [menu] {
            // Close the whole chain of menus, as a plain entry would.
            for (QWidget *w = menu; w; w = qobject_cast<QMenu *>(w->parentWidget()))
                w->close();
        });
    }
    auto *widgetAction = new QWidgetAction(menu);
    widgetAction->setDefaultWidget(holder);
    menu->addAction(widgetAction);
    return entries;
}

} // namespace

QMenu *ItemMenu::build(QWidget *parent, const CommandLookup &command)
{
    auto *menu = new QMenu(parent);
    menu->setObjectName(QStringLiteral("itemMenu"));
    auto entry = [&command](QMenu *into, const char *name) {
        return addEntry(into, command(QString::fromLatin1(name)));
    };
    auto commands = [&command](const QString &pattern, int first, int last) {
        QList<QAction *> list;
        for (int i = first; i <= last; ++i)
            list.append(command(pattern.arg(i)));
        return list;
    };

    entry(menu, "actionRename");
    QMenu *priority = addSubmenu(menu, QStringLiteral("Priority"), QStringLiteral("menuPriority"));
    // Twenty entries in two columns of ten.
    greyWhenEmpty(priority, addGrid(priority, commands(QStringLiteral("actionPriority%1"), 1, 20), 10, QSize(36, 24)));
    entry(menu, "actionChangeIcon");
    QMenu *colour = addSubmenu(menu, QStringLiteral("Colour"), QStringLiteral("menuColour"));
    greyWhenEmpty(colour, addGrid(colour, commands(QStringLiteral("actionColour%1"), 0, ColourTable::Count - 1), 9,
                                  QSize(40, 26)));

    QMenu *set = addSubmenu(menu, QStringLiteral("Set"), QStringLiteral("menuSet"));
    QList<QAction *> setEntries = {entry(set, "actionShowIcon"), entry(set, "actionItalicStyle")};
    set->addSeparator();
    for (const char *name : {"actionNoStatus", "actionCheckBox", "actionProgressBar"})
        setEntries.append(entry(set, name));
    greyWhenEmpty(set, setEntries);

    menu->addSeparator();
    entry(menu, "actionApplyAttributes");
    QMenu *order = addSubmenu(menu, QStringLiteral("Order Children By"), QStringLiteral("menuOrder"));
    QList<QAction *> orderEntries;
    for (const char *name :
         {"actionOrderByName", "actionOrderByPriority", "actionOrderByCategory", "actionOrderByPercent",
          "actionOrderByTaskDueDate", "actionOrderByCreationDate", "actionOrderManual"})
        orderEntries.append(entry(order, name));
    order->addSeparator();
    orderEntries.append(entry(order, "actionAscending"));
    orderEntries.append(entry(order, "actionDescending"));
    greyWhenEmpty(order, orderEntries);

    QMenu *create = addSubmenu(menu, QStringLiteral("Create"), QStringLiteral("menuCreate"));
    greyWhenEmpty(create, {entry(create, "actionCreateCopy"), entry(create, "actionCreateTask"),
                           entry(create, "actionCreateAppointment")});

    menu->addSeparator();
    entry(menu, "actionMarkMove");
    entry(menu, "actionMarkCopy");
    entry(menu, "actionPaste");
    menu->addSeparator();
    entry(menu, "actionDeleteItem");
    menu->addSeparator();
    entry(menu, "actionUndo");
    entry(menu, "actionRedo");
    return menu;
}

QMenu *ItemMenu::buildPresets(QWidget *parent)
{
    auto *menu = new QMenu(parent);
    menu->setObjectName(QStringLiteral("presetMenu"));
    for (quint16 value : Progress::Presets) {
        auto *action = new QAction(QStringLiteral("%1%").arg(value), menu);
        action->setObjectName(QStringLiteral("preset%1").arg(value));
        action->setData(int(value));
        menu->addAction(action);
    }
    return menu;
}
