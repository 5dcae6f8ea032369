#include "model/document.h"
#include "model/item.h"
#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "platform/messages.h"
#include "shell/document/documentview.h"
#include "shell/document/quickentrybar.h"
#include "shell/document/treepane.h"
#include "storage/settings.h"
#include "support/scriptedprompts.h"
#include "support/shellfixture.h"
#include "views/viewrows.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
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
    auto *a = new Item(QStringLiteral("A"));
    a->setAutoProgress(true);
    auto *a2 = new Item(QStringLiteral("A2"));
    a2->appendChild(new Item(QStringLiteral("A2a")));
    a->appendChild(new Item(QStringLiteral("A1")));
    a->appendChild(a2);
    doc->root()->appendChild(a);
    doc->root()->appendChild(new Item(QStringLiteral("B")));
    doc->root()->appendChild(new Item(QStringLiteral("C")));
    return doc;
}

QStringList childNames(const TreeNode *node)
{
    QStringList names;
    for (const Item *child : node->children())
        names.append(child->name());
    return names;
}

} // namespace

class TestDocumentView : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void checkBoxTapRollsUp();
    void progressBarPresets();
    void glyphExpandsAndCollapses();
    void quickEntryBar();
    void renameInPlace();
    void itemMenuAttributes();
    void pasteThroughTheMenu();
    void dropRefusals();
    void deleteAsks();
    void menuOpensOnRightClickAndLongPress();
    void menuEnablingDefaultView_data();
    void menuEnablingDefaultView();
    void groupedViewThroughTheMenu();
    void moveMenuEnabling();
    void filtersCollapse();
    void noteStoredOnSelectionChange();
    void recordingToolbarOnlyForRichInk();
    void splitterDragIsSaved();

private:
    void select(const QString &name);
    Item *item(const QString &name) const;
    QPoint partOf(const QString &name, int code) const;
    void openMenuOn(const QString &name, const QString &choice = QString());
    void drag(const QString &from, const QPoint &to);

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
    QMouseEvent move(QEvent::MouseMove, QPointF(start + QPoint(0, 6)), viewport->mapToGlobal(QPointF(start)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(viewport, &move);
    QMouseEvent move2(QEvent::MouseMove, QPointF(to), viewport->mapToGlobal(QPointF(to)), Qt::NoButton, Qt::LeftButton,
                      {});
    QCoreApplication::sendEvent(viewport, &move2);
    QVERIFY(m_view->treePane()->isDragging());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
}

void TestDocumentView::checkBoxTapRollsUp()
{
    select(QStringLiteral("A"));
    m_view->treePane()->toggleRow(m_view->treePane()->currentRow());
    QWidget *viewport = m_view->treePane()->viewport();
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("A1"), RowGeometry::Status));
    QCOMPARE(item(QStringLiteral("A1"))->progress(), quint16(100));
    QCOMPARE(item(QStringLiteral("A"))->progress(), quint16(50));
    // The automatic parent ignores taps on its own box.
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("A"), RowGeometry::Status));
    QCOMPARE(item(QStringLiteral("A"))->progress(), quint16(50));
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("A2"), RowGeometry::Status));
    QCOMPARE(item(QStringLiteral("A"))->progress(), quint16(100));
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("A2")));
    // A tap on the text does not toggle.
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("A1"), RowGeometry::Text));
    QCOMPARE(item(QStringLiteral("A1"))->progress(), quint16(100));
}

void TestDocumentView::progressBarPresets()
{
    Item *b = item(QStringLiteral("B"));
    b->setStatusType(Item::ProgressBar);
    QWidget *viewport = m_view->treePane()->viewport();
    m_prompts->menuChoices.enqueue(QStringLiteral("preset75"));
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("B"), RowGeometry::Status));
    QCOMPARE(m_prompts->lastMenuTexts,
             QStringList({QStringLiteral("0%"), QStringLiteral("10%"), QStringLiteral("25%"), QStringLiteral("50%"),
                          QStringLiteral("75%"), QStringLiteral("90%"), QStringLiteral("100%")}));
    QCOMPARE(b->progress(), quint16(75));
    // With "Hide Completed Items" on, 100% hides the item and the nearest row becomes current.
    m_view->document()->hideCompleted = true;
    m_view->refresh(b);
    m_prompts->menuChoices.enqueue(QStringLiteral("preset100"));
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("B"), RowGeometry::Status));
    QCOMPARE(b->progress(), quint16(100));
    QCOMPARE(m_view->rows()->indexOf(b), -1);
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("C")));
}

