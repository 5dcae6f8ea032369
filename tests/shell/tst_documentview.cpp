#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "platform/messages.h"
#include "shell/document/branchview.h"
#include "shell/document/quickentrybar.h"
#include "support/shellfixture.h"
#include "views/viewrows.h"

// The tree pane, its item menu, the quick entry bar, the note pane and the branch view, worked as a person would,
// on Root > A (automatic: A1, A2 > A2a), B, C.
class TestDocumentView : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { m_f.reset(); }

private:
    Item *item(const char *name) const { return m_f->find(QString::fromLatin1(name)); }
    TreePane *tree() const { return m_f->view()->treePane(); }
    void select(const char *name) { m_f->select(qstrcmp(name, "Root") ? item(name) : m_f->document()->root()); }
    QPoint partOf(const char *name, int code) const
    {
        const RowGeometry g = tree()->rowGeometry(qstrcmp(name, "Root") ? m_f->view()->rows()->indexOf(item(name)) : 0);
        return (code == RowGeometry::Glyph    ? g.glyphRect()
                : code == RowGeometry::Status ? g.statusRect()
                                              : g.textRect())
            .center();
    }
    void click(const char *name, int code = RowGeometry::Text)
    {
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, partOf(name, code));
    }
    void openMenuOn(const char *name, const char *choice = nullptr)
    {
        select(name);
        if (choice)
            m_f->prompts.menuChoices.enqueue(QString::fromLatin1(choice));
        Q_EMIT tree()->contextMenuRequested(tree()->currentRow(), QPoint());
        QCoreApplication::processEvents(); // the chosen command runs queued
    }
    void drag(const char *from, const char *to);

    std::unique_ptr<ShellFixture> m_f;

