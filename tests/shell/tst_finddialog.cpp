#include "support/shellfixture.h"

#include "model/editing.h"
#include "notes/notetext.h"
#include "shell/dialogs/finddialog.h"
#include "shell/dialogs/searchresultsdialog.h"
#include "shell/widgets/colourcombo.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QTreeWidget>

class TestFindDialog : public QObject {
    Q_OBJECT

private:
    // Root > Xabcx (P3, Work, due 2024-05-10 15:00, note "Call the bank", done)
    //          > ABC child (P3, Home, colour 4, italic)
    //      > abacus (P1, work, due 2024-05-11)
    //      > Plain (P10, started 50%, note "bank holiday")
    std::unique_ptr<Document> sample()
    {
        auto document = std::make_unique<Document>();
        Item *x = add(document->root(), QStringLiteral("Xabcx"));
        x->setPriority(3);
        x->setCategory(document->collectCategory(QStringLiteral("Work")));
        x->setDueDate({2024, 5, 5, 10, 15, 0, 0, 0});
        x->setNote(NoteText::toPlainNote(QStringLiteral("Call the bank")));
        x->storeProgress(100);
        Item *c = add(x, QStringLiteral("ABC child"));
        c->setPriority(3);
        c->setCategory(document->collectCategory(QStringLiteral("Home")));
        c->setColour(4);
        c->setItalic(true);
        Item *a = add(document->root(), QStringLiteral("abacus"));
        a->setPriority(1);
        a->setCategory(document->collectCategory(QStringLiteral("work")));
        a->setDueDate({2024, 5, 6, 11, 0, 0, 0, 0});
        Item *p = add(document->root(), QStringLiteral("Plain"));
        p->storeProgress(50);
        p->setNote(NoteText::toPlainNote(QStringLiteral("bank holiday")));
        return document;
    }

    static QStringList rows(QDialog *d)
    {
        QStringList names;
        auto *list = child<QTreeWidget>(d, "resultList");
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            names.append(list->topLevelItem(i)->text(0));
        return names;
    }

private Q_SLOTS:
    void widgetsMapToTheCriteria();
    void hiddenItemsAreLeftOut();
    void chosenResultBecomesCurrent();
    void findResultIsOfferedWhileAResultIsKept();
    void criteriaPresetTheNextFind();
};

void TestFindDialog::widgetsMapToTheCriteria()
{
    // Which items match is the finder's rule; the dialog only fills the criteria.
    FindDialog dialog(FindCriteria(), {QStringLiteral("Work"), QStringLiteral("Home")});
    QCOMPARE(dialog.criteria().flags, 0u);
    QTest::keyClicks(child<QLineEdit>(&dialog, "findName"), QStringLiteral("ab"));
    child<QComboBox>(&dialog, "findPriority")->setCurrentIndex(3);
    child<QComboBox>(&dialog, "findCategory")->setEditText(QStringLiteral("work"));
    child<QCheckBox>(&dialog, "findHasDate")->setChecked(true);
    child<QDateEdit>(&dialog, "findDate")->setDate(QDate(2024, 5, 11));
    child<QComboBox>(&dialog, "findDateOperator")->setCurrentIndex(FindCriteria::GreaterThan);
    QTest::keyClicks(child<QLineEdit>(&dialog, "findNotePhrase"), QStringLiteral("bank"));
    child<QCheckBox>(&dialog, "findCompleted")->setCheckState(Qt::Unchecked);
    child<ColourCombo>(&dialog, "findColour")->setColour(4);
    child<QCheckBox>(&dialog, "findItalic")->setCheckState(Qt::Checked);
    child<QCheckBox>(&dialog, "findShowIcon")->setCheckState(Qt::Unchecked);
    child<QCheckBox>(&dialog, "findCaseInsensitive")->setChecked(true);
    const FindCriteria c = dialog.criteria();
    QCOMPARE(c.flags, 0x1FFu);
    QCOMPARE(c.name, QStringLiteral("ab"));
    QCOMPARE(c.priority, quint16(3));
    QCOMPARE(c.category, QStringLiteral("work"));
    QCOMPARE(c.date, (SystemTime{2024, 5, 6, 11, 0, 0, 0, 0}));
    QCOMPARE(c.dateOperator, FindCriteria::GreaterThan);
    QCOMPARE(c.notePhrase, QStringLiteral("bank"));
    QCOMPARE(c.progress, quint16(0));
    QCOMPARE(c.colour, quint16(4));
    QVERIFY(c.italic && !c.showIcon && c.caseInsensitive);
    // The boxes' third state is "any"; a checked "Completed" looks for 100%.
    child<QCheckBox>(&dialog, "findCompleted")->setCheckState(Qt::Checked);
    QCOMPARE(dialog.criteria().progress, quint16(100));
    child<QCheckBox>(&dialog, "findItalic")->setCheckState(Qt::PartiallyChecked);
    QVERIFY(!dialog.criteria().has(FindCriteria::Italic));

    // A dialog preset with criteria shows them again.
    FindDialog again(dialog.criteria(), {});
    const FindCriteria d = again.criteria();
    QCOMPARE(d.flags, dialog.criteria().flags);
    QCOMPARE(d.date, c.date);
    QCOMPARE(d.category, c.category);
    QCOMPARE(d.progress, quint16(100));
    QVERIFY(!d.showIcon && d.caseInsensitive);
    // Clear empties every field but keeps the case option.
    QTest::mouseClick(child<QPushButton>(&again, "findClear"), Qt::LeftButton);
    QCOMPARE(again.criteria().flags, 0u);
    QVERIFY(again.criteria().caseInsensitive);
}

