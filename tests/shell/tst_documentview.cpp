#include "model/document.h"
#include "model/item.h"
#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "platform/messages.h"
#include "shell/document/branchview.h"
#include "shell/document/documentview.h"
#include "shell/document/quickentrybar.h"
#include "shell/document/treepane.h"
#include "support/scriptedprompts.h"
#include "support/shellfixture.h"
#include "views/viewrows.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QSplitter>
#include <QSplitterHandle>
#include <QTest>
#include <QToolButton>

namespace {

// Root
//   A (automatic)        A1, A2 > A2a
//   B
//   C
std::unique_ptr<Document> sampleDocument()
{
    auto doc = std::make_unique<Document>();
    Item *a = add(doc->root(), QStringLiteral("A"));
    a->setAutoProgress(true);
    add(a, QStringLiteral("A1"));
    add(add(a, QStringLiteral("A2")), QStringLiteral("A2a"));
    add(doc->root(), QStringLiteral("B"));
    add(doc->root(), QStringLiteral("C"));
    return doc;
}

QStringList childNames(const TreeNode *node)
{
    QStringList names;
    for (const Item *child : node->children())
        names.append(child->name());
    return names;
}

QStringList rowTexts(const ViewRows *rows)
{
    QStringList texts;
    for (int i = 0; i < rows->count(); ++i)
        texts.append(QString(rows->row(i).level, QLatin1Char('-')) + rows->text(i));
    return texts;
}

} // namespace

// The document's tree pane, its item menu, the quick entry bar, the note
// pane and the branch view, worked as a person would.
class TestDocumentView : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void statusColumnTaps();
    void glyphExpandsAndCollapses();
    void quickEntryBar();
    void renameInPlace();
    void itemMenuAttributes();
    void markAndPaste();
    void dragAndDrop();
    void deleteAsks();
    void menuOpensOnRightClickAndLongPress();
    void menuGreying();
    void twentyPrioritiesInTwoColumns();
    void groupedView();
    void filtersCollapse();
    void noteStoredOnSelectionChange();
    void recordingToolbarOnlyForRichInk();
    void splitterDragIsSaved();
    void branchView();
    void branchViewClosesWhenItsBranchIsHidden();
    void branchViewDeletes();

private:
    void select(const QString &name);
    Item *item(const QString &name) const;
    QPoint partOf(const QString &name, int code) const;
    void openMenuOn(const QString &name, const QString &choice = QString());
    bool menuEnabled(const char *name) const { return m_prompts->lastMenu.value(QString::fromLatin1(name)).enabled; }
    void click(const QString &name, int code);
    void drag(const QString &from, const QPoint &to);
    bool run(const char *name) { return ::run(m_f->window.get(), name); }

    std::unique_ptr<ShellFixture> m_f;
    ScriptedPrompts *m_prompts = nullptr;
    DocumentView *m_view = nullptr;
};

void TestDocumentView::init()
{
    m_f = std::make_unique<ShellFixture>();
    m_prompts = &m_f->prompts;
    m_view = m_f->open(sampleDocument());
    QVERIFY(m_view);
    m_f->window->resize(500, 760);
    m_f->window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_f->window.get()));
}

void TestDocumentView::cleanup()
{
    m_f.reset();
}

Item *TestDocumentView::item(const QString &name) const
{
    Item *found = nullptr;
    m_view->document()->root()->forEachDescendant([&](Item *i) {
        if (i->name() == name && !found)
            found = i;
    });
    return found;
}

void TestDocumentView::select(const QString &name)
{
    TreePane *tree = m_view->treePane();
    if (name == QLatin1String("Root"))
        tree->setCurrentRow(0);
    else
        QVERIFY2(tree->setCurrentNode(item(name)), qPrintable(name));
}