void TestDocumentView::glyphExpandsAndCollapses()
{
    ViewRows *rows = m_view->rows();
    QCOMPARE(rows->count(), 4); // root, A, B, C
    QWidget *viewport = m_view->treePane()->viewport();
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("A"), RowGeometry::Glyph));
    QCOMPARE(rows->count(), 6);
    QVERIFY(item(QStringLiteral("A"))->isExpanded());
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("A"), RowGeometry::Glyph));
    QCOMPARE(rows->count(), 4);
    // A leaf's glyph column does nothing.
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("B"), RowGeometry::Glyph));
    QCOMPARE(rows->count(), 4);

    QVERIFY(run(m_f->window.get(), "actionExpandAll"));
    QCOMPARE(rows->count(), 7);
    QVERIFY(run(m_f->window.get(), "actionCollapseAll"));
    QCOMPARE(rows->count(), 4);
}

void TestDocumentView::quickEntryBar()
{
    QuickEntryBar *bar = m_view->quickEntryBar();
    QLineEdit *edit = bar->textBox()->lineEdit();
    Item *b = item(QStringLiteral("B"));
    b->setPriority(3);
    b->setColour(7);
    b->setStatusType(Item::ProgressBar);
    select(QStringLiteral("B"));
    bar->setIcon(12);
    QTest::keyClicks(edit, QStringLiteral("After B"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(childNames(m_view->document()->root()),
             QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("After B"), QStringLiteral("C")}));
    Item *added = item(QStringLiteral("After B"));
    QCOMPARE(added->priority(), quint16(3));
    QCOMPARE(added->colour(), quint16(7));
    QCOMPARE(added->statusType(), quint16(Item::ProgressBar));
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
    // The history ignores case.
    QCOMPARE(bar->history(), QStringList({QStringLiteral("After B")}));

    // With the root current the item goes last under the root, whatever the toggle.
    select(QStringLiteral("Root"));
    QTest::keyClicks(edit, QString(70, QLatin1Char('x')));
    QCOMPARE(edit->text().size(), 63);
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(childNames(m_view->document()->root()).last(), QString(63, QLatin1Char('x')));
    QCOMPARE(item(QString(63, QLatin1Char('x')))->priority(), quint16(10));
}

void TestDocumentView::renameInPlace()
{
    select(QStringLiteral("B"));
    QVERIFY(run(m_f->window.get(), "actionRename"));
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
    Item *copy = m_view->document()->root()->child(1);
    QCOMPARE(m_view->treePane()->currentNode(), copy);
    QVERIFY(!copy->hasChildren());
    QVERIFY(copy->autoProgress());

    // Order Children By name on the root, then back to manual order keeps the order.
    b->setName(QStringLiteral("0 first"));
    openMenuOn(QStringLiteral("Root"), QStringLiteral("actionOrderByName"));
    QCOMPARE(childNames(m_view->document()->root()).first(), QStringLiteral("0 first"));
    b->setName(QStringLiteral("z last"));
    openMenuOn(QStringLiteral("Root"), QStringLiteral("actionOrderManual"));
    QCOMPARE(m_view->document()->root()->sort(), quint16(TreeNode::SortManual));
    QCOMPARE(childNames(m_view->document()->root()).first(), QStringLiteral("z last"));
}

void TestDocumentView::pasteThroughTheMenu()
{
    QVERIFY(run(m_f->window.get(), "actionExpandAll"));
    const QString paste = QStringLiteral("actionPaste");
    // Nothing marked: Paste is greyed.
    openMenuOn(QStringLiteral("B"));
    QVERIFY(!m_prompts->lastMenu.value(paste).enabled);

    openMenuOn(QStringLiteral("A2"), QStringLiteral("actionMarkMove")); // Move
    openMenuOn(QStringLiteral("A"));                                    // its own parent
    QVERIFY(!m_prompts->lastMenu.value(paste).enabled);
    openMenuOn(QStringLiteral("A2a")); // inside the marked branch
    QVERIFY(!m_prompts->lastMenu.value(paste).enabled);
    openMenuOn(QStringLiteral("A2")); // the marked item itself
    QVERIFY(!m_prompts->lastMenu.value(paste).enabled);
    openMenuOn(QStringLiteral("B"), paste);
    QCOMPARE(childNames(item(QStringLiteral("B"))), QStringList({QStringLiteral("A2")}));
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("A2")));

    // Copy of an item with children asks; No pastes it alone.
    openMenuOn(QStringLiteral("A2"), QStringLiteral("actionMarkCopy"));
    m_prompts->yesNo.enqueue(false);
    openMenuOn(QStringLiteral("B"), paste);
    QCOMPARE(m_prompts->shown.last().text, QString::fromLatin1(Messages::AskPasteChildren));
    QCOMPARE(m_prompts->shown.last().icon, Prompts::Icon::Question);
    QCOMPARE(childNames(item(QStringLiteral("B"))), QStringList({QStringLiteral("A2"), QStringLiteral("A2")}));
    QVERIFY(!item(QStringLiteral("B"))->child(1)->hasChildren());
    // Yes takes the children.
    m_prompts->yesNo.enqueue(true);
    openMenuOn(QStringLiteral("C"), paste);
    QCOMPARE(childNames(item(QStringLiteral("C"))->child(0)), QStringList({QStringLiteral("A2a")}));
}