void TestFindDialog::hiddenItemsAreLeftOut()
{
    ShellFixture f;
    auto document = sample();
    document->hideCompleted = true;
    QVERIFY(f.open(std::move(document)));
    QStringList listed;
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d); });
    f.prompts.dialogs.enqueue([&](QDialog *d) { listed = rows(d); });
    f.run("actionFindItem");
    QCOMPARE(listed, (QStringList{QStringLiteral("abacus"), QStringLiteral("Plain")}));
}

void TestFindDialog::chosenResultBecomesCurrent()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        screenshot(d, QStringLiteral("find"));
        QTest::keyClicks(child<QLineEdit>(d, "findName"), QStringLiteral("c"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(d->findChild<QTreeWidget *>()->headerItem()->text(0), QStringLiteral("Search Results"));
        screenshot(d, QStringLiteral("search-results"));
        auto *list = child<QTreeWidget>(d, "resultList");
        // Each result says where it lies.
        QCOMPARE(list->topLevelItem(0)->text(1), QString());
        QCOMPARE(list->topLevelItem(1)->text(1), QStringLiteral("Xabcx"));
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Return);
    });
    f.run("actionFindItem");
    // The child of a collapsed item is revealed and made current.
    QCOMPARE(f.current(), f.at({0, 0}));
}

void TestFindDialog::findResultIsOfferedWhileAResultIsKept()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    QAction *again = f.command("actionFindResult");
    f.window->updateActions();
    QVERIFY(!again->isEnabled());

    f.prompts.dialogs.enqueue([](QDialog *d) {
        QTest::keyClicks(child<QLineEdit>(d, "findNotePhrase"), QStringLiteral("bank"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d, QDialogButtonBox::Cancel); });
    f.run("actionFindItem");
    QVERIFY(again->isEnabled());

    // The kept result leaves out a match deleted since.
    Editing::deleteItem(*f.document(), f.at({2}), &f.view()->clip());
    QStringList listed;
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        listed = rows(d);
        press(d);
    });
    f.run("actionFindResult");
    QCOMPARE(listed, QStringList{QStringLiteral("Xabcx")});
    QCOMPARE(f.current(), f.at({0}));

    // A search that finds nothing says so and keeps no result.
    f.prompts.dialogs.enqueue([](QDialog *d) {
        auto *name = child<QLineEdit>(d, "findName");
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("nowhere"));
        press(d);
    });
    f.run("actionFindItem");
    QCOMPARE(f.prompts.shown.size(), 1);
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Information);
    QCOMPARE(f.prompts.shown[0].text, QStringLiteral("No item matched the search criteria."));
    QVERIFY(!again->isEnabled());
    QCOMPARE(f.prompts.dialogsRun, (QStringList{QStringLiteral("findDialog"), QStringLiteral("searchResults"),
                                                QStringLiteral("searchResults"), QStringLiteral("findDialog")}));
}

void TestFindDialog::criteriaPresetTheNextFind()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        // The case option starts from the settings (on by default).
        QVERIFY(child<QCheckBox>(d, "findCaseInsensitive")->isChecked());
        QCOMPARE(child<QComboBox>(d, "findCategory")->currentText(), QStringLiteral("[Any]"));
        QCOMPARE(child<QLineEdit>(d, "findName")->placeholderText(), QStringLiteral("[Any]"));
        QTest::keyClicks(child<QLineEdit>(d, "findName"), QStringLiteral("ab"));
        child<QComboBox>(d, "findPriority")->setCurrentIndex(3);
        child<QCheckBox>(d, "findItalic")->setCheckState(Qt::Unchecked);
        child<QCheckBox>(d, "findCaseInsensitive")->setChecked(false);
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d, QDialogButtonBox::Cancel); });
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QLineEdit>(d, "findName")->text(), QStringLiteral("ab"));
        QCOMPARE(child<QComboBox>(d, "findPriority")->currentText(), QStringLiteral("3"));
        QCOMPARE(child<QCheckBox>(d, "findItalic")->checkState(), Qt::Unchecked);
        QCOMPARE(child<QCheckBox>(d, "findCompleted")->checkState(), Qt::PartiallyChecked);
        QVERIFY(!child<QCheckBox>(d, "findCaseInsensitive")->isChecked());
        press(d, QDialogButtonBox::Cancel);
    });
    f.run("actionFindItem");
    QVERIFY(!f.window->settings().testFlag(Settings::CaseInsensitiveFind));
    f.run("actionFindItem");
    QCOMPARE(f.prompts.dialogsRun.size(), 3);
}

QTEST_MAIN(TestFindDialog)
#include "tst_finddialog.moc"
