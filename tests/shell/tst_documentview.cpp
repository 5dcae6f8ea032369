#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "platform/messages.h"
#include "shell/document/branchview.h"
#include "shell/document/quickentrybar.h"
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
#include <QToolButton>

namespace {

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

// The tree pane, its item menu, the quick entry bar, the note pane and the branch view, worked as a person would,
// on Root > A (automatic: A1, A2 > A2a), B, C.
class TestDocumentView : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup() { m_f.reset(); }
    void tapsOnTheRowParts();
    void quickEntryBar();
    void renameInPlace();
    void itemMenuCommands();
    void menuOpensOnRightClickAndLongPress();
    void dragAndDrop();
    void viewCommands();
    void noteStoredOnSelectionChange();
    void splitterDragIsSaved();
    void branchView();

private:
    Item *item(const QString &name) const;
    void select(const QString &name);
    QPoint partOf(const QString &name, int code) const;
    void click(const QString &name, int code)
    {
        QTest::mouseClick(m_view->treePane()->viewport(), Qt::LeftButton, {}, partOf(name, code));
    }
    void openMenuOn(const QString &name, const QString &choice = QString());
    void drag(const QString &from, const QPoint &to);
    bool run(const char *name) { return m_f->run(name); }
    TreeNode *current() const { return m_f->current(); }

    std::unique_ptr<ShellFixture> m_f;
    ScriptedPrompts *m_prompts = nullptr;
    DocumentView *m_view = nullptr;
};

void TestDocumentView::init()
{
    m_f = std::make_unique<ShellFixture>();
    m_prompts = &m_f->prompts;
    auto doc = std::make_unique<Document>();
    Item *a = add(doc->root(), QStringLiteral("A"));
    a->setAutoProgress(true);
    add(a, QStringLiteral("A1"));
    add(add(a, QStringLiteral("A2")), QStringLiteral("A2a"));
    add(doc->root(), QStringLiteral("B"));
    add(doc->root(), QStringLiteral("C"));
    m_view = m_f->open(std::move(doc));
    QVERIFY(m_view);
    m_f->window->resize(500, 760);
    m_f->window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_f->window.get()));
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
    if (name == QLatin1String("Root"))
        m_view->treePane()->setCurrentRow(0);
    else
        QVERIFY2(m_view->treePane()->setCurrentNode(item(name)), qPrintable(name));
}

QPoint TestDocumentView::partOf(const QString &name, int code) const
{
    const int row = name == QLatin1String("Root") ? 0 : m_view->rows()->indexOf(item(name));
    const RowGeometry g = m_view->treePane()->rowGeometry(row);
    return (code == RowGeometry::Glyph    ? g.glyphRect()
            : code == RowGeometry::Status ? g.statusRect()
                                          : g.textRect())
        .center();
}