QPoint TestDocumentView::partOf(const QString &name, int code) const
{
    TreePane *tree = m_view->treePane();
    const int row = name == QLatin1String("Root") ? 0 : m_view->rows()->indexOf(item(name));
    const RowGeometry g = tree->rowGeometry(row);
    return (code == RowGeometry::Glyph    ? g.glyphRect()
            : code == RowGeometry::Status ? g.statusRect()
            : code == RowGeometry::Icon   ? g.iconRect()
                                          : g.textRect())
        .center();
}

void TestDocumentView::click(const QString &name, int code)
{
    QTest::mouseClick(m_view->treePane()->viewport(), Qt::LeftButton, {}, partOf(name, code));
}

void TestDocumentView::openMenuOn(const QString &name, const QString &choice)
{
    select(name);
    if (!choice.isNull())
        m_prompts->menuChoices.enqueue(choice);
    const int row = m_view->treePane()->currentRow();
    Q_EMIT m_view->treePane()->contextMenuRequested(row, QPoint());
    QCoreApplication::processEvents(); // the chosen command runs queued
}

void TestDocumentView::drag(const QString &from, const QPoint &to)
{
    QWidget *viewport = m_view->treePane()->viewport();
    const QPoint start = partOf(from, RowGeometry::Text);
    QTest::mousePress(viewport, Qt::LeftButton, {}, start);
    for (const QPoint &at : {start + QPoint(0, 6), to}) {
        QMouseEvent move(QEvent::MouseMove, QPointF(at), viewport->mapToGlobal(QPointF(at)), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &move);
    }
    QVERIFY(m_view->treePane()->isDragging());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
}

void TestDocumentView::statusColumnTaps()
{
    select(QStringLiteral("A"));
    m_view->treePane()->toggleRow(m_view->treePane()->currentRow());
    click(QStringLiteral("A2"), RowGeometry::Status);
    QCOMPARE(item(QStringLiteral("A2"))->progress(), quint16(100));
    QCOMPARE(item(QStringLiteral("A"))->progress(), quint16(50)); // rolled up
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("A2")));
    // The automatic parent ignores taps on its own box; a tap on the text does not toggle.
    click(QStringLiteral("A"), RowGeometry::Status);
    QCOMPARE(item(QStringLiteral("A"))->progress(), quint16(50));
    click(QStringLiteral("A1"), RowGeometry::Text);
    QCOMPARE(item(QStringLiteral("A1"))->progress(), quint16(0));

    // A progress bar offers presets; with "Hide Completed Items" on, 100% hides
    // the item and the nearest row becomes current.
    Item *b = item(QStringLiteral("B"));
    b->setStatusType(Item::ProgressBar);
    m_prompts->menuChoices.enqueue(QStringLiteral("preset75"));
    click(QStringLiteral("B"), RowGeometry::Status);
    QCOMPARE(b->progress(), quint16(75));
    m_view->document()->hideCompleted = true;
    m_view->refresh(b);
    m_prompts->menuChoices.enqueue(QStringLiteral("preset100"));
    click(QStringLiteral("B"), RowGeometry::Status);
    QCOMPARE(b->progress(), quint16(100));
    QCOMPARE(m_view->rows()->indexOf(b), -1);
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("C")));
}

void TestDocumentView::glyphExpandsAndCollapses()
{
    ViewRows *rows = m_view->rows();
    QCOMPARE(rows->count(), 4); // root, A, B, C
    click(QStringLiteral("A"), RowGeometry::Glyph);
    QCOMPARE(rows->count(), 6);
    QVERIFY(item(QStringLiteral("A"))->isExpanded());
    click(QStringLiteral("A"), RowGeometry::Glyph);
    QCOMPARE(rows->count(), 4);
    click(QStringLiteral("B"), RowGeometry::Glyph); // a leaf's glyph column does nothing
    QCOMPARE(rows->count(), 4);
    QVERIFY(run("actionExpandAll"));
    QCOMPARE(rows->count(), 7);
    QVERIFY(run("actionCollapseAll"));
    QCOMPARE(rows->count(), 4);
}

