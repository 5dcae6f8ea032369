#include "support/outline.h"

#include "model/editing.h"
#include "views/applyattributes.h"

#include <QTest>

class TestApplyAttributes : public QObject {
    Q_OBJECT

private:
    static QStringList snapshot(const TreeNode *root)
    {
        QStringList out;
        TreeWalker walker(root);
        while (const Item *item = walker.next()) {
            out.append(QStringLiteral("%1 pri=%2 cat=%3 img=%4 col=%5 st=%6 icon=%7 it=%8 prog=%9 auto=%10")
                           .arg(item->name(), QString::number(item->priority()), item->category(),
                                QString::number(item->image()), QString::number(item->colour()),
                                QString::number(item->statusType()), QString::number(item->showIcon()),
                                QString::number(item->isItalic()), QString::number(item->progress()),
                                QString::number(item->autoProgress())));
        }
        return out;
    }

private Q_SLOTS:
    void childrenOnlyOrWholeBranch()
    {
        const QString untouched = QStringLiteral(" pri=10 cat= img=0 col=0 st=1 icon=1 it=0 prog=0 auto=0");
        const QString set = QStringLiteral(" pri=4 cat=Errands img=7 col=3 st=2 icon=0 it=1 prog=0 auto=0");
        const quint32 flags = AttributeSet::Priority | AttributeSet::Category | AttributeSet::Icon |
                              AttributeSet::Colour | AttributeSet::StatusType | AttributeSet::ShowIcon |
                              AttributeSet::Italic;
        for (const bool allSubItems : {false, true}) {
            Outline::Doc document("P\n  c1\n    g1\n      gg\n  c2\nother");
            Item *p = document["P"];
            // Progress and the automatic flag are given but not ticked.
            ApplyAttributes::apply(
                p, AttributeSet{flags, 4, QStringLiteral("Errands"), 7, 3, 2, true, false, 90, allSubItems, true});
            const QString below = allSubItems ? set : untouched;
            const QStringList applied = snapshot(document.root());
            QCOMPARE(applied, (QStringList{"P" + untouched, "c1" + set, "g1" + below, "gg" + below, "c2" + set,
                                           "other" + untouched}));
            ApplyAttributes::apply(document.root(), AttributeSet{}); // an empty set changes nothing
            QCOMPARE(snapshot(document.root()), applied);
            // Not in a grouped view, nor for an item without children or the root.
            QVERIFY(ApplyAttributes::isAvailable(p, 0) && !ApplyAttributes::isAvailable(p, 1) &&
                    !ApplyAttributes::isAvailable(document["gg"], 0) &&
                    !ApplyAttributes::isAvailable(document.root(), 0));
        }
    }

    void automaticFlagComesLast()
    {
        Outline::Doc document("P\n  wasAuto | auto prog=100\n    x | prog=100\n    y | prog=100\n"
                              "  wasManual | prog=5\n    u | prog=0\n    v | prog=100");
        Item *p = document["P"], *wasAuto = document["wasAuto"], *wasManual = document["wasManual"];

        const auto apply = [&](quint32 flags, quint16 progress, bool automatic) {
            ApplyAttributes::apply(
                p, AttributeSet{flags, 10, QString(), 0, 0, 1, false, true, progress, false, automatic});
        };
        const auto state = [&] {
            return QList<int>(
                {wasAuto->progress(), wasAuto->autoProgress(), wasManual->progress(), wasManual->autoProgress()});
        };
        // Stored while the old flag holds: an automatic child takes its children's mean, then turns manual.
        apply(AttributeSet::Progress, 40, false);
        QCOMPARE(state(), QList<int>({100, 0, 40, 0}));
        // Switched to automatic in the same step, a child keeps the given progress until something below it changes.
        apply(AttributeSet::Progress, 30, true);
        QCOMPARE(state(), QList<int>({30, 1, 30, 1}));
        document["u"]->setProgress(0);
        QCOMPARE(wasManual->progress(), 50);
        apply(AttributeSet::Automatic, 30, false); // the flag alone, progress untouched
        QCOMPARE(state(), QList<int>({30, 0, 50, 0}));
    }

    void sortedParentsSortAgain()
    {
        Outline::Doc document("Q | sort=3\n  x | auto\n    x1\n  y | prog=50");
        Item *q = document["Q"];
        ApplyAttributes::apply(
            document["x"], AttributeSet{AttributeSet::Progress, 10, QString(), 0, 0, 1, false, true, 80, false, true});
        QCOMPARE(Outline::names(q->children()), (QStringList{"y", "x"}));
    }
};

QTEST_GUILESS_MAIN(TestApplyAttributes)
#include "tst_applyattributes.moc"