void TestDocumentView::dropRefusals()
{
    QVERIFY(run(m_f->window.get(), "actionExpandAll"));
    const QStringList before = childNames(m_view->document()->root());
    // Onto its own descendant: ignored.
    drag(QStringLiteral("A"), partOf(QStringLiteral("A2a"), RowGeometry::Text));
    QCOMPARE(childNames(m_view->document()->root()), before);
    QCOMPARE(item(QStringLiteral("A2a"))->parent(), item(QStringLiteral("A2")));
    // Onto itself: ignored.
    drag(QStringLiteral("B"), partOf(QStringLiteral("B"), RowGeometry::Icon));
    QCOMPARE(childNames(m_view->document()->root()), before);
    // Below the last row, onto nothing: ignored.
    drag(QStringLiteral("B"), QPoint(100, m_view->treePane()->viewport()->height() - 5));
    QCOMPARE(childNames(m_view->document()->root()), before);
    // Onto another row: the dragged item becomes its last child, and is selected.
    drag(QStringLiteral("C"), partOf(QStringLiteral("A"), RowGeometry::Text));
    QCOMPARE(childNames(item(QStringLiteral("A"))),
             QStringList({QStringLiteral("A1"), QStringLiteral("A2"), QStringLiteral("C")}));
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("C")));
    // Onto its own parent: allowed, it goes last.
    drag(QStringLiteral("A1"), partOf(QStringLiteral("A"), RowGeometry::Text));
    QCOMPARE(childNames(item(QStringLiteral("A"))),
             QStringList({QStringLiteral("A2"), QStringLiteral("C"), QStringLiteral("A1")}));
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
    m_prompts->menuChoices.enqueue(QStringLiteral("actionPriority4")); // priority 4
    QTest::mousePress(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("C"), RowGeometry::Text));
    QTRY_VERIFY(!m_prompts->lastMenuTexts.isEmpty());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("C"), RowGeometry::Text));
    QTRY_COMPARE(item(QStringLiteral("C"))->priority(), quint16(4));
    // A short tap opens nothing.
    m_prompts->lastMenuTexts.clear();
    QTest::mouseClick(viewport, Qt::LeftButton, {}, partOf(QStringLiteral("B"), RowGeometry::Text));
    QTest::qWait(900);
    QVERIFY(m_prompts->lastMenuTexts.isEmpty());
}

void TestDocumentView::menuEnablingDefaultView_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QStringList>("enabled");
    QTest::addColumn<QStringList>("greyed");
    QTest::addColumn<QStringList>("checked");
    // Item with children (A: sorted by priority, descending, priority 4, colour 9, italic, progress bar).
    QTest::newRow("item with children")
        << QStringLiteral("A")
        << QStringList{"actionRename",      "actionPriority4",   "actionChangeIcon",  "actionColour9",
                       "actionShowIcon",    "actionItalicStyle", "actionProgressBar", "actionApplyAttributes",
                       "actionOrderByName", "actionOrderManual", "actionAscending",   "actionDescending",
                       "actionCreateCopy",  "actionMarkMove",    "actionMarkCopy",    "actionDeleteItem",
                       "actionCreateTask",  "actionCreateAppointment"}
        << QStringList{"actionPaste"}
        << QStringList{"actionPriority4",   "actionColour9",         "actionShowIcon",  "actionItalicStyle",
                       "actionProgressBar", "actionOrderByPriority", "actionDescending"};
    // A leaf: no ordering of children and nothing to apply attributes to.
    QTest::newRow("leaf") << QStringLiteral("B")
                          << QStringList{"actionRename", "actionPriority10", "actionCheckBox", "actionCreateCopy",
                                         "actionDeleteItem"}
                          << QStringList{"actionApplyAttributes", "actionOrderByName", "actionOrderManual",
                                         "actionAscending",       "actionDescending",  "actionPaste"}
                          << QStringList{"actionPriority10", "actionColour0", "actionShowIcon", "actionCheckBox",
                                         "actionOrderManual"};
    // The root's title row: only rename, apply attributes and ordering.
    QTest::newRow("root") << QStringLiteral("Root")
                          << QStringList{"actionRename", "actionApplyAttributes", "actionOrderByName",
                                         "actionOrderManual"}
                          << QStringList{"actionPriority10", "actionChangeIcon", "actionColour0",   "actionShowIcon",
                                         "actionNoStatus",   "actionCreateCopy", "actionMarkMove",  "actionMarkCopy",
                                         "actionPaste",      "actionDeleteItem", "actionAscending", "actionDescending"}
                          << QStringList{"actionOrderManual"};
}