void TestDocumentView::quickEntryBar()
{
    QuickEntryBar *bar = m_view->quickEntryBar();
    QLineEdit *edit = bar->textBox()->lineEdit();
    item(QStringLiteral("B"))->setPriority(3);
    select(QStringLiteral("B"));
    bar->setIcon(12);
    QTest::keyClicks(edit, QStringLiteral("After B"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(childNames(m_view->document()->root()),
             QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("After B"), QStringLiteral("C")}));
    Item *added = item(QStringLiteral("After B"));
    QCOMPARE(added->priority(), quint16(3));
    QCOMPARE(added->image(), quint16(12));
    QCOMPARE(m_view->treePane()->currentNode(), added);
    QCOMPARE(edit->text(), QString());

    // The child toggle puts the item first among the current item's children.
    select(QStringLiteral("A"));
    bar->findChild<QToolButton *>(QStringLiteral("quickEntryChild"))->click();
    bar->findChild<QToolButton *>(QStringLiteral("quickEntryItalic"))->click();
    QTest::keyClicks(edit, QStringLiteral("after b"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(childNames(item(QStringLiteral("A"))).first(), QStringLiteral("after b"));
    QVERIFY(item(QStringLiteral("after b"))->isItalic());
    QVERIFY(item(QStringLiteral("A"))->isExpanded());
    QCOMPARE(bar->history(), QStringList({QStringLiteral("After B")}));

    // With the root current the item goes last under the root; the box takes 63 characters.
    select(QStringLiteral("Root"));
    QTest::keyClicks(edit, QString(70, QLatin1Char('x')));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(childNames(m_view->document()->root()).last(), QString(63, QLatin1Char('x')));
}

void TestDocumentView::renameInPlace()
{
    select(QStringLiteral("B"));
    QVERIFY(run("actionRename"));
    QLineEdit *editor = m_view->treePane()->renameEditor();
    QVERIFY(editor);
    QCOMPARE(editor->maxLength(), 95);
    QCOMPARE(editor->selectedText(), QStringLiteral("B"));
    QTest::keyClicks(editor, QStringLiteral("Banana"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(item(QStringLiteral("Banana")), m_view->treePane()->currentNode());

    // F2 renames too; Escape keeps the old name.
    QTest::keyClick(m_view->treePane(), Qt::Key_F2);
    editor = m_view->treePane()->renameEditor();
    QTest::keyClicks(editor, QStringLiteral("Zzz"));
    QTest::keyClick(editor, Qt::Key_Escape);
    QVERIFY(item(QStringLiteral("Banana")));
    QVERIFY(!item(QStringLiteral("Zzz")));
}

void TestDocumentView::itemMenuAttributes()
{
    Item *b = item(QStringLiteral("B"));
    m_prompts->icons.enqueue(42);
    for (const char *action : {"actionPriority6", "actionColour12", "actionShowIcon", "actionItalicStyle",
                               "actionProgressBar", "actionChangeIcon"})
        openMenuOn(QStringLiteral("B"), QString::fromLatin1(action));
    QCOMPARE(b->priority(), quint16(6));
    QCOMPARE(b->colour(), quint16(12));
    QVERIFY(!b->showIcon());
    QVERIFY(b->isItalic());
    QCOMPARE(b->statusType(), quint16(Item::ProgressBar));
    QCOMPARE(b->image(), quint16(42));

    // Create > Copy puts a duplicate right after the item, current.
    openMenuOn(QStringLiteral("A"), QStringLiteral("actionCreateCopy"));
    QCOMPARE(childNames(m_view->document()->root()),
             QStringList({QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    QCOMPARE(m_view->treePane()->currentNode(), m_view->document()->root()->child(1));

    // Order Children By name on the root, then back to manual order keeps the order.
    b->setName(QStringLiteral("0 first"));
    openMenuOn(QStringLiteral("Root"), QStringLiteral("actionOrderByName"));
    QCOMPARE(childNames(m_view->document()->root()).first(), QStringLiteral("0 first"));
    b->setName(QStringLiteral("z last"));
    openMenuOn(QStringLiteral("Root"), QStringLiteral("actionOrderManual"));
    QCOMPARE(m_view->document()->root()->sort(), quint16(TreeNode::SortManual));
    QCOMPARE(childNames(m_view->document()->root()).first(), QStringLiteral("z last"));
}

void TestDocumentView::markAndPaste()
{
    // Which targets take a paste is the clip's rule; the menu follows it.
    QVERIFY(run("actionExpandAll"));
    openMenuOn(QStringLiteral("B"));
    QVERIFY(!menuEnabled("actionPaste"));
    openMenuOn(QStringLiteral("A2"), QStringLiteral("actionMarkMove"));
    openMenuOn(QStringLiteral("A2a"));
    QVERIFY(!menuEnabled("actionPaste"));
    openMenuOn(QStringLiteral("B"), QStringLiteral("actionPaste"));
    QCOMPARE(childNames(item(QStringLiteral("B"))), QStringList({QStringLiteral("A2")}));
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("A2")));

    // Copy of an item with children asks; No pastes it alone, Yes takes the children.
    openMenuOn(QStringLiteral("A2"), QStringLiteral("actionMarkCopy"));
    m_prompts->yesNo.enqueue(false);
    openMenuOn(QStringLiteral("B"), QStringLiteral("actionPaste"));
    QCOMPARE(m_prompts->shown.last().text, QString::fromLatin1(Messages::AskPasteChildren));
    QCOMPARE(m_prompts->shown.last().icon, Prompts::Icon::Question);
    QCOMPARE(childNames(item(QStringLiteral("B"))), QStringList({QStringLiteral("A2"), QStringLiteral("A2")}));
    QVERIFY(!item(QStringLiteral("B"))->child(1)->hasChildren());
    m_prompts->yesNo.enqueue(true);
    openMenuOn(QStringLiteral("C"), QStringLiteral("actionPaste"));
    QCOMPARE(childNames(item(QStringLiteral("C"))->child(0)), QStringList({QStringLiteral("A2a")}));
}

void TestDocumentView::dragAndDrop()
{
    // Which drops are refused is the core's rule; one refusal proves the pane asks it.
    QVERIFY(run("actionExpandAll"));
    const QStringList before = childNames(m_view->document()->root());
    drag(QStringLiteral("A"), partOf(QStringLiteral("A2a"), RowGeometry::Text));
    QCOMPARE(childNames(m_view->document()->root()), before);
    QCOMPARE(item(QStringLiteral("A2a"))->parent(), item(QStringLiteral("A2")));
    // Below the last row, onto nothing: ignored.
    drag(QStringLiteral("B"), QPoint(100, m_view->treePane()->viewport()->height() - 5));
    QCOMPARE(childNames(m_view->document()->root()), before);
    // Onto another row: the dragged item becomes its last child, and is selected.
    drag(QStringLiteral("C"), partOf(QStringLiteral("A"), RowGeometry::Text));
    QCOMPARE(childNames(item(QStringLiteral("A"))),
             QStringList({QStringLiteral("A1"), QStringLiteral("A2"), QStringLiteral("C")}));
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("C")));
    // The drag is over: a long press opens the menu again.
    m_prompts->lastMenuTexts.clear();
    QWidget *viewport = m_view->treePane()->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("B"), RowGeometry::Text));
    QTRY_VERIFY(!m_prompts->lastMenuTexts.isEmpty());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("B"), RowGeometry::Text));
}

