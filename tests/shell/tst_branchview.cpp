#include "support/shellfixture.h"

#include "shell/document/branchview.h"
#include "views/viewrows.h"

#include <QAction>
#include <QComboBox>

class TestBranchView : public QObject {
    Q_OBJECT

private:
    // Root > Garden (Beds (Carrots, Onions), Shed) > Kitchen
    std::unique_ptr<Document> sample()
    {
        auto document = std::make_unique<Document>();
        Item *garden = add(document->root(), QStringLiteral("Garden"));
        Item *beds = add(garden, QStringLiteral("Beds"));
        add(beds, QStringLiteral("Carrots"));
        add(beds, QStringLiteral("Onions"));
        add(garden, QStringLiteral("Shed"));
        add(document->root(), QStringLiteral("Kitchen"));
        garden->setExpanded(true);
        return document;
    }

    static QStringList rowTexts(const ViewRows *rows)
    {
        QStringList texts;
        for (int i = 0; i < rows->count(); ++i)
            texts.append(QString(rows->row(i).level, QLatin1Char('-')) + rows->text(i));
        return texts;
    }

private Q_SLOTS:
    void showsTheBranchAndIsOfferedInTheDefaultViewOnly();
    void closesWhenTheWholeBranchIsHidden();
    void keepsAMarkOfItsOwn();
    void deletingReleasesTheMainListsMark();
};

void TestBranchView::showsTheBranchAndIsOfferedInTheDefaultViewOnly()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.select(f.document()->root());
    QVERIFY(!f.enabled("actionBranchView")); // the list title has no branch of its own
    f.select(f.at({0}));
    QVERIFY(f.enabled("actionBranchView"));
    f.document()->viewMode = Document::ByPriority;
    QVERIFY(!f.enabled("actionBranchView"));
    f.document()->viewMode = Document::DefaultView;

    f.prompts.dialogs.enqueue([](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        QCOMPARE(rowTexts(branch->rows()),
                 (QStringList{QStringLiteral("Garden"), QStringLiteral("-Beds"), QStringLiteral("-Shed")}));
        branch->treePane()->toggleRow(1);
        QCOMPARE(rowTexts(branch->rows()).size(), 5);
        screenshot(d, QStringLiteral("branch-view"));
        // An edit made here shows in the main list too.
        branch->treePane()->setCurrentRow(4);
        QVERIFY(runIn(branch, "actionPriority1"));
        QCOMPARE(branch->treePane()->currentNode()->name(), QStringLiteral("Shed"));
        press(d, QDialogButtonBox::Close);
    });
    f.run("actionBranchView");
    QCOMPARE(f.prompts.dialogsRun, QStringList{QStringLiteral("branchView")});
    QCOMPARE(f.at({0, 1})->priority(), quint16(1));
    QCOMPARE(f.current(), f.at({0}));
}

void TestBranchView::closesWhenTheWholeBranchIsHidden()
{
    ShellFixture f;
    auto document = sample();
    document->hideCompleted = true;
    document->root()->child(0)->child(0)->setExpanded(true);
    QVERIFY(f.open(std::move(document)));
    Item *beds = f.at({0, 0});
    f.select(beds);
    bool stillOpen = true;
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        // A child completed: the branch still shows.
        Item *carrots = beds->child(0);
        Q_EMIT branch->treePane()->statusTapped(carrots, QPoint());
        QVERIFY(d->isVisible());
        QCOMPARE(rowTexts(branch->rows()), (QStringList{QStringLiteral("Beds"), QStringLiteral("-Onions")}));
        // The top completed: nothing of the branch is left.
        Q_EMIT branch->treePane()->statusTapped(beds, QPoint());
        stillOpen = d->isVisible();
    });
    f.run("actionBranchView");
    QVERIFY(!stillOpen);
    QCOMPARE(f.shownTexts(), QStringList{QStringLiteral(
                                 "The whole branch is hidden due to progress value and/or status type changes.")});
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Information);
    QCOMPARE(beds->progress(), quint16(100));
    QCOMPARE(f.current(), f.at({0})); // the nearest row still shown
}

void TestBranchView::keepsAMarkOfItsOwn()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.select(f.at({0}));
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        branch->treePane()->setCurrentRow(2); // Shed
        QVERIFY(runIn(branch, "actionMarkMove"));
        branch->treePane()->setCurrentRow(1); // Beds
        QVERIFY(runIn(branch, "actionPaste"));
        press(d, QDialogButtonBox::Close);
    });
    f.run("actionBranchView");
    QVERIFY(f.view()->clip().isEmpty());
    QCOMPARE(f.at({0})->childCount(), 1);
    QCOMPARE(f.at({0, 0, 2})->name(), QStringLiteral("Shed"));
}

void TestBranchView::deletingReleasesTheMainListsMark()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.view()->clip().markCopy(f.at({0, 0, 1})); // Onions, marked in the main list
    f.select(f.at({0}));
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        auto *branch = qobject_cast<BranchView *>(d);
        branch->treePane()->setCurrentRow(1); // Beds
        QVERIFY(runIn(branch, "actionDeleteItem"));
        QCOMPARE(rowTexts(branch->rows()), (QStringList{QStringLiteral("Garden"), QStringLiteral("-Shed")}));
        // Deleting the top itself ends the branch view.
        branch->treePane()->setCurrentRow(0);
        QVERIFY(runIn(branch, "actionDeleteItem"));
        QVERIFY(!d->isVisible());
    });
    f.run("actionBranchView");
    QCOMPARE(f.shownTexts(), (QStringList{QStringLiteral("Are you sure to delete this item and all its subitems?"),
                                          QStringLiteral("Are you sure to delete this item and all its subitems?")}));
    QVERIFY(f.view()->clip().isEmpty());
    QCOMPARE(f.document()->root()->childCount(), 1);
    QCOMPARE(f.current(), f.document()->root());
}

QTEST_MAIN(TestBranchView)
#include "tst_branchview.moc"
