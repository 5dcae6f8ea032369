#include "shell/commands/itemcommands.h"

#include "integration/calendarstore.h"
#include "model/childorder.h"
#include "model/document.h"
#include "model/item.h"
#include "model/progress.h"
#include "noteeditor/notepane.h"
#include "platform/messages.h"
#include "rows/colourtable.h"
#include "shell/commands/commandhost.h"
#include "shell/commands/templatecommands.h"
#include "shell/dialogs/applyattributesdialog.h"
#include "shell/dialogs/externalnoteeditor.h"
#include "shell/dialogs/itempropertiesdialog.h"
#include "shell/dialogs/optionsdialog.h"
#include "shell/document/branchview.h"
#include "shell/document/documentview.h"
#include "shell/document/itemhost.h"
#include "shell/document/itemmenu.h"
#include "shell/document/treepane.h"
#include "shell/document/undostack.h"
#include "shell/widgets/calendaraccess.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/toolbaricons.h"
#include "shell/widgets/waitcursor.h"
#include "storage/settings.h"
#include "views/applyattributes.h"
#include "views/viewrows.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QStyle>

namespace {

QIcon themeIcon(const char *name, QStyle::StandardPixmap fallback, const QStyle *style)
{
    return QIcon::fromTheme(QString::fromLatin1(name), style->standardIcon(fallback));
}

QIcon swatch(int index, const QColor &defaultColour)
{
    QPixmap pm(28, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setPen(QColor(0x70, 0x70, 0x70));
    p.setBrush(index == 0 ? defaultColour : ColourTable::colour(index));
    p.drawRect(0, 0, 27, 15);
    return QIcon(pm);
}

// The object names of the order keys, in the order of their numbers.
const char *const OrderNames[] = {"actionOrderByName",    "actionOrderByPriority",    "actionOrderByCategory",
                                  "actionOrderByPercent", "actionOrderByTaskDueDate", "actionOrderByCreationDate"};
const char *const OrderTexts[] = {"Name", "Priority", "Category", "Percent Complete", "Task/Due Date", "Creation Date"};

} // namespace

ItemCommands::ItemCommands(ItemHost *host, CommandHost *window, TemplateCommands *templates, QObject *parent)
    : CommandGroup(window, parent), m_list(host), m_templates(templates)
{
    addItemMenuCommands();
    addViewCommands();
    addUndoCommands();
    TreePane *tree = host->treePane();
    connect(tree, &TreePane::contextMenuRequested, this, &ItemCommands::showItemMenu);
    connect(tree, &TreePane::deleteRequested, this, [this] { action(QStringLiteral("actionDeleteItem"))->trigger(); });
    connect(tree, &TreePane::renameRequested, this, [this] { action(QStringLiteral("actionRename"))->trigger(); });
}

// ---- the state of the current row

TreeNode *ItemCommands::currentNode() const
{
    return m_list->treePane()->currentNode();
}

Item *ItemCommands::currentItem() const
{
    TreeNode *node = currentNode();
    return node ? node->asItem() : nullptr;
}

bool ItemCommands::grouped() const
{
    return m_list->rows()->isGrouped();
}

bool ItemCommands::inMainView() const
{
    return !m_list->isBranchView();
}

ItemCommands::RowKind ItemCommands::rowKind() const
{
    const ViewRows &rows = *m_list->rows();
    const int row = m_list->treePane()->currentRow();
    if (row < 0 || row >= rows.count())
        return RowKind::None;
    // The root's row and a group heading stand for the whole list.
    const ViewRows::Row &r = rows.row(row);
    return r.kind == ViewRows::Kind::Item ? RowKind::Item : RowKind::Title;
}

bool ItemCommands::headingOrder() const
{
    // A heading of a grouped view orders the whole view: only the direction
    // can be changed there.
    return rowKind() == RowKind::Title && grouped();
}

bool ItemCommands::orderEnabled() const
{
    const TreeNode *node = currentNode();
    const bool hasChildren = node && node->hasChildren();
    switch (rowKind()) {
    case RowKind::Item:
        return !grouped() && hasChildren;
    case RowKind::Title:
        return grouped() || hasChildren;
    case RowKind::None:
        break;
    }
    return false;
}

quint16 ItemCommands::orderKey() const
{
    if (headingOrder())
        return m_list->document()->viewOrder;
    const TreeNode *node = currentNode();
    return node ? node->sort() : quint16(TreeNode::SortManual);
}

bool ItemCommands::orderAscending() const
{
    if (headingOrder())
        return m_list->document()->viewAscending;
    const TreeNode *node = currentNode();
    return node ? node->isAscending() : true;
}

// ---- the commands

void ItemCommands::onItem(const char *name, const QString &text, std::function<void(Item *)> run,
                          std::function<bool(const Item *)> checked)
{
    Rule checkedRule;
    if (checked)
        checkedRule = [this, checked] {
            const Item *item = rowKind() == RowKind::Item ? currentItem() : nullptr;
            return item && checked(item);
        };
    add(
        name, text,
        [this, run] {
            if (Item *item = currentItem())
                run(item);
        },
        [this] { return rowKind() == RowKind::Item; }, checkedRule);
}

void ItemCommands::addItemMenuCommands()
{
    const bool main = inMainView();
    auto isItem = [this] { return rowKind() == RowKind::Item; };
    auto defaultView = [this] { return !grouped(); };
    auto repaint = [this] { m_list->treePane()->viewport()->update(); };

    // An item, or the root's title in the default view.
    add(
        "actionRename", QStringLiteral("Rename"), [this] { m_list->treePane()->startRename(); },
        [this] { return rowKind() == RowKind::Item || (rowKind() == RowKind::Title && !grouped()); });
    for (int p = 1; p <= 20; ++p) {
        onItem(
            QStringLiteral("actionPriority%1").arg(p).toLatin1().constData(), QString::number(p),
            [this, p](Item *item) { setPriority(item, quint16(p)); },
            [p](const Item *item) { return item->priority() == p; });
        setStepName(actions().last(), QStringLiteral("Set Priority"));
    }
    onItem("actionChangeIcon", QStringLiteral("Change Icon..."), [this](Item *item) { changeIcon(item); });
    const QColor text = m_list->hostWidget()->palette().color(QPalette::Text);
    for (int c = 0; c < ColourTable::Count; ++c) {
        onItem(
            QStringLiteral("actionColour%1").arg(c).toLatin1().constData(), QString(),
            [repaint, c](Item *item) {
                item->setColour(quint16(c));
                repaint();
            },
            [c](const Item *item) { return item->colour() == c; });
        QAction *colour = actions().last();
        setStepName(colour, QStringLiteral("Set Colour"));
        colour->setIcon(swatch(c, text));
        colour->setToolTip(c == 0 ? QStringLiteral("Default colour") : QStringLiteral("Colour %1").arg(c));
    }
    onItem(
        "actionShowIcon", QStringLiteral("Show Icon"),
        [repaint](Item *item) {
            item->setShowIcon(!item->showIcon());
            repaint();
        },
        [](const Item *item) { return item->showIcon(); });
    onItem(
        "actionItalicStyle", QStringLiteral("Italic Style"),
        [repaint](Item *item) {
            item->setItalic(!item->isItalic());
            repaint();
        },
        [](const Item *item) { return item->isItalic(); });
    const char *statusNames[] = {"actionNoStatus", "actionCheckBox", "actionProgressBar"};
    const char *statusTexts[] = {"No Status", "Check Box", "Progress Bar"};
    for (int t = 0; t < 3; ++t) {
        onItem(
            statusNames[t], QString::fromLatin1(statusTexts[t]),
            [this, t](Item *item) {
                item->setStatusType(quint16(t));
                // A filter by status type may hide the item now.
                m_list->changed(item);
            },
            [t](const Item *item) { return item->statusType() == t; });
    }

    add(
        "actionApplyAttributes", QStringLiteral("Apply Attributes..."), [this] { applyAttributes(); },
        [this, main] {
            const TreeNode *node = currentNode();
            return main && !grouped() &&
                   (rowKind() == RowKind::Title || (rowKind() == RowKind::Item && node->hasChildren()));
        });

    for (int k = 0; k < 6; ++k) {
        add(
            OrderNames[k], QString::fromLatin1(OrderTexts[k]), [this, k] { orderChildren(quint16(k)); },
            [this] { return orderEnabled() && !headingOrder(); }, [this, k] { return orderKey() == k; });
        setStepName(actions().last(), QStringLiteral("Order by ") + QString::fromLatin1(OrderTexts[k]));
    }
    add(
        "actionOrderManual", QStringLiteral("[Manual Order]"), [this] { orderChildren(TreeNode::SortManual); },
        [this] { return orderEnabled() && !headingOrder(); }, [this] { return orderKey() == TreeNode::SortManual; });
    auto directionEnabled = [this] { return orderEnabled() && (headingOrder() || orderKey() != TreeNode::SortManual); };
    auto directionMarked = [this] { return headingOrder() || orderKey() != TreeNode::SortManual; };
    add(
        "actionAscending", QStringLiteral("Ascending"), [this] { setDirection(true); }, directionEnabled,
        [this, directionMarked] { return directionMarked() && orderAscending(); });
    add(
        "actionDescending", QStringLiteral("Descending"), [this] { setDirection(false); }, directionEnabled,
        [this, directionMarked] { return directionMarked() && !orderAscending(); });

    onItem("actionCreateCopy", QStringLiteral("Copy"), [this](Item *item) { createCopy(item); });
    setStepName(actions().last(), QStringLiteral("Create Copy"));
    onItem("actionCreateTask", QStringLiteral("Task..."),
           [this](Item *item) { createInCalendar(item, CalendarObject::Task); });
    onItem("actionCreateAppointment", QStringLiteral("Appointment..."),
           [this](Item *item) { createInCalendar(item, CalendarObject::Appointment); });

    add(
        "actionMarkMove", QStringLiteral("Move"), [this] { m_list->clip().markMove(currentItem()); },
        [isItem, defaultView] { return isItem() && defaultView(); });
    add(
        "actionMarkCopy", QStringLiteral("Copy"),
        [this] {
            Item *item = currentItem();
            m_list->clip().markCopy(item);
            if (QClipboard *clipboard = QGuiApplication::clipboard())
                clipboard->setText(item->name());
        },
        [isItem, defaultView] { return isItem() && defaultView(); });
    add(
        "actionPaste", QStringLiteral("Paste"), [this] { paste(); },
        [this] { return !grouped() && rowKind() != RowKind::None && m_list->clip().canPaste(currentNode()); });
    onItem("actionDeleteItem", QStringLiteral("Delete Item"), [this](Item *) { deleteCurrent(); });
}

void ItemCommands::addViewCommands()
{
    // The properties dialog: in a branch view only its general page.
    auto hasItem = [this] { return currentItem() != nullptr; };
    auto mainItem = [this] { return inMainView() && currentItem() != nullptr; };
    QAction *modify = add(
        "actionModifyItem", QStringLiteral("Modify Item"), [this] { editItem(ItemPropertiesDialog::GeneralPage); },
        hasItem);
    modify->setIcon(ToolbarIcons::modifyItem());
    add(
        "actionModifyNote", QStringLiteral("Modify Note"), [this] { editItem(ItemPropertiesDialog::NotePage); },
        mainItem)
        ->setIcon(ToolbarIcons::modifyNote());
    add(
        "actionLinks", QStringLiteral("Links"), [this] { editItem(ItemPropertiesDialog::LinkPage); }, mainItem)
        ->setIcon(ToolbarIcons::links());
    setStepName(actions().last(), QStringLiteral("Edit Links"));
    add(
        "actionBranchView", QStringLiteral("Branch View"), [this] { branchView(); },
        [this] { return inMainView() && currentItem() && m_list->document()->viewMode == Document::DefaultView; })
        ->setIcon(ToolbarIcons::branchView());
    // Each command of the branch view is a step of its own.
    leaveUnrecorded(actions().last());

    const QStyle *s = m_list->hostWidget()->style();
    const struct {
        const char *name;
        const char *text;
        Editing::Move move;
        const char *icon;
        QStyle::StandardPixmap fallback;
    } moves[] = {{"actionMoveUp", "Move Up", Editing::Move::Up, "go-up", QStyle::SP_ArrowUp},
                 {"actionMoveDown", "Move Down", Editing::Move::Down, "go-down", QStyle::SP_ArrowDown},
                 {"actionUpALevel", "Up a Level", Editing::Move::UpLevel, "go-previous", QStyle::SP_ArrowLeft},
                 {"actionDownALevel", "Down a Level", Editing::Move::DownLevel, "go-next", QStyle::SP_ArrowRight}};
    for (const auto &m : moves) {
        const Editing::Move move = m.move;
        add(
            m.name, QString::fromLatin1(m.text), [this, move] { moveCurrent(move); },
            [this, move] { return inMainView() && Editing::canMove(*m_list->document(), currentItem(), move); })
            ->setIcon(themeIcon(m.icon, m.fallback, s));
    }
}

void ItemCommands::addUndoCommands()
{
    UndoStack *stack = m_list->undoStack();
    const QStyle *s = m_list->hostWidget()->style();
    QAction *undo = add(
        "actionUndo", QStringLiteral("Undo"), [this] { undoOrRedo(true); },
        [stack] { return stack && stack->canUndo(); });
    undo->setShortcut(QKeySequence::Undo);
    undo->setIcon(themeIcon("edit-undo", QStyle::SP_ArrowBack, s));
    QAction *redo = add(
        "actionRedo", QStringLiteral("Redo"), [this] { undoOrRedo(false); },
        [stack] { return stack && stack->canRedo(); });
    redo->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    redo->setIcon(themeIcon("edit-redo", QStyle::SP_ArrowForward, s));
    for (QAction *action : {undo, redo}) {
        leaveUnrecorded(action);
        action->setIconText(action->text());
    }
    if (!stack)
        return;
    // "Undo Delete Item": the texts name the step they take back or do again.
    connect(stack, &QUndoStack::undoTextChanged, undo, [undo](const QString &step) {
        undo->setText(step.isEmpty() ? QStringLiteral("Undo") : QStringLiteral("Undo ") + step);
    });
    connect(stack, &QUndoStack::redoTextChanged, redo, [redo](const QString &step) {
        redo->setText(step.isEmpty() ? QStringLiteral("Redo") : QStringLiteral("Redo ") + step);
    });
    connect(stack, &QUndoStack::indexChanged, this, [this] { m_host->updateActions(); });
}

void ItemCommands::undoOrRedo(bool undo)
{
    // A note being typed is stored first, as a step of its own: the undo
    // takes that back first.
    m_list->commitEdits();
    WaitCursor wait;
    UndoStack *stack = m_list->undoStack();
    undo ? stack->undo() : stack->redo();
}

// ---- the item menu

QMenu *ItemCommands::buildItemMenu(QWidget *parent)
{
    update();
    return ItemMenu::build(parent, [this](const QString &name) { return action(name); });
}

void ItemCommands::showItemMenu(int row, const QPoint &globalPos)
{
    if (row < 0 || row >= m_list->rows()->count())
        return;
    m_list->treePane()->setCurrentRow(row);
    QMenu *menu = buildItemMenu(m_list->hostWidget());
    m_host->prompts()->popupMenu(menu, globalPos);
    menu->deleteLater();
}

// ---- handlers

void ItemCommands::setPriority(Item *item, quint16 priority)
{
    Editing::setPriority(item, priority);
    const bool sorted = item->parent() && item->parent()->sort() == TreeNode::SortPriority;
    if (sorted || grouped())
        m_list->changed(item);
    else
        m_list->treePane()->viewport()->update();
}

void ItemCommands::changeIcon(Item *item)
{
    const int icon = m_host->prompts()->chooseIcon(m_list->hostWidget(), item->image(), m_host->settings().favIcons);
    if (icon >= 0) {
        item->setImage(quint16(icon));
        m_list->treePane()->viewport()->update();
    }
}

void ItemCommands::orderChildren(quint16 key)
{
    TreeNode *node = currentNode();
    if (!node)
        return;
    {
        WaitCursor wait;
        ChildOrder::orderChildrenBy(node, key);
    }
    m_list->changed(node);
}

void ItemCommands::setDirection(bool ascending)
{
    if (headingOrder()) {
        WaitCursor wait;
        ViewRows *rows = m_list->rows();
        rows->setViewOrder(m_list->document()->viewOrder, ascending);
        m_list->treePane()->rowsChanged(rows->rebuild(m_list->treePane()->currentRow()));
        return;
    }
    TreeNode *node = currentNode();
    if (!node)
        return;
    {
        WaitCursor wait;
        ChildOrder::setDirection(node, ascending);
    }
    m_list->changed(node);
}

void ItemCommands::createCopy(Item *item)
{
    // A branch's top is copied beside it, outside the branch, where it is not
    // shown: the top stays current there.
    m_list->changed(Editing::createCopy(item));
}

void ItemCommands::paste()
{
    ItemClip &clip = m_list->clip();
    TreeNode *target = currentNode();
    if (!clip.canPaste(target))
        return;
    bool withChildren = false;
    if (clip.asksForChildren())
        withChildren =
            m_host->prompts()->askYesNo(m_list->hostWidget(), QString::fromLatin1(Messages::AskPasteChildren));
    Item *pasted = nullptr;
    {
        WaitCursor wait;
        pasted = clip.paste(target, withChildren);
    }
    if (pasted) {
        m_list->edited(ItemHost::Edit::ItemsAdded, pasted);
        m_list->changed(pasted);
    }
}

void ItemCommands::deleteCurrent()
{
    Item *item = currentItem();
    if (!item || !m_host->prompts()->askYesNo(m_list->hostWidget(), QString::fromLatin1(Messages::AskDelete)))
        return;
    TreeNode *parent = nullptr;
    {
        WaitCursor wait;
        m_list->forgetBranch(item);
        parent = Editing::deleteItem(*m_list->document(), item, &m_list->clip());
    }
    m_list->edited(ItemHost::Edit::ItemsRemoved, nullptr);
    m_list->changed(parent);
}

void ItemCommands::moveCurrent(Editing::Move move)
{
    Item *item = currentItem();
    if (item && Editing::move(*m_list->document(), item, move))
        m_list->changed(item);
}

void ItemCommands::applyAttributes()
{
    TreeNode *node = currentNode();
    Document *document = m_list->document();
    if (!node || !node->hasChildren())
        return;
    ApplyAttributesDialog dialog(m_templates->categories(), m_host->settings().favIcons, m_host->prompts(),
                                 m_list->hostWidget());
    if (m_host->prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    AttributeSet set = dialog.attributes();
    if (set.has(AttributeSet::Category))
        set.category = document->collectCategory(set.category);
    {
        WaitCursor wait;
        ApplyAttributes::apply(node, set);
    }
    m_list->changed(node);
}

void ItemCommands::editItem(int page)
{
    Item *item = currentItem();
    if (!item)
        return;
    m_list->commitEdits();
    Document *document = m_list->document();
    Prompts *prompts = m_host->prompts();
    auto *view = qobject_cast<DocumentView *>(m_list->hostWidget());
    if (page == ItemPropertiesDialog::NotePage && m_host->settings().testFlag(Settings::ExternalRichEditor) &&
        document->noteType != Document::PlainText) {
        QByteArray note = item->note();
        if (ExternalNoteEditor::edit(m_list->hostWidget(), prompts, &note, document->noteType) ==
            ExternalNoteEditor::Result::Updated) {
            item->setNote(note);
            if (view)
                view->notePane()->load(item->note());
        }
        return;
    }
    ItemPropertiesDialog dialog(m_templates->propertiesContext(), item, false, m_list->hostWidget());
    dialog.setPage(page);
    if (prompts->runDialog(&dialog) != QDialog::Accepted)
        return;
    {
        WaitCursor wait;
        dialog.store();
    }
    if (view)
        view->notePane()->load(item->note());
    m_list->edited(ItemHost::Edit::ReminderChanged, item);
    m_list->changed(dialog.followedLink() ? dialog.followedLink() : item);
}

void ItemCommands::branchView()
{
    Item *item = currentItem();
    if (!item)
        return;
    m_list->commitEdits();
    Document *document = m_list->document();
    const quint32 top = item->handle();
    // The main list rebuilds its rows after every change made in the branch
    // view, so that none of them names an item deleted there.
    auto mainListFollows = [this, document, top] {
        Item *branchTop = document->liveItem(top);
        m_list->changed(branchTop ? static_cast<TreeNode *>(branchTop) : document->current());
    };
    ::BranchView branch(document, item, &m_host->settings(), m_host->prompts(), &m_list->clip(), m_list->hostWidget());
    branch.setAfterChange(mainListFollows);
    branch.setMainList(m_list);
    auto *commands = new ItemCommands(&branch, m_host, m_templates, &branch);
    for (const char *name : {"actionModifyItem", "actionUndo", "actionRedo"})
        branch.addToolBarAction(commands->action(QString::fromLatin1(name)));
    m_host->prompts()->runDialog(&branch);
    mainListFollows();
}

// ---- tasks and appointments

void ItemCommands::createInCalendar(Item *item, CalendarObject::Kind kind)
{
    Prompts *prompts = m_host->prompts();
    QWidget *parent = m_list->hostWidget();
    bool eachChild = false;
    if (item->hasChildren()) {
        eachChild = prompts->askYesNo(parent, QString::fromLatin1(kind == CalendarObject::Task
                                                                      ? Messages::AskTaskForEachChild
                                                                      : Messages::AskAppointmentForEachChild));
    }

    const Settings &settings = m_host->settings();
    std::unique_ptr<CalendarStore> store = CalendarAccess::open(settings.calendarStore, settings.calendarUser,
                                                                prompts, parent);
    if (!store)
        return; // the password was not given
    QString error;
    CalendarStore::CreateResult result;
    bool connected;
    {
        WaitCursor wait;
        connected = store->connect(&error);
        if (connected)
            result = store->createFor(*item, m_list->document()->noteType, kind, eachChild);
    }
    if (!connected) {
        // A refused password is asked again next time.
        CalendarAccess::forgetPassword(settings.calendarStore, settings.calendarUser);
        offerCalendarOptions(error);
        return;
    }
    if (result.allCreated()) {
        prompts->message(parent, Prompts::Icon::Information,
                         QString::fromLatin1(Messages::CalendarObjectsCreated).arg(result.created));
        return;
    }
    QString text = QString::fromLatin1(Messages::CalendarObjectsFailed).arg(result.created).arg(result.failed());
    // The first reason stands for the rest: they are most often the same.
    prompts->message(parent, Prompts::Icon::Stop, text + QStringLiteral("\n\n") + result.errors.constFirst());
}

void ItemCommands::offerCalendarOptions(const QString &reason)
{
    QWidget *parent = m_list->hostWidget();
    const QString text = QString::fromLatin1(Messages::CalendarUnreachable).arg(reason) +
                         QStringLiteral("\n\nDo you want to choose another calendar in the options?");
    if (!m_host->prompts()->askYesNo(parent, text))
        return;
    OptionsDialog dialog(m_host->settings(), m_host->prompts(), parent);
    dialog.showCalendarPage();
    if (m_host->prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    m_host->settings() = dialog.settings();
    m_host->saveSettings();
    if (DocumentView *view = m_host->view())
        view->applySettings();
}
