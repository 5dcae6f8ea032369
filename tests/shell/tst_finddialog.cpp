#include "support/shellfixture.h"

#include "model/editing.h"
#include "notes/notetext.h"
#include "shell/dialogs/searchresultsdialog.h"
#include "shell/widgets/colourcombo.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QTreeWidget>

// The find dialog's criteria, as a person fills them in.
struct Fill {
    QString name;
    int priority = 0; // 0 is "[Any]"
    QString category; // empty leaves "[Any]"
    QDate date;
    int dateOperator = 1;
    QString phrase;
    Qt::CheckState completed = Qt::PartiallyChecked;
    int colour = -1;
    Qt::CheckState italic = Qt::PartiallyChecked;
    bool caseInsensitive = false;
};
Q_DECLARE_METATYPE(Fill)

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

    static void fill(QDialog *d, const Fill &c)
    {
        QTest::keyClicks(child<QLineEdit>(d, "findName"), c.name);
        child<QComboBox>(d, "findPriority")->setCurrentIndex(c.priority);
        if (!c.category.isEmpty())
            child<QComboBox>(d, "findCategory")->setEditText(c.category);
        child<QCheckBox>(d, "findHasDate")->setChecked(c.date.isValid());
        if (c.date.isValid()) {
            child<QDateEdit>(d, "findDate")->setDate(c.date);
            child<QComboBox>(d, "findDateOperator")->setCurrentIndex(c.dateOperator);
        }
        QTest::keyClicks(child<QLineEdit>(d, "findNotePhrase"), c.phrase);
        child<QCheckBox>(d, "findCompleted")->setCheckState(c.completed);
        child<ColourCombo>(d, "findColour")->setColour(c.colour);
        child<QCheckBox>(d, "findItalic")->setCheckState(c.italic);
        child<QCheckBox>(d, "findCaseInsensitive")->setChecked(c.caseInsensitive);
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
    void combinedCriteria_data();
    void combinedCriteria();
    void chosenResultBecomesCurrent();
    void findResultIsOfferedWhileAResultIsKept();
    void criteriaPresetTheNextFind();
};

void TestFindDialog::combinedCriteria_data()
{
    QTest::addColumn<Fill>("criteria");
    QTest::addColumn<bool>("hideCompleted");
    QTest::addColumn<QStringList>("found");

    const QStringList all = {QStringLiteral("Xabcx"), QStringLiteral("ABC child"), QStringLiteral("abacus"),
                             QStringLiteral("Plain")};
    QTest::newRow("nothing filled lists every item") << Fill{} << false << all;
    QTest::newRow("hidden items are left out")
        << Fill{} << true << QStringList{QStringLiteral("abacus"), QStringLiteral("Plain")};

    Fill caseOn;
    caseOn.name = QStringLiteral("ABC");
    caseOn.caseInsensitive = true;
    QTest::newRow("name without case") << caseOn << false
                                       << QStringList{QStringLiteral("Xabcx"), QStringLiteral("ABC child")};

    Fill nameAndPriority;
    nameAndPriority.name = QStringLiteral("ab");
    nameAndPriority.priority = 3;
    nameAndPriority.caseInsensitive = true;
    QTest::newRow("name and priority") << nameAndPriority << false
                                       << QStringList{QStringLiteral("Xabcx"), QStringLiteral("ABC child")};

    Fill category;
    category.category = QStringLiteral("work");
    category.caseInsensitive = true;
    QTest::newRow("category keeps its case") << category << false << QStringList{QStringLiteral("abacus")};

    Fill before;
    before.date = QDate(2024, 5, 11);
    before.dateOperator = 0;
    QTest::newRow("due before") << before << false << QStringList{QStringLiteral("Xabcx")};

    Fill phrase;
    phrase.phrase = QStringLiteral("BANK");
    phrase.caseInsensitive = true;
    QTest::newRow("note phrase") << phrase << false << QStringList{QStringLiteral("Xabcx"), QStringLiteral("Plain")};

    Fill notStarted;
    notStarted.completed = Qt::Unchecked;
    QTest::newRow("completed cleared finds only items not started")
        << notStarted << false << QStringList{QStringLiteral("ABC child"), QStringLiteral("abacus")};

    Fill styled;
    styled.colour = 4;
    styled.italic = Qt::Checked;
    QTest::newRow("colour and italic") << styled << false << QStringList{QStringLiteral("ABC child")};
}

void TestFindDialog::combinedCriteria()
{
    QFETCH(Fill, criteria);
    QFETCH(bool, hideCompleted);
    QFETCH(QStringList, found);
    ShellFixture f;
    auto document = sample();
    document->hideCompleted = hideCompleted;
    QVERIFY(f.open(std::move(document)));
    QStringList listed;
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        fill(d, criteria);
        press(d);
    });
    f.prompts.dialogs.enqueue([&](QDialog *d) { listed = rows(d); });
    f.run("actionFindItem");
    QCOMPARE(listed, found);
    QVERIFY(f.prompts.shown.isEmpty());
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