void TestDocumentView::deleteAsks()
{
    m_prompts->yesNo.enqueue(false);
    openMenuOn(QStringLiteral("A"), QStringLiteral("actionDeleteItem"));
    QCOMPARE(m_prompts->shown.last().text, QString::fromLatin1(Messages::AskDelete));
    QVERIFY(item(QStringLiteral("A")));
    m_prompts->yesNo.enqueue(true);
    openMenuOn(QStringLiteral("A"), QStringLiteral("actionDeleteItem"));
    QVERIFY(!item(QStringLiteral("A")));
    QCOMPARE(m_view->treePane()->currentNode(), m_view->document()->root());
    QCOMPARE(m_view->rows()->count(), 3);
    // The Delete key asks the same question.
    select(QStringLiteral("C"));
    QTest::keyClick(m_view->treePane(), Qt::Key_Delete);
    QVERIFY(!item(QStringLiteral("C")));
}

void TestDocumentView::menuOpensOnRightClickAndLongPress()
{
    // A right click reaches a widget as a context menu event.
    QWidget *viewport = m_view->treePane()->viewport();
    const QPoint onB = partOf(QStringLiteral("B"), RowGeometry::Text);
    QContextMenuEvent rightClick(QContextMenuEvent::Mouse, onB, viewport->mapToGlobal(onB));
    QCoreApplication::sendEvent(viewport, &rightClick);
    QCOMPARE(m_prompts->lastMenuTexts.value(0), QStringLiteral("Rename"));
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("B")));

    m_prompts->lastMenuTexts.clear();
    m_prompts->menuChoices.enqueue(QStringLiteral("actionPriority4"));
    QTest::mousePress(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("C"), RowGeometry::Text));
    QTRY_VERIFY(!m_prompts->lastMenuTexts.isEmpty());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("C"), RowGeometry::Text));
    QTRY_COMPARE(item(QStringLiteral("C"))->priority(), quint16(4));
    // A short tap opens nothing.
    m_prompts->lastMenuTexts.clear();
    click(QStringLiteral("B"), RowGeometry::Text);
    QTest::qWait(900);
    QVERIFY(m_prompts->lastMenuTexts.isEmpty());
}