void TestDocumentView::openMenuOn(const QString &name, const QString &choice)
{
    select(name);
    if (!choice.isNull())
        m_prompts->menuChoices.enqueue(choice);
    Q_EMIT m_view->treePane()->contextMenuRequested(m_view->treePane()->currentRow(), QPoint());
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

void TestDocumentView::tapsOnTheRowParts()
{
    // The glyph opens and closes; a leaf's glyph column does nothing.
    ViewRows *rows = m_view->rows();
    click(QStringLiteral("A"), RowGeometry::Glyph);
    QCOMPARE(rows->count(), 6);
    click(QStringLiteral("A"), RowGeometry::Glyph);
    click(QStringLiteral("B"), RowGeometry::Glyph);
    QCOMPARE(rows->count(), 4);
    click(QStringLiteral("A"), RowGeometry::Glyph);
    // A tap on the box ticks it and makes the item current; a tap on the text does not tick.
    click(QStringLiteral("A2"), RowGeometry::Status);
    QCOMPARE(item(QStringLiteral("A2"))->progress(), quint16(100));
    QCOMPARE(current(), item(QStringLiteral("A2")));
    click(QStringLiteral("A1"), RowGeometry::Text);
    QCOMPARE(item(QStringLiteral("A1"))->progress(), quint16(0));
    // A progress bar offers presets; with completed items hidden, the nearest row becomes current.
    Item *b = item(QStringLiteral("B"));
    b->setStatusType(Item::ProgressBar);
    m_view->document()->hideCompleted = true;
    m_view->refresh(b);
    m_prompts->menuChoices << QStringLiteral("preset75") << QStringLiteral("preset100");
    click(QStringLiteral("B"), RowGeometry::Status);
    QCOMPARE(b->progress(), quint16(75));
    click(QStringLiteral("B"), RowGeometry::Status);
    QCOMPARE(m_view->rows()->indexOf(b), -1);
    QCOMPARE(current(), item(QStringLiteral("C")));
}

void TestDocumentView::quickEntryBar()
{
    // The item goes after the current one, with its priority and the bar's icon.
    QuickEntryBar *bar = m_view->quickEntryBar();
    QLineEdit *edit = bar->textBox()->lineEdit();
    item(QStringLiteral("B"))->setPriority(3);
    select(QStringLiteral("B"));
    bar->setIcon(12);
    QTest::keyClicks(edit, QStringLiteral("After B"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(childNames(m_view->document()->root()), (QStringList{"A", "B", "After B", "C"}));
    Item *added = item(QStringLiteral("After B"));
    QCOMPARE(added->priority(), quint16(3));
    QCOMPARE(added->image(), quint16(12));
    QCOMPARE(current(), added);
    QCOMPARE(edit->text(), QString());
    // The child toggle puts the item first among the current item's children; the italic toggle sets its style.
    select(QStringLiteral("A"));
    bar->findChild<QToolButton *>(QStringLiteral("quickEntryChild"))->click();
    bar->findChild<QToolButton *>(QStringLiteral("quickEntryItalic"))->click();
    QTest::keyClicks(edit, QStringLiteral("after b"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(childNames(item(QStringLiteral("A"))).first(), QStringLiteral("after b"));
    QVERIFY(item(QStringLiteral("after b"))->isItalic() && item(QStringLiteral("A"))->isExpanded());
    QCOMPARE(bar->history(), QStringList{"After B"});
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
    QCOMPARE(editor->maxLength(), 95);
    QCOMPARE(editor->selectedText(), QStringLiteral("B"));
    QTest::keyClicks(editor, QStringLiteral("Banana"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(item(QStringLiteral("Banana")), current());
    // F2 renames too; Escape keeps the old name.
    QTest::keyClick(m_view->treePane(), Qt::Key_F2);
    QTest::keyClicks(m_view->treePane()->renameEditor(), QStringLiteral("Zzz"));
    QTest::keyClick(m_view->treePane()->renameEditor(), Qt::Key_Escape);
    QVERIFY(item(QStringLiteral("Banana")) && !item(QStringLiteral("Zzz")));
}

void TestDocumentView::itemMenuCommands()
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

    Item *b = item(QStringLiteral("B"));
    m_prompts->icons.enqueue(42);
    for (const char *action : {"actionPriority6", "actionColour12", "actionShowIcon", "actionItalicStyle",
                               "actionProgressBar", "actionChangeIcon"})
        openMenuOn(QStringLiteral("B"), QString::fromLatin1(action));
    QCOMPARE(b->priority(), quint16(6));
    QCOMPARE(b->colour(), quint16(12));
    QVERIFY(!b->showIcon() && b->isItalic());
    QCOMPARE(b->statusType(), quint16(Item::ProgressBar));
    QCOMPARE(b->image(), quint16(42));
    // Order Children By Name on the root.
    b->setName(QStringLiteral("0 first"));
    openMenuOn(QStringLiteral("Root"), QStringLiteral("actionOrderByName"));
    QCOMPARE(childNames(m_view->document()->root()), (QStringList{"0 first", "A", "C"}));

    // Mark to move, then paste: the item becomes the target's child, current.
    QVERIFY(run("actionExpandAll"));
    openMenuOn(QStringLiteral("A2"), QStringLiteral("actionMarkMove"));
    openMenuOn(QStringLiteral("C"), QStringLiteral("actionPaste"));
    QCOMPARE(childNames(item(QStringLiteral("C"))), QStringList{"A2"});
    QCOMPARE(current(), item(QStringLiteral("A2")));
    // Pasting a copy with children asks; No pastes it alone.
    openMenuOn(QStringLiteral("A2"), QStringLiteral("actionMarkCopy"));
    m_prompts->yesNo.enqueue(false);
    openMenuOn(QStringLiteral("A1"), QStringLiteral("actionPaste"));
    QCOMPARE(m_prompts->shown.last().text, QString::fromLatin1(Messages::AskPasteChildren));
    QVERIFY(!item(QStringLiteral("A1"))->child(0)->hasChildren());
    // Create > Copy puts a duplicate right after the item.
    openMenuOn(QStringLiteral("C"), QStringLiteral("actionCreateCopy"));
    QCOMPARE(childNames(m_view->document()->root()), (QStringList{"0 first", "A", "C", "C"}));

    // Delete asks; so does the Delete key.
    m_prompts->yesNo << false << true;
    openMenuOn(QStringLiteral("A"), QStringLiteral("actionDeleteItem"));
    QCOMPARE(m_prompts->shown.last().text, QString::fromLatin1(Messages::AskDelete));
    QVERIFY(item(QStringLiteral("A")));
    openMenuOn(QStringLiteral("A"), QStringLiteral("actionDeleteItem"));
    QVERIFY(!item(QStringLiteral("A")));
    QCOMPARE(current(), m_view->document()->root());
    select(QStringLiteral("0 first"));
    QTest::keyClick(m_view->treePane(), Qt::Key_Delete);
    QCOMPARE(childNames(m_view->document()->root()), (QStringList{"C", "C"}));
}

void TestDocumentView::menuOpensOnRightClickAndLongPress()
{
    QWidget *viewport = m_view->treePane()->viewport();
    const QPoint onB = partOf(QStringLiteral("B"), RowGeometry::Text);
    QContextMenuEvent rightClick(QContextMenuEvent::Mouse, onB, viewport->mapToGlobal(onB));
    QCoreApplication::sendEvent(viewport, &rightClick);
    QCOMPARE(m_prompts->lastMenuTexts.value(0), QStringLiteral("Rename"));
    QCOMPARE(current(), item(QStringLiteral("B")));

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

void TestDocumentView::dragAndDrop()
{
    // Which drops are refused is the core's rule; one refusal proves the pane asks it.
    QVERIFY(run("actionExpandAll"));
    const QStringList before = childNames(m_view->document()->root());
    drag(QStringLiteral("A"), partOf(QStringLiteral("A2a"), RowGeometry::Text));
    QCOMPARE(childNames(m_view->document()->root()), before);
    // Onto another row: the dragged item becomes its last child, and is selected.
    drag(QStringLiteral("C"), partOf(QStringLiteral("A"), RowGeometry::Text));
    QCOMPARE(childNames(item(QStringLiteral("A"))), (QStringList{"A1", "A2", "C"}));
    QCOMPARE(current(), item(QStringLiteral("C")));
    // A grouped view ignores drops.
    QVERIFY(run("actionByCategory"));
    QVERIFY(run("actionExpandAll"));
    drag(QStringLiteral("B"), partOf(QStringLiteral("A"), RowGeometry::Text));
    QCOMPARE(childNames(m_view->document()->root()), (QStringList{"A", "B"}));
}

void TestDocumentView::viewCommands()
{
    // A grouped view keeps the current item current, under its opened heading, and greys the moves.
    item(QStringLiteral("B"))->setCategory(QStringLiteral("Work"));
    select(QStringLiteral("B"));
    QVERIFY(run("actionByCategory"));
    QVERIFY(checked(m_f->window.get(), "actionByCategory"));
    QCOMPARE(current(), item(QStringLiteral("B")));
    const int heading = m_view->rows()->parentIndex(m_view->treePane()->currentRow());
    QCOMPARE(m_view->rows()->text(heading), QStringLiteral("Work"));
    QVERIFY(!m_f->enabled("actionMoveUp"));
    // A heading's menu orders the whole view.
    m_prompts->menuChoices.enqueue(QStringLiteral("actionDescending"));
    Q_EMIT m_view->treePane()->contextMenuRequested(heading, QPoint());
    QCoreApplication::processEvents();
    QVERIFY(!m_view->document()->viewAscending);
    QVERIFY(run("actionDefaultView"));
    QVERIFY(!m_view->rows()->isGrouped());
    QCOMPARE(current(), item(QStringLiteral("B")));

    QVERIFY(run("actionExpandAll"));
    QCOMPARE(m_view->rows()->count(), 7);
    QVERIFY(run("actionCollapseAll"));
    QCOMPARE(m_view->rows()->count(), 4);
    // The filters collapse the list to its top level.
    QVERIFY(run("actionExpandAll"));
    item(QStringLiteral("A2"))->setProgress(100);
    QVERIFY(run("actionHideCompleted"));
    QCOMPARE(m_view->rows()->count(), 4);
    QVERIFY(run("actionHideCheckBox"));
    QCOMPARE(m_view->rows()->count(), 1);

    // The recording toolbar is for rich ink notes only, and needs the note window.
    QVERIFY(!m_f->enabled("actionRecordingToolbar"));
    auto doc = std::make_unique<Document>();
    doc->noteType = Document::RichInk;
    add(doc->root(), QStringLiteral("Sketch"));
    QVERIFY(m_f->open(std::move(doc), QStringLiteral("ink.qbx")));
    QVERIFY(run("actionRecordingToolbar"));
    QVERIFY(checked(m_f->window.get(), "actionRecordingToolbar"));
    QVERIFY(run("actionNoteWindow"));
    QVERIFY(!m_f->enabled("actionRecordingToolbar"));
}

void TestDocumentView::noteStoredOnSelectionChange()
{
    select(QStringLiteral("B"));
    QPlainTextEdit *editor = m_view->notePane()->plainEditor();
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

void TestDocumentView::splitterDragIsSaved()
{
    // A tall window stacks the panes at the first layout's share; a drag is saved there.
    QSignalSpy saved(m_view, &DocumentView::settingsChanged);
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
    const Settings &settings = m_f->window->settings();
    QVERIFY2(settings.splitPct >= 35 && settings.splitPct <= 45, qPrintable(QString::number(settings.splitPct)));
    QCOMPARE(settings.splitPct7, quint16(60));
    // A wide window puts the panes side by side at the second layout's share.
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
    // A tap that hides the whole branch closes it, with a word why.
    m_view->document()->hideCompleted = true;
    item(QStringLiteral("A"))->setExpanded(true);
    m_view->refresh(item(QStringLiteral("A2")));
    bool stillOpen = true;
    m_prompts->dialogs.enqueue([&](QDialog *d) {
        Q_EMIT qobject_cast<BranchView *>(d)->treePane()->statusTapped(item(QStringLiteral("A2")), QPoint());
        stillOpen = d->isVisible();
    });
    QVERIFY(m_f->run("actionBranchView"));
    QVERIFY(!stillOpen);
    QCOMPARE(m_f->shownTexts(),
             QStringList{"The whole branch is hidden due to progress value and/or status type changes."});
    QCOMPARE(m_prompts->shown[0].icon, Prompts::Icon::Information);

    m_prompts->shown.clear();
    m_view->document()->hideCompleted = false;
    m_view->refresh(item(QStringLiteral("A")));
    m_view->clip().markCopy(item(QStringLiteral("A2a"))); // marked in the main list
    m_prompts->dialogs.enqueue([this](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        QCOMPARE(rowTexts(branch->rows()), (QStringList{"A", "-A1", "-A2"}));
        // An edit made here reaches the document; the branch keeps a mark of its own.
        branch->treePane()->setCurrentRow(1);
        QVERIFY(runIn(branch, "actionPriority1"));
        QCOMPARE(item(QStringLiteral("A1"))->priority(), quint16(1));
        QVERIFY(runIn(branch, "actionMarkMove"));
        branch->treePane()->setCurrentRow(2);
        QVERIFY(runIn(branch, "actionPaste"));
        QCOMPARE(item(QStringLiteral("A1"))->parent(), item(QStringLiteral("A2")));
        branch->treePane()->setCurrentRow(1);
        QVERIFY(runIn(branch, "actionDeleteItem"));
        QCOMPARE(rowTexts(branch->rows()), QStringList{"A"});
        press(d, QDialogButtonBox::Close);
    });
    QVERIFY(m_f->run("actionBranchView"));
    QCOMPARE(m_prompts->dialogsRun, (QStringList{"branchView", "branchView"}));
    QCOMPARE(m_f->shownTexts(), QStringList{Messages::AskDelete});
    QVERIFY(m_view->clip().isEmpty()); // the marked item was deleted there
    QCOMPARE(current(), item(QStringLiteral("A")));
}

QTEST_MAIN(TestDocumentView)
#include "tst_documentview.moc"
