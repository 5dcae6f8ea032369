#include "support/outline.h"

#include "model/childorder.h"
#include "model/progress.h"

#include <QTest>

class TestProgress : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void meanDropsTheFraction()
    {
        const std::pair<const char *, int> cases[] = {
            {"a | prog=100\nb | prog=100\nc", 66}, {"", 0}, {"a | prog=99", 99}, {"a | prog=1\nb", 0}};
        for (const auto &[children, mean] : cases) {
            Item parent;
            parent.storeProgress(55);
            parent.setAutoProgress(true);
            Outline::build(&parent, children);
            Progress::rollUp(&parent);
            QCOMPARE(int(parent.progress()), mean);
        }
    }

    void climbPassesManualAncestors()
    {
        TreeNode root;
        Outline::build(&root, "grand | auto\n  manual | prog=30\n    autoChild | auto\n      leaf\n      other\n"
                              "  sibling | prog=90");
        Outline::find(&root, QStringLiteral("leaf"))->setProgress(100);
        QCOMPARE(Outline::find(&root, QStringLiteral("autoChild"))->progress(), quint16(50));
        QCOMPARE(Outline::find(&root, QStringLiteral("manual"))->progress(), quint16(30)); // manual: untouched
        QCOMPARE(Outline::find(&root, QStringLiteral("grand"))->progress(), quint16(60));  // (30 + 90) / 2
    }

    // Every child counts whatever its status type; an automatic item follows its children, and shows 0 without any.
    void automaticItemsFollowTheirChildren()
    {
        TreeNode root;
        Outline::build(&root, "parent | auto\n  noStatus | st=0\n  box\nlonely | auto");
        Item *parent = root.child(0);
        parent->child(0)->setProgress(50);
        QCOMPARE(parent->progress(), quint16(25));
        parent->setProgress(100);
        QCOMPARE(parent->progress(), quint16(25));
        root.child(1)->setProgress(70);
        QCOMPARE(root.child(1)->progress(), quint16(0));

        Item counted;
        Outline::build(&counted, "a\nb | prog=1\nc | prog=50\nd | prog=99\ne | prog=100\nf | prog=100\n  g\nh");
        const Progress::Statistics s = Progress::statistics(&counted); // of the children alone
        QCOMPARE(QList<int>({s.notStarted, s.started, s.completed}), QList<int>({2, 3, 2}));
    }

    void tap()
    {
        TreeNode root;
        Outline::build(&root, "parent | auto\n  box | prog=40");
        Item *parent = root.child(0);
        Item *box = parent->child(0);
        QCOMPARE(Progress::tap(box), Progress::TapResult::Toggled);
        QCOMPARE(parent->progress(), quint16(100)); // 40 is not completed: ticked
        QCOMPARE(Progress::tap(box), Progress::TapResult::Toggled);
        QCOMPARE(parent->progress(), quint16(0));
        QCOMPARE(Progress::tap(parent), Progress::TapResult::Ignored);
        box->setStatusType(Item::ProgressBar);
        QCOMPARE(Progress::tap(box), Progress::TapResult::ShowPresets);
        box->setStatusType(Item::NoStatus);
        QCOMPARE(Progress::tap(box), Progress::TapResult::ShowPresets);
        QCOMPARE(box->progress(), quint16(0));
    }

    void resortAncestorsOrderedByPercent()
    {
        TreeNode root;
        Outline::build(&root, "top | sort=3\n  a | prog=10\n    leaf\n  b | prog=20");
        Item *a = Outline::find(&root, QStringLiteral("a"));
        a->setAutoProgress(true);
        a->child(0)->setProgress(100);
        Progress::resortAncestors(a->child(0)); // a's parent sorts again: b (20) before a (100)
        QCOMPARE(root.child(0)->child(0)->name(), QStringLiteral("b"));
    }
};

QTEST_GUILESS_MAIN(TestProgress)
#include "tst_progress.moc"