void TestDocumentView::menuGreying()
{
    // The marks show the item's own attributes and order.
    Item *a = item(QStringLiteral("A"));
    a->setPriority(4);
    a->setColour(9);
    a->setSort(TreeNode::SortPriority);
    a->setAscending(false);
    openMenuOn(QStringLiteral("A"));
    for (const char *name : {"actionPriority4", "actionColour9", "actionOrderByPriority", "actionDescending"})
        QVERIFY2(m_prompts->lastMenu.value(QString::fromLatin1(name)).checked, name);
    QVERIFY(!m_prompts->lastMenu.value(QStringLiteral("actionPriority10")).checked);
    QVERIFY(menuEnabled("actionApplyAttributes") && menuEnabled("actionAscending"));
    // A leaf has no children to order or to apply attributes to.
    openMenuOn(QStringLiteral("B"));
    QVERIFY(menuEnabled("actionDeleteItem") && !menuEnabled("actionOrderManual"));
    QVERIFY(!menuEnabled("actionApplyAttributes"));
    // The root's title row: rename, apply attributes and ordering only.
    openMenuOn(QStringLiteral("Root"));
    QVERIFY(menuEnabled("actionRename") && menuEnabled("actionOrderByName"));
    QVERIFY(!menuEnabled("actionDeleteItem") && !menuEnabled("actionPriority10") && !menuEnabled("actionMarkMove"));
}

void TestDocumentView::twentyPrioritiesInTwoColumns()
{
    select(QStringLiteral("B"));
    QMenu *menu = nullptr;
    m_prompts->onMenu = [&menu](QMenu *shown) { menu = shown; };
    Q_EMIT m_view->treePane()->contextMenuRequested(m_view->treePane()->currentRow(), QPoint());
    QVERIFY(menu);
    auto *priority = menu->findChild<QMenu *>(QStringLiteral("menuPriority"));
    QVERIFY(priority);
    QList<QWidget *> buttons;
    for (int p = 1; p <= 20; ++p) {
        auto *action = priority->findChild<QAction *>(QStringLiteral("actionPriority%1").arg(p));
        QCOMPARE(action->associatedObjects().size(), 1); // its button in the grid
        buttons.append(qobject_cast<QWidget *>(action->associatedObjects().first()));
    }
    priority->adjustSize();
    // 1 to 10 down the first column, 11 to 20 down the second.
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(buttons[i + 10]->y(), buttons[i]->y());
        QVERIFY(buttons[i + 10]->x() > buttons[i]->x());
        if (i > 0)
            QVERIFY(buttons[i]->y() > buttons[i - 1]->y());
    }
}