private Q_SLOTS:
    void init()
    {
        m_f = std::make_unique<ShellFixture>();
        QVERIFY(m_f->open("A | auto\n  A1\n  A2\n    A2a\nB\nC\n"));
        m_f->window->resize(500, 760);
        m_f->window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_f->window.get()));
    }

    void tapsOnTheRowParts()
    {
        // The glyph opens and closes; a leaf's glyph column does nothing.
        click("A", RowGeometry::Glyph);
        click("B", RowGeometry::Glyph);
        QCOMPARE(m_f->view()->rows()->count(), 6);
        click("A", RowGeometry::Glyph);
        // A tap on the box ticks it and makes the item current; a tap on the text does not tick.
        click("C", RowGeometry::Status);
        QCOMPARE(item("C")->progress(), quint16(100));
        click("B");
        QVERIFY(m_f->current() == item("B") && item("B")->progress() == 0);
        // A progress bar offers presets; with completed items hidden, the nearest row becomes current.
        item("B")->setStatusType(Item::ProgressBar);
        m_f->document()->hideCompleted = true;
        m_f->select(item("B"));
        m_f->prompts.menuChoices << QStringLiteral("preset75") << QStringLiteral("preset100");
        click("B", RowGeometry::Status);
        QCOMPARE(item("B")->progress(), quint16(75));
        click("B", RowGeometry::Status);
        QCOMPARE(m_f->current(), item("A"));
    }

    void quickEntryBarAndRename()
    {
        // The item goes after the current one, with its priority and the bar's icon, and becomes current.
        QuickEntryBar *bar = m_f->view()->quickEntryBar();
        QLineEdit *edit = bar->textBox()->lineEdit();
        item("B")->setPriority(3);
        select("B");
        bar->setIcon(12);
        QTest::keyClicks(edit, QStringLiteral("After B"));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(m_f->names(), (QStringList{"A", "B", "After B", "C"}));
        QVERIFY(item("After B")->priority() == 3 && item("After B")->image() == 12);
        QCOMPARE(m_f->current(), item("After B"));
        // Rename and F2 edit the name in place, up to 95 characters; Escape keeps the old name.
        select("B");
        QVERIFY(m_f->run("actionRename"));
        QCOMPARE(tree()->renameEditor()->maxLength(), 95);
        QTest::keyClicks(tree()->renameEditor(), QStringLiteral("Banana"));
        QTest::keyClick(tree()->renameEditor(), Qt::Key_Return);
        QTest::keyClick(tree(), Qt::Key_F2);
        QTest::keyClicks(tree()->renameEditor(), QStringLiteral("Zzz"));
        QTest::keyClick(tree()->renameEditor(), Qt::Key_Escape);
        QCOMPARE(m_f->names(), (QStringList{"A", "Banana", "After B", "C"}));
        // The child and italic toggles put an italic item first among the current item's children, which open.
        select("A");
        bar->findChild<QToolButton *>(QStringLiteral("quickEntryChild"))->click();
        bar->findChild<QToolButton *>(QStringLiteral("quickEntryItalic"))->click();
        QTest::keyClicks(edit, QStringLiteral("first"));
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(item("A")->child(0) == item("first") && item("first")->isItalic() && item("A")->isExpanded());
        // With the root current the item goes last under the root; the box takes 63 characters.
        select("Root");
        QTest::keyClicks(edit, QString(70, QLatin1Char('x')));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(m_f->names().last(), QString(63, QLatin1Char('x')));
    }

    void commandsReachTheDocument()
    {
        // The item menu's marks show the item's own attributes and order.
        item("A")->setPriority(4);
        item("A")->setSort(TreeNode::SortPriority);
        openMenuOn("A");
        QVERIFY(m_f->prompts.lastMenu.value(QStringLiteral("actionPriority4")).checked);
        QVERIFY(m_f->prompts.lastMenu.value(QStringLiteral("actionOrderByPriority")).checked);
        QVERIFY(!m_f->prompts.lastMenu.value(QStringLiteral("actionPriority10")).checked);

        // Each command, from the item menu or the window, on the item it names; one effect each.
        m_f->prompts.icons.enqueue(42);
        const Document *doc = m_f->document();
        const struct {
            const char *on;
            const char *command;
            bool fromMenu;
            std::function<bool()> done;
        } commands[] = {
            {"B", "actionPriority6", true, [&] { return item("B")->priority() == 6; }},
            {"B", "actionColour12", true, [&] { return item("B")->colour() == 12; }},
            {"B", "actionShowIcon", true, [&] { return !item("B")->showIcon(); }},
            {"B", "actionItalicStyle", true, [&] { return item("B")->isItalic(); }},
            {"B", "actionProgressBar", true, [&] { return item("B")->statusType() == Item::ProgressBar; }},
            {"B", "actionChangeIcon", true, [&] { return item("B")->image() == 42; }},
            {"C", "actionCreateCopy", true,
             [&] {
                 return m_f->names() == QStringList{"A", "B", "C", "C"};
             }},
            {"A", "actionExpandAll", false, [&] { return m_f->view()->rows()->count() == 8; }},
            {"A", "actionCollapseAll", false, [&] { return m_f->view()->rows()->count() == 5; }},
            {"A", "actionMoveDown", false, [&] { return doc->root()->indexOf(item("A")) == 1; }},
            {"A", "actionDownALevel", false, [&] { return item("A")->parent() == item("B"); }},
            {"A", "actionUpALevel", false, [&] { return item("A")->parent() == doc->root(); }},
            {"A", "actionMarkMove", true, [&] { return !m_f->view()->clip().isEmpty(); }},
            {"C", "actionPaste", true, [&] { return item("A")->parent() == item("C"); }},
            {"Root", "actionOrderByName", true, [&] { return doc->root()->sort() == TreeNode::SortName; }},
            {"Root", "actionDescending", true,
             [&] {
                 return m_f->names() == QStringList{"C", "C", "B"};
             }},
            {"B", "actionHideCompleted", false, [&] { return doc->hideCompleted; }},
            {"B", "actionByCategory", false, [&] { return m_f->view()->rows()->isGrouped(); }},
            {"B", "actionDefaultView", false, [&] { return !m_f->view()->rows()->isGrouped(); }},
        };
        for (const auto &c : commands) {
            select(c.on);
            if (c.fromMenu)
                openMenuOn(c.on, c.command);
            else
                QVERIFY2(m_f->run(c.command), c.command);
            QVERIFY2(c.done(), c.command);
        }

        // Pasting a copy with children asks whether to take them; deleting asks, from the menu and with the Delete key.
        m_f->prompts.yesNo << false << false << true;
        openMenuOn("C", "actionMarkCopy");
        openMenuOn("B", "actionPaste");
        QVERIFY(!item("B")->child(0)->hasChildren());
        openMenuOn("B", "actionDeleteItem");
        QTest::keyClick(tree(), Qt::Key_Delete);
        QCOMPARE(m_f->names(), (QStringList{"C", "C"}));
        QCOMPARE(m_f->shownTexts(),
                 (QStringList{Messages::AskPasteChildren, Messages::AskDelete, Messages::AskDelete}));
    }

    void dragAndDrop()
    {
        // Which drops are refused is the core's rule; one refusal proves the pane asks it.
        QVERIFY(m_f->run("actionExpandAll"));
        drag("A", "A2a");
        QCOMPARE(m_f->names(), (QStringList{"A", "B", "C"}));
        // Onto another row: the dragged item becomes its last child, and is selected.
        drag("C", "A");
        QCOMPARE(m_f->names(item("A")), (QStringList{"A1", "A2", "C"}));
        QCOMPARE(m_f->current(), item("C"));
    }

    void noteStoredOnSelectionChange()
    {
        select("B");
        QPlainTextEdit *editor = m_f->view()->notePane()->plainEditor();
        QTest::keyClicks(editor, QStringLiteral("Buy milk"));
        QVERIFY(item("B")->note().isEmpty());
        select("C");
        QCOMPARE(item("B")->note(), NoteText::toPlainNote(QStringLiteral("Buy milk")));
        QCOMPARE(editor->toPlainText(), QString());
        // An untouched note is never rewritten.
        const QByteArray odd("\x41\x00\x42", 3);
        item("C")->setNote(odd);
        select("C");
        select("B");
        QCOMPARE(editor->toPlainText(), QStringLiteral("Buy milk"));
        QCOMPARE(item("C")->note(), odd);
        // The root has no note: the pane greys.
        select("Root");
        QVERIFY(!m_f->view()->notePane()->isEnabled());
    }

    void branchView()
    {
        select("Root");
        QVERIFY(!m_f->enabled("actionBranchView")); // the list title has no branch of its own
        item("A")->setExpanded(true);
        m_f->select(item("A"));
        m_f->view()->clip().markCopy(item("A2a")); // marked in the main list
        m_f->prompts.dialogs.enqueue([this](QDialog *d) {
            auto *branch = qobject_cast<BranchView *>(d);
            QCOMPARE(branch->rows()->count(), 3);
            // An edit made here reaches the document; the branch keeps a mark of its own.
            branch->treePane()->setCurrentRow(1);
            QVERIFY(runIn(branch, "actionPriority1"));
            QVERIFY(runIn(branch, "actionMarkMove"));
            branch->treePane()->setCurrentRow(2);
            QVERIFY(runIn(branch, "actionPaste"));
            QCOMPARE(item("A1")->parent(), item("A2"));
            QCOMPARE(item("A1")->priority(), quint16(1));
            branch->treePane()->setCurrentRow(1);
            QVERIFY(runIn(branch, "actionDeleteItem"));
            QCOMPARE(branch->rows()->count(), 1);
            // A tap that hides the whole branch closes it, with a word why.
            m_f->document()->hideCompleted = true;
            item("A")->setAutoProgress(false);
            Q_EMIT branch->treePane()->statusTapped(item("A"), QPoint());
            QVERIFY(!d->isVisible());
        });
        QVERIFY(m_f->run("actionBranchView"));
        QCOMPARE(m_f->shownTexts(),
                 (QStringList{Messages::AskDelete, "The whole branch is hidden due to progress value "
                                                   "and/or status type changes."}));
        QCOMPARE(m_f->prompts.shown[1].icon, Prompts::Icon::Information);
        QVERIFY(m_f->view()->clip().isEmpty()); // the marked item was deleted there
        QCOMPARE(m_f->current(), item("B"));    // the nearest row still shown
    }
};

void TestDocumentView::drag(const char *from, const char *to)
{
    QWidget *viewport = tree()->viewport();
    const QPoint start = partOf(from, RowGeometry::Text);
    const QPoint end = partOf(to, RowGeometry::Text);
    QTest::mousePress(viewport, Qt::LeftButton, {}, start);
    for (const QPoint &at : {start + QPoint(0, 6), end}) {
        QMouseEvent move(QEvent::MouseMove, at, viewport->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &move);
    }
    QVERIFY(tree()->isDragging());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, end);
}

QTEST_MAIN(TestDocumentView)
#include "tst_documentview.moc"
