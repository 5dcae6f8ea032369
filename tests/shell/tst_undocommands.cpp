#include "noteeditor/notepane.h"
#include "support/shellfixture.h"

#include <QPlainTextEdit>
#include <QtTest>

// The wiring of Undo and Redo: each command's changes reach the document's
// stack as one named step, and an undo shows the document as it was. What a
// step restores is the edit step's own suite.
class TestUndoCommands : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void commandsBecomeNamedSteps();
    void aNoteSessionIsOneStep();
};

void TestUndoCommands::commandsBecomeNamedSteps()
{
    ShellFixture f;
    auto doc = std::make_unique<Document>();
    add(add(doc->root(), QStringLiteral("A")), QStringLiteral("A1"));
    add(doc->root(), QStringLiteral("B"));
    QVERIFY(f.open(std::move(doc)));
    QVERIFY(!f.enabled("actionUndo"));
    QVERIFY(!f.enabled("actionRedo"));
    QCOMPARE(f.command("actionUndo")->shortcut(), QKeySequence(QKeySequence::Undo));
    QVERIFY(f.command("actionRedo")->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_Y)));

    f.select(f.at({0}));
    QVERIFY(f.run("actionDeleteItem"));
    QCOMPARE(f.document()->root()->childCount(), 1);
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Delete Item"));
    screenshot(f.window.get(), QStringLiteral("undo-toolbar"));
    QVERIFY(f.run("actionUndo"));
    QCOMPARE(f.at({0})->name(), QStringLiteral("A"));
    QCOMPARE(f.at({0, 0})->name(), QStringLiteral("A1"));
    QCOMPARE(f.current(), f.at({0}));
    QCOMPARE(f.command("actionRedo")->text(), QStringLiteral("Redo Delete Item"));
    QVERIFY(f.run("actionRedo"));
    QCOMPARE(f.document()->root()->childCount(), 1);
    QVERIFY(!f.enabled("actionRedo"));

    // A command of the item menu, and a rename in place.
    f.select(f.at({0}));
    QVERIFY(f.run("actionPriority3"));
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Set Priority"));
    Q_EMIT f.view()->treePane()->renameCommitted(f.at({0}), QStringLiteral("Renamed"));
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Rename"));
    // A save keeps the steps.
    QVERIFY(f.run("actionSave"));
    QVERIFY(f.run("actionUndo"));
    QCOMPARE(f.at({0})->name(), QStringLiteral("B"));
    QVERIFY(f.run("actionUndo"));
    QCOMPARE(f.at({0})->priority(), quint16(10));
    QVERIFY(f.view()->isModified());
}

void TestUndoCommands::aNoteSessionIsOneStep()
{
    ShellFixture f;
    auto doc = std::make_unique<Document>();
    add(doc->root(), QStringLiteral("A"));
    add(doc->root(), QStringLiteral("B"));
    QVERIFY(f.open(std::move(doc)));
    f.select(f.at({0}));
    QPlainTextEdit *editor = f.view()->notePane()->plainEditor();
    QTest::keyClicks(editor, QStringLiteral("typed"));
    QTest::keyClicks(editor, QStringLiteral(" more"));
    f.select(f.at({1}));
    QVERIFY(!f.at({0})->note().isEmpty());
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Edit Note"));
    QVERIFY(f.run("actionUndo"));
    QVERIFY(f.at({0})->note().isEmpty());
    QVERIFY(!f.enabled("actionUndo"));
    QCOMPARE(f.current(), f.at({0}));
    QVERIFY(f.view()->notePane()->plainText().isEmpty());
}

QTEST_MAIN(TestUndoCommands)
#include "tst_undocommands.moc"