void TestDocumentView::menuEnablingDefaultView()
{
    QFETCH(QString, row);
    QFETCH(QStringList, enabled);
    QFETCH(QStringList, greyed);
    QFETCH(QStringList, checked);
    Item *a = item(QStringLiteral("A"));
    a->setPriority(4);
    a->setColour(9);
    a->setItalic(true);
    a->setStatusType(Item::ProgressBar);
    a->setSort(TreeNode::SortPriority);
    a->setAscending(false);
    openMenuOn(row);
    QCOMPARE(m_prompts->lastMenuTexts,
             QStringList({"Rename", "Priority", "Change Icon...", "Colour", "Set", "-", "Apply Attributes...",
                          "Order Children By", "Create", "-", "Move", "Copy", "Paste", "-", "Delete Item", "-",
                          "Undo", "Redo"}));
    const auto &menu = m_prompts->lastMenu;
    QCOMPARE(menu.size(), 20 + 36 + 5 + 9 + 3 + 7 + 2);
    for (const QString &name : enabled)
        QVERIFY2(menu.value(name).enabled, qPrintable(name));
    for (const QString &name : greyed)
        QVERIFY2(!menu.value(name).enabled, qPrintable(name));
    int marks = 0;
    for (auto it = menu.cbegin(); it != menu.cend(); ++it)
        marks += it->checked;
    QCOMPARE(marks, checked.size());
    for (const QString &name : checked)
        QVERIFY2(menu.value(name).checked, qPrintable(name));
    QCOMPARE(menu.value(QStringLiteral("actionPriority11")).text, QStringLiteral("11"));
}

void TestDocumentView::groupedViewThroughTheMenu()
{
    item(QStringLiteral("B"))->setCategory(QStringLiteral("Work"));
    select(QStringLiteral("B"));
    QVERIFY(run(m_f->window.get(), "actionByCategory"));
    QVERIFY(checked(m_f->window.get(), "actionByCategory"));
    ViewRows *rows = m_view->rows();
    QVERIFY(rows->isGrouped());
    // The current item stays current, under its opened heading.
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("B")));
    const int heading = rows->parentIndex(m_view->treePane()->currentRow());
    QCOMPARE(rows->row(heading).kind, ViewRows::Kind::Heading);
    QCOMPARE(rows->text(heading), QStringLiteral("Work"));

    // An item row of a grouped view cannot be moved or ordered.
    openMenuOn(QStringLiteral("B"));
    for (const char *greyed : {"actionOrderByName", "actionMarkMove", "actionPaste"})
        QVERIFY2(!m_prompts->lastMenu.value(QString::fromLatin1(greyed)).enabled, greyed);
    for (const char *enabled : {"actionRename", "actionDeleteItem"})
        QVERIFY2(m_prompts->lastMenu.value(QString::fromLatin1(enabled)).enabled, enabled);

    // A heading orders the whole view: only the direction can be chosen.
    m_prompts->menuChoices.enqueue(QStringLiteral("actionDescending"));
    Q_EMIT m_view->treePane()->contextMenuRequested(heading, QPoint());
    QCoreApplication::processEvents();
    QVERIFY(!m_prompts->lastMenu.value(QStringLiteral("actionOrderByName")).enabled);
    QVERIFY(!m_prompts->lastMenu.value(QStringLiteral("actionRename")).enabled);
    QVERIFY(!m_view->document()->viewAscending);

    // Drops are ignored in a grouped view.
    QVERIFY(run(m_f->window.get(), "actionExpandAll"));
    QVERIFY(m_view->rows()->indexOf(item(QStringLiteral("C"))) >= 0);
    const QStringList before = childNames(m_view->document()->root());
    drag(QStringLiteral("B"), partOf(QStringLiteral("C"), RowGeometry::Text));
    QCOMPARE(childNames(m_view->document()->root()), before);

    // Back to the default view with the item still current.
    QVERIFY(run(m_f->window.get(), "actionDefaultView"));
    QVERIFY(!m_view->rows()->isGrouped());
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("B")));
}