void TestDocumentView::groupedView()
{
    item(QStringLiteral("B"))->setCategory(QStringLiteral("Work"));
    select(QStringLiteral("B"));
    QVERIFY(run("actionByCategory"));
    QVERIFY(checked(m_f->window.get(), "actionByCategory"));
    ViewRows *rows = m_view->rows();
    QVERIFY(rows->isGrouped());
    // The current item stays current, under its opened heading.
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("B")));
    const int heading = rows->parentIndex(m_view->treePane()->currentRow());
    QCOMPARE(rows->text(heading), QStringLiteral("Work"));

    // An item row of a grouped view cannot be moved, ordered or pasted to, even with a mark.
    m_view->clip().markCopy(item(QStringLiteral("C")));
    openMenuOn(QStringLiteral("B"));
    QVERIFY(!menuEnabled("actionOrderByName") && !menuEnabled("actionMarkMove") && !menuEnabled("actionPaste"));
    QVERIFY(menuEnabled("actionRename") && menuEnabled("actionDeleteItem"));
    for (const char *name : {"actionMoveUp", "actionMoveDown", "actionUpALevel", "actionDownALevel"})
        QVERIFY2(!enabled(m_f->window.get(), name), name);

    // A heading orders the whole view: only the direction can be chosen.
    m_prompts->menuChoices.enqueue(QStringLiteral("actionDescending"));
    Q_EMIT m_view->treePane()->contextMenuRequested(heading, QPoint());
    QCoreApplication::processEvents();
    QVERIFY(!menuEnabled("actionOrderByName") && !menuEnabled("actionRename"));
    QVERIFY(!m_view->document()->viewAscending);

    // Drops are ignored in a grouped view.
    QVERIFY(run("actionExpandAll"));
    const QStringList before = childNames(m_view->document()->root());
    drag(QStringLiteral("B"), partOf(QStringLiteral("C"), RowGeometry::Text));
    QCOMPARE(childNames(m_view->document()->root()), before);

    // Back to the default view with the item still current; it moves again.
    QVERIFY(run("actionDefaultView"));
    QVERIFY(!m_view->rows()->isGrouped());
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("B")));
    QVERIFY(run("actionDownALevel"));
    QCOMPARE(childNames(item(QStringLiteral("A"))),
             QStringList({QStringLiteral("A1"), QStringLiteral("A2"), QStringLiteral("B")}));
    QVERIFY(enabled(m_f->window.get(), "actionMoveUp") && !enabled(m_f->window.get(), "actionMoveDown"));
}

void TestDocumentView::filtersCollapse()
{
    QVERIFY(run("actionExpandAll"));
    item(QStringLiteral("A2"))->setProgress(100);
    select(QStringLiteral("A2a"));
    QVERIFY(run("actionHideCompleted"));
    QVERIFY(checked(m_f->window.get(), "actionHideCompleted"));
    // Collapsed to the top level; the completed branch is gone.
    QCOMPARE(m_view->rows()->count(), 4);
    QVERIFY(!item(QStringLiteral("A"))->isExpanded());
    QVERIFY(run("actionHideCheckBox"));
    QVERIFY(!checked(m_f->window.get(), "actionHideNoStatus"));
    QCOMPARE(m_view->rows()->count(), 1);
}

