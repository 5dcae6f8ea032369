#include "shell/document/itemmenu.h"

#include "model/item.h"
#include "model/progress.h"
#include "rows/colourtable.h"
#include "shell/commands/commandids.h"

#include <QActionGroup>
#include <QGridLayout>
#include <QMenu>
#include <QPainter>
#include <QToolButton>
#include <QWidgetAction>

namespace {

QAction *addCommand(QMenu *menu, const QString &text, int id, bool enabled)
{
    auto *action = new QAction(text, menu);
    action->setObjectName(QStringLiteral("action%1").arg(id));
    action->setData(id);
    action->setEnabled(enabled);
    menu->addAction(action);
    return action;
}

void mark(QAction *action, QActionGroup *group, bool checked)
{
    action->setCheckable(true);
    if (group)
        group->addAction(action);
    action->setChecked(checked);
}

QMenu *addSubmenu(QMenu *menu, const QString &title, const QString &name, bool enabled)
{
    auto *sub = new QMenu(title, menu);
    sub->setObjectName(name);
    menu->addMenu(sub);
    sub->menuAction()->setEnabled(enabled);
    return sub;
}

/// Lays the actions out as a grid of buttons inside the menu, filled column
/// by column with rows entries each. The actions stay children of the menu.
void addGrid(QMenu *menu, const QList<QAction *> &actions, int rows, QSize buttonSize)
{
    auto *holder = new QWidget(menu);
    auto *grid = new QGridLayout(holder);
    grid->setContentsMargins(4, 4, 4, 4);
    grid->setSpacing(2);
    for (int i = 0; i < actions.size(); ++i) {
        auto *button = new QToolButton(holder);
        button->setDefaultAction(actions[i]);
        button->setAutoRaise(true);
        button->setFixedSize(buttonSize);
        button->setIconSize(buttonSize - QSize(8, 8));
        button->setToolButtonStyle(actions[i]->icon().isNull() ? Qt::ToolButtonTextOnly : Qt::ToolButtonIconOnly);
        grid->addWidget(button, i % rows, i / rows);
        QObject::connect(actions[i], &QAction::triggered, menu, [menu] {
            // Close the whole chain of menus, as a plain entry would.
            for (QWidget *w = menu; w; w = qobject_cast<QMenu *>(w->parentWidget()))
                w->close();
        });
    }
    auto *widgetAction = new QWidgetAction(menu);
    widgetAction->setDefaultWidget(holder);
    menu->addAction(widgetAction);
}

QIcon swatch(int index, const QColor &defaultColour)
{
    QPixmap pm(28, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    const QColor c = index == 0 ? defaultColour : ColourTable::colour(index);
    p.setPen(QColor(0x70, 0x70, 0x70));
    p.setBrush(c);
    p.drawRect(0, 0, 27, 15);
    return QIcon(pm);
}

} // namespace

QMenu *ItemMenu::build(const State &s, QWidget *parent)
{
    using namespace CommandId;
    auto *menu = new QMenu(parent);
    menu->setObjectName(QStringLiteral("itemMenu"));
    const bool item = s.kind == RowKind::Item;
    const bool title = s.kind == RowKind::Title;
    const bool defaultView = !s.grouped;
    const Item *it = item && s.node ? s.node->asItem() : nullptr;
    const bool hasChildren = s.node && s.node->hasChildren();

    addCommand(menu, QStringLiteral("Rename"), Rename, item || (title && defaultView));

    QMenu *priority = addSubmenu(menu, QStringLiteral("Priority"), QStringLiteral("menuPriority"), item);
    QList<QAction *> priorities;
    auto *priorityGroup = new QActionGroup(priority);
    for (int p = 1; p <= 20; ++p) {
        auto *action = new QAction(QString::number(p), priority);
        action->setObjectName(QStringLiteral("action%1").arg(Priority1 + p - 1));
        action->setData(Priority1 + p - 1);
        mark(action, priorityGroup, it && it->priority() == p);
        priorities.append(action);
    }
    // Twenty entries in two columns of ten.
    addGrid(priority, priorities, 10, QSize(36, 24));

    addCommand(menu, QStringLiteral("Change Icon..."), ChangeIcon, item);

    QMenu *colour = addSubmenu(menu, QStringLiteral("Colour"), QStringLiteral("menuColour"), item);
    QList<QAction *> colours;
    auto *colourGroup = new QActionGroup(colour);
    const QColor text = parent ? parent->palette().color(QPalette::Text) : QColor(Qt::black);
    for (int c = 0; c < ColourTable::Count; ++c) {
        auto *action = new QAction(swatch(c, text), QString(), colour);
        action->setObjectName(QStringLiteral("action%1").arg(Colour0 + c));
        action->setData(Colour0 + c);
        action->setToolTip(c == 0 ? QStringLiteral("Default colour") : QStringLiteral("Colour %1").arg(c));
        mark(action, colourGroup, it && it->colour() == c);
        colours.append(action);
    }
    addGrid(colour, colours, 9, QSize(40, 26));

    QMenu *set = addSubmenu(menu, QStringLiteral("Set"), QStringLiteral("menuSet"), item);
    mark(addCommand(set, QStringLiteral("Show Icon"), ShowIcon, item), nullptr, it && it->showIcon());
    mark(addCommand(set, QStringLiteral("Italic Style"), ItalicStyle, item), nullptr, it && it->isItalic());
    set->addSeparator();
    auto *statusGroup = new QActionGroup(set);
    const char *statusNames[] = {"No Status", "Check Box", "Progress Bar"};
    for (int t = 0; t < 3; ++t)
        mark(addCommand(set, QString::fromLatin1(statusNames[t]), NoStatus + t, item), statusGroup,
             it && it->statusType() == t);

    menu->addSeparator();
    addCommand(menu, QStringLiteral("Apply Attributes..."), ApplyAttributes,
               (item && defaultView && hasChildren) || (title && defaultView));

    // A group heading orders the whole view: its entries show the view's
    // key and direction, and only the direction can be changed there.
    const bool headingOrder = title && s.grouped;
    bool orderEnabled = false;
    if (item)
        orderEnabled = defaultView && hasChildren;
    else if (title)
        orderEnabled = s.grouped || hasChildren;
    QMenu *order = addSubmenu(menu, QStringLiteral("Order Children By"), QStringLiteral("menuOrder"), orderEnabled);
    const quint16 key = headingOrder ? s.viewOrder : (s.node ? s.node->sort() : quint16(TreeNode::SortManual));
    const bool ascending = headingOrder ? s.viewAscending : (s.node ? s.node->isAscending() : true);
    auto *keyGroup = new QActionGroup(order);
    const char *keyNames[] = {"Name", "Priority", "Category", "Percent Complete", "Task/Due Date", "Creation Date"};
    for (int k = 0; k < 6; ++k)
        mark(addCommand(order, QString::fromLatin1(keyNames[k]), OrderByName + k, orderEnabled && !headingOrder),
             keyGroup, key == k);
    mark(addCommand(order, QStringLiteral("[Manual Order]"), OrderManual, orderEnabled && !headingOrder), keyGroup,
         key == TreeNode::SortManual);
    order->addSeparator();
    auto *directionGroup = new QActionGroup(order);
    const bool directionEnabled = orderEnabled && (headingOrder || key != TreeNode::SortManual);
    const bool directionMarked = headingOrder || key != TreeNode::SortManual;
    mark(addCommand(order, QStringLiteral("Ascending"), CommandId::Ascending, directionEnabled), directionGroup,
         directionMarked && ascending);
    mark(addCommand(order, QStringLiteral("Descending"), CommandId::Descending, directionEnabled), directionGroup,
         directionMarked && !ascending);

    QMenu *create = addSubmenu(menu, QStringLiteral("Create"), QStringLiteral("menuCreate"), item);
    addCommand(create, QStringLiteral("Copy"), CreateCopy, item);
    addCommand(create, QStringLiteral("Task..."), CreateTask, item);
    addCommand(create, QStringLiteral("Appointment..."), CreateAppointment, item);

    menu->addSeparator();
    addCommand(menu, QStringLiteral("Move"), MarkMove, item && defaultView);
    addCommand(menu, QStringLiteral("Copy"), MarkCopy, item && defaultView);
    addCommand(menu, QStringLiteral("Paste"), Paste, defaultView && (item || title) && s.canPaste);
    menu->addSeparator();
    addCommand(menu, QStringLiteral("Delete Item"), DeleteItem, item);
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