void TestDocumentView::moveMenuEnabling()
{
    MainWindow *w = m_f->window.get();
    QVERIFY(run(w, "actionExpandAll"));
    auto states = [w] {
        return QList<bool>{enabled(w, "actionMoveUp"), enabled(w, "actionMoveDown"), enabled(w, "actionUpALevel"),
                           enabled(w, "actionDownALevel")};
    };
    // The rules are the core's; each action follows its own.
    select(QStringLiteral("A2"));
    QCOMPARE(states(), QList<bool>({true, false, true, true}));
    select(QStringLiteral("B"));
    QVERIFY(run(w, "actionDownALevel"));
    QCOMPARE(childNames(item(QStringLiteral("A"))),
             QStringList({QStringLiteral("A1"), QStringLiteral("A2"), QStringLiteral("B")}));
    QCOMPARE(m_view->treePane()->currentNode(), item(QStringLiteral("B")));
    // A grouped view greys the whole move menu.
    m_view->document()->viewMode = Document::ByCategory;
    QCOMPARE(states(), QList<bool>({false, false, false, false}));
    QVERIFY(!run(w, "actionMoveUp"));
}

void TestDocumentView::filtersCollapse()
{
    QVERIFY(run(m_f->window.get(), "actionExpandAll"));
    item(QStringLiteral("A2"))->setProgress(100);
    select(QStringLiteral("A2a"));
    QVERIFY(run(m_f->window.get(), "actionHideCompleted"));
    QVERIFY(checked(m_f->window.get(), "actionHideCompleted"));
    // Collapsed to the top level; the completed branch is gone.
    QCOMPARE(m_view->rows()->count(), 4);
    QVERIFY(!item(QStringLiteral("A"))->isExpanded());
    QVERIFY(run(m_f->window.get(), "actionHideCheckBox"));
    QVERIFY(checked(m_f->window.get(), "actionHideCheckBox"));
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
    QVERIFY(!enabled(m_f->window.get(), "actionRecordingToolbar"));
    QVERIFY(!run(m_f->window.get(), "actionRecordingToolbar"));
    for (quint16 type : {Document::RichInk, Document::RichText}) {
        auto doc = sampleDocument();
        doc->noteType = type;
        DocumentView *view = m_f->open(std::move(doc), QStringLiteral("notes.qbx"));
        QCOMPARE(enabled(m_f->window.get(), "actionRecordingToolbar"), type == Document::RichInk);
        QVERIFY(view->notePane()->richEditor()->isVisibleTo(view));
        if (type == Document::RichInk) {
            QVERIFY(run(m_f->window.get(), "actionRecordingToolbar"));
            QVERIFY(checked(m_f->window.get(), "actionRecordingToolbar"));
            // Without the note window the toolbar cannot be shown.
            QVERIFY(run(m_f->window.get(), "actionNoteWindow"));
            QVERIFY(!enabled(m_f->window.get(), "actionRecordingToolbar"));
        }
    }
}

void TestDocumentView::splitterDragIsSaved()
{
    QSignalSpy saved(m_view, &DocumentView::settingsChanged);
    // A tall window stacks the panes: the first layout's value.
    QSplitter *splitter = m_view->splitter();
    QCOMPARE(splitter->orientation(), Qt::Vertical);
    QCOMPARE(splitter->handleWidth(), 7);
    const int total = splitter->sizes().value(0) + splitter->sizes().value(1);
    QVERIFY(qAbs(splitter->sizes().value(0) - total * 60 / 100) <= 1);
    QSplitterHandle *handle = splitter->handle(1);
    const QPoint middle = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, middle);
    QMouseEvent move(QEvent::MouseMove, QPointF(middle + QPoint(0, -total / 5)),
                     handle->mapToGlobal(QPointF(middle + QPoint(0, -total / 5))), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(handle, &move);
    QTest::mouseRelease(handle, Qt::LeftButton, {}, middle + QPoint(0, -total / 5));
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

QTEST_MAIN(TestDocumentView)
#include "tst_documentview.moc"