void TestDocumentView::noteStoredOnSelectionChange()
{
    select(QStringLiteral("B"));
    QPlainTextEdit *editor = m_view->notePane()->plainEditor();
    QVERIFY(editor->isVisible());
    QTest::keyClicks(editor, QStringLiteral("Buy milk"));
    QVERIFY(item(QStringLiteral("B"))->note().isEmpty());
    select(QStringLiteral("C"));
    QCOMPARE(item(QStringLiteral("B"))->note(), NoteText::toPlainNote(QStringLiteral("Buy milk")));
    QCOMPARE(editor->toPlainText(), QString());
    select(QStringLiteral("B"));
    QCOMPARE(editor->toPlainText(), QStringLiteral("Buy milk"));
    // An untouched note is never rewritten.
    const QByteArray odd("\x41\x00\x42", 3);
    item(QStringLiteral("C"))->setNote(odd);
    select(QStringLiteral("C"));
    select(QStringLiteral("B"));
    QCOMPARE(item(QStringLiteral("C"))->note(), odd);
    // The root has no note: the pane greys.
    select(QStringLiteral("Root"));
    QVERIFY(!m_view->notePane()->isEnabled());
}

void TestDocumentView::recordingToolbarOnlyForRichInk()
{
    MainWindow *w = m_f->window.get();
    QVERIFY(!enabled(w, "actionRecordingToolbar"));
    for (quint16 type : {Document::RichText, Document::RichInk}) {
        auto doc = sampleDocument();
        doc->noteType = type;
        DocumentView *view = m_f->open(std::move(doc), QStringLiteral("notes.qbx"));
        QCOMPARE(enabled(w, "actionRecordingToolbar"), type == Document::RichInk);
        QVERIFY(view->notePane()->richEditor()->isVisibleTo(view));
    }
    QVERIFY(run("actionRecordingToolbar"));
    QVERIFY(checked(w, "actionRecordingToolbar"));
    // Without the note window the toolbar cannot be shown.
    QVERIFY(run("actionNoteWindow"));
    QVERIFY(!enabled(w, "actionRecordingToolbar"));
}

void TestDocumentView::splitterDragIsSaved()
{
    QSignalSpy saved(m_view, &DocumentView::settingsChanged);
    // A tall window stacks the panes: the first layout's value.
    QSplitter *splitter = m_view->splitter();
    QCOMPARE(splitter->orientation(), Qt::Vertical);
    const int total = splitter->sizes().value(0) + splitter->sizes().value(1);
    QVERIFY(qAbs(splitter->sizes().value(0) - total * 60 / 100) <= 1);
    QSplitterHandle *handle = splitter->handle(1);
    const QPoint middle = handle->rect().center();
    const QPoint to = middle + QPoint(0, -total / 5);
    QTest::mousePress(handle, Qt::LeftButton, {}, middle);
    QMouseEvent move(QEvent::MouseMove, QPointF(to), handle->mapToGlobal(QPointF(to)), Qt::NoButton, Qt::LeftButton,
                     {});
    QCoreApplication::sendEvent(handle, &move);
    QTest::mouseRelease(handle, Qt::LeftButton, {}, to);
    QVERIFY(saved.count() >= 1);
    QVERIFY2(m_f->window->settings().splitPct >= 35 && m_f->window->settings().splitPct <= 45,
             qPrintable(QString::number(m_f->window->settings().splitPct)));
    QCOMPARE(m_f->window->settings().splitPct7, quint16(60));
    // A wide window puts the panes side by side with the second layout's value.
    m_f->window->settings().splitPct7 = 70;
    m_f->window->resize(1400, 500);
    QCoreApplication::processEvents();
    QCOMPARE(splitter->orientation(), Qt::Horizontal);
    const int wide = splitter->sizes().value(0) + splitter->sizes().value(1);
    QVERIFY(qAbs(splitter->sizes().value(0) - wide * 70 / 100) <= 1);
}

