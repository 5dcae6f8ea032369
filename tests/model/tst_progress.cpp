#include "model/childorder.h"
#include "model/document.h"
#include "model/progress.h"

#include <QTest>

namespace {
Item *addChild(TreeNode *parent, quint16 progress, bool automatic = false)
{
    auto *item = new Item(QStringLiteral("i%1").arg(parent->childCount()));
    item->storeProgress(progress);
    item->setAutoProgress(automatic);
    parent->appendChild(item);
    return item;
}
} // namespace

class TestProgress : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void meanDropsTheFraction_data()
    {
        QTest::addColumn<QList<int>>("children");
        QTest::addColumn<int>("expected");
        QTest::newRow("100 100 0") << QList<int>{100, 100, 0} << 66;
        QTest::newRow("no children") << QList<int>{} << 0;
        QTest::newRow("one at 99") << QList<int>{99} << 99;
        QTest::newRow("all done") << QList<int>{100, 100} << 100;
        QTest::newRow("1 and 0") << QList<int>{1, 0} << 0;
    }
    void meanDropsTheFraction()
    {
        QFETCH(QList<int>, children);
        QFETCH(int, expected);
        TreeNode root;
        Item *parent = addChild(&root, 55, true);
        for (int p : children)
            addChild(parent, quint16(p));
        Progress::rollUp(parent);
        QCOMPARE(int(parent->progress()), expected);
    }

    void climbPassesManualAncestors()
    {
        // auto grandparent > manual parent (30) > auto child > leaves
        TreeNode root;
        Item *grand = addChild(&root, 0, true);
        Item *manual = addChild(grand, 30);
        Item *sibling = addChild(grand, 90);
        Item *autoChild = addChild(manual, 0, true);
        Item *leaf = addChild(autoChild, 0);
        addChild(autoChild, 0);
        leaf->setProgress(100);
        QCOMPARE(autoChild->progress(), quint16(50));
        QCOMPARE(manual->progress(), quint16(30)); // manual: untouched
        QCOMPARE(grand->progress(), quint16(60));  // (30 + 90) / 2, recomputed past the manual item
        Q_UNUSED(sibling);
    }

    // Every child counts whatever its status type; an automatic item follows
    // its children, and shows 0 without any.
    void automaticItemsFollowTheirChildren()
    {
        TreeNode root;
        Item *parent = addChild(&root, 0, true);
        Item *noStatus = addChild(parent, 0);
        noStatus->setStatusType(Item::NoStatus);
        addChild(parent, 0);
        noStatus->setProgress(50);
        QCOMPARE(parent->progress(), quint16(25));
        parent->setProgress(100);
        QCOMPARE(parent->progress(), quint16(25));
        Item *lonely = addChild(&root, 0, true);
        lonely->setProgress(70);
        QCOMPARE(lonely->progress(), quint16(0));
    }

    void tap()
    {
        TreeNode root;
        Item *parent = addChild(&root, 0, true);
        Item *box = addChild(parent, 40);
        QCOMPARE(Progress::tap(box), Progress::TapResult::Toggled);
        QCOMPARE(box->progress(), quint16(100)); // 40 is not completed: ticked
        QCOMPARE(parent->progress(), quint16(100));
        QCOMPARE(Progress::tap(box), Progress::TapResult::Toggled);
        QCOMPARE(box->progress(), quint16(0));
        QCOMPARE(parent->progress(), quint16(0));

        QCOMPARE(Progress::tap(parent), Progress::TapResult::Ignored);
        QCOMPARE(parent->progress(), quint16(0));

        box->setStatusType(Item::ProgressBar);
        QCOMPARE(Progress::tap(box), Progress::TapResult::ShowPresets);
        QCOMPARE(box->progress(), quint16(0));
        box->setStatusType(Item::NoStatus);
        QCOMPARE(Progress::tap(box), Progress::TapResult::ShowPresets);
        QCOMPARE(Progress::Presets, (std::array<quint16, 7>{0, 10, 25, 50, 75, 90, 100}));
    }

    void statistics()
    {
        TreeNode root;
        Item *parent = addChild(&root, 0);
        for (int p : {0, 1, 50, 99, 100, 0, 100})
            addChild(parent, quint16(p));
        addChild(parent->child(1), 100); // grandchildren do not count
        const Progress::Statistics s = Progress::statistics(parent);
        QCOMPARE(s.notStarted, 2);
        QCOMPARE(s.started, 3);
        QCOMPARE(s.completed, 2);
    }

    void resortAncestorsOrderedByPercent()
    {
        TreeNode root;
        Item *top = addChild(&root, 0);
        Item *a = addChild(top, 10);
        Item *b = addChild(top, 20);
        top->setSort(TreeNode::SortPercentComplete);
        Item *leaf = addChild(a, 0);
        a->setAutoProgress(true);
        leaf->setProgress(100);
        QCOMPARE(a->progress(), quint16(100));
        Progress::resortAncestors(leaf); // a's parent sorts again: b (20) before a (100)
        QCOMPARE(top->child(0), b);
        QCOMPARE(top->child(1), a);
    }
};

QTEST_GUILESS_MAIN(TestProgress)
#include "tst_progress.moc"
