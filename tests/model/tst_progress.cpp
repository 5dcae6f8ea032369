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
            Outline::setFields(&parent, "prog=55 auto");
            Outline::build(&parent, children);
            Progress::rollUp(&parent);
            QCOMPARE(int(parent.progress()), mean);
        }
    }

    void climbPassesManualAncestors()
    {
        Outline::Doc o("grand | auto\n  manual | prog=30\n    autoChild | auto\n      leaf\n      other\n"
                       "  sibling | prog=90");
        o["leaf"]->setProgress(100);
        // The manual item is left as it is, and the climb goes on past it: (30 + 90) / 2.
        QCOMPARE(QList<int>({o["autoChild"]->progress(), o["manual"]->progress(), o["grand"]->progress()}),
                 QList<int>({50, 30, 60}));
    }

    // Every child counts whatever its status type; an automatic item follows its children, and shows 0 without any.
    void automaticItemsFollowTheirChildren()
    {
        Outline::Doc o(
            "parent | auto\n  noStatus | st=0\n  box\nlonely | auto\ncounted\n  a\n  b | prog=1\n  c | prog=50\n"
            "  d | prog=99\n  e | prog=100\n  f | prog=100\n    g\n  h");
        o["noStatus"]->setProgress(50);
        o["parent"]->setProgress(100);
        o["lonely"]->setProgress(70);
        QCOMPARE(QList<int>({o["parent"]->progress(), o["lonely"]->progress()}), QList<int>({25, 0}));
        const Progress::Statistics s = Progress::statistics(o["counted"]); // of the children alone
        QCOMPARE(QList<int>({s.notStarted, s.started, s.completed}), QList<int>({2, 3, 2}));
    }

    void tap()
    {
        Outline::Doc o("parent | auto\n  box | prog=40");
        Item *parent = o["parent"], *box = o["box"];
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
        Outline::Doc o("top | sort=3\n  a | prog=10\n    leaf\n  b | prog=20");
        o["a"]->setAutoProgress(true);
        o["leaf"]->setProgress(100);
        Progress::resortAncestors(o["leaf"]); // a's parent sorts again: b (20) before a (100)
        QCOMPARE(o["top"]->child(0)->name(), QStringLiteral("b"));
    }
};

QTEST_GUILESS_MAIN(TestProgress)
#include "tst_progress.moc"