void TestDocumentView::branchView()
{
    select(QStringLiteral("Root"));
    QVERIFY(!m_f->enabled("actionBranchView")); // the list title has no branch of its own
    select(QStringLiteral("A"));
    m_view->document()->viewMode = Document::ByPriority;
    QVERIFY(!m_f->enabled("actionBranchView"));
    m_view->document()->viewMode = Document::DefaultView;
    item(QStringLiteral("A"))->setExpanded(true);
    m_prompts->dialogs.enqueue([this](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        QCOMPARE(rowTexts(branch->rows()), (QStringList{"A", "-A1", "-A2"}));
        branch->treePane()->toggleRow(2);
        QCOMPARE(rowTexts(branch->rows()).size(), 4);
        // An edit made here shows in the main list too.
        branch->treePane()->setCurrentRow(1);
        QVERIFY(runIn(branch, "actionPriority1"));
        // The branch keeps a mark of its own: A1 moved under A2.
        QVERIFY(runIn(branch, "actionMarkMove"));
        branch->treePane()->setCurrentRow(2);
        QCOMPARE(branch->treePane()->currentNode(), item(QStringLiteral("A2")));
        QVERIFY(runIn(branch, "actionPaste"));
        press(d, QDialogButtonBox::Close);
    });
    QVERIFY(m_f->run("actionBranchView"));
    QCOMPARE(m_prompts->dialogsRun, QStringList{QStringLiteral("branchView")});
    QCOMPARE(item(QStringLiteral("A1"))->priority(), quint16(1));
    QCOMPARE(item(QStringLiteral("A1"))->parent(), item(QStringLiteral("A2")));
    QVERIFY(m_view->clip().isEmpty());
    QCOMPARE(m_f->current(), item(QStringLiteral("A")));
}

void TestDocumentView::branchViewClosesWhenItsBranchIsHidden()
{
    m_view->document()->hideCompleted = true;
    item(QStringLiteral("A"))->setAutoProgress(false);
    item(QStringLiteral("A"))->setExpanded(true);
    select(QStringLiteral("A"));
    bool stillOpen = true;
    m_prompts->dialogs.enqueue([&](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        // A child completed: the branch still shows.
        Q_EMIT branch->treePane()->statusTapped(item(QStringLiteral("A1")), QPoint());
        QVERIFY(d->isVisible());
        QCOMPARE(rowTexts(branch->rows()), (QStringList{"A", "-A2"}));
        // The top completed: nothing of the branch is left.
        Q_EMIT branch->treePane()->statusTapped(item(QStringLiteral("A")), QPoint());
        stillOpen = d->isVisible();
    });
    m_f->run("actionBranchView");
    QVERIFY(!stillOpen);
    QCOMPARE(m_f->shownTexts(), QStringList{QStringLiteral(
                                    "The whole branch is hidden due to progress value and/or status type changes.")});
    QCOMPARE(m_prompts->shown[0].icon, Prompts::Icon::Information);
    QCOMPARE(m_f->current(), m_view->document()->root()); // the nearest row still shown
}

void TestDocumentView::branchViewDeletes()
{
    m_view->clip().markCopy(item(QStringLiteral("A2a"))); // marked in the main list
    select(QStringLiteral("A"));
    item(QStringLiteral("A"))->setExpanded(true);
    m_prompts->dialogs.enqueue([&](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        branch->treePane()->setCurrentRow(2); // A2
        QVERIFY(runIn(branch, "actionDeleteItem"));
        QCOMPARE(rowTexts(branch->rows()), (QStringList{"A", "-A1"}));
        // Deleting the top itself ends the branch view.
        branch->treePane()->setCurrentRow(0);
        QVERIFY(runIn(branch, "actionDeleteItem"));
        QVERIFY(!d->isVisible());
    });
    m_f->run("actionBranchView");
    QCOMPARE(m_f->shownTexts(), (QStringList{QString::fromLatin1(Messages::AskDelete),
                                             QString::fromLatin1(Messages::AskDelete)}));
    QVERIFY(m_view->clip().isEmpty());
    QCOMPARE(childNames(m_view->document()->root()), (QStringList{"B", "C"}));
    QCOMPARE(m_f->current(), m_view->document()->root());
}

QTEST_MAIN(TestDocumentView)
#include "tst_documentview.moc"
