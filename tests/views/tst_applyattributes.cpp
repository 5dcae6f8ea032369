#include "support/outline.h"

#include "model/editing.h"
#include "views/applyattributes.h"

#include <QTest>

class TestApplyAttributes : public QObject {
    Q_OBJECT

private:
    // Every attribute apply can touch, of every item in pre-order.
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
    void childrenOnlyOrWholeBranch_data()
    {
        QTest::addColumn<bool>("allSubItems");
        QTest::addColumn<QStringList>("expected");

        const QString untouched = QStringLiteral(" pri=10 cat= img=0 col=0 st=1 icon=1 it=0 prog=0 auto=0");
        const QString set = QStringLiteral(" pri=4 cat=Errands img=7 col=3 st=2 icon=0 it=1 prog=0 auto=0");
        QTest::newRow("children only") << false << QStringList{"P" + untouched,  "c1" + set, "g1" + untouched,
                                                               "gg" + untouched, "c2" + set, "other" + untouched};
        QTest::newRow("all sub-items") << true << QStringList{"P" + untouched, "c1" + set, "g1" + set,
                                                              "gg" + set,      "c2" + set, "other" + untouched};
    }

    void childrenOnlyOrWholeBranch()
    {
        QFETCH(bool, allSubItems);
        QFETCH(QStringList, expected);
        Document document;
        Outline::build(document.root(), R"(
P
  c1
    g1
      gg
  c2
other
)");
        AttributeSet set;
        set.flags = AttributeSet::Priority | AttributeSet::Category | AttributeSet::Icon | AttributeSet::Colour |
                    AttributeSet::StatusType | AttributeSet::ShowIcon | AttributeSet::Italic;
        set.priority = 4;
        set.category = QStringLiteral("Errands");
        set.icon = 7;
        set.colour = 3;
        set.statusType = 2;
        set.showIcon = false;
        set.italic = true;
        set.progress = 90;    // not ticked: not applied
        set.automatic = true; // nor this
        set.allSubItems = allSubItems;
        Item *p = Outline::find(document.root(), QStringLiteral("P"));
        QVERIFY(ApplyAttributes::isAvailable(p, 0));
        QVERIFY(!ApplyAttributes::isAvailable(p, 1)); // not in a grouped view
        QVERIFY(!ApplyAttributes::isAvailable(Outline::find(document.root(), QStringLiteral("gg")), 0));
        QVERIFY(!ApplyAttributes::isAvailable(document.root(), 0));
        ApplyAttributes::apply(p, set);
        QCOMPARE(snapshot(document.root()), expected);

        // An empty set changes nothing.
        const QStringList before = snapshot(document.root());
        set.flags = 0;
        ApplyAttributes::apply(document.root(), set);
        QCOMPARE(snapshot(document.root()), before);
    }

    void automaticFlagComesLast()
    {
        Document document;
        Outline::build(document.root(), R"(
P
  wasAuto | auto prog=100
    x | prog=100
    y | prog=100
  wasManual | prog=5
    u | prog=0
    v | prog=100
)");
        Item *p = Outline::find(document.root(), QStringLiteral("P"));
        Item *wasAuto = Outline::find(document.root(), QStringLiteral("wasAuto"));
        Item *wasManual = Outline::find(document.root(), QStringLiteral("wasManual"));

        // Progress is stored while the old flag still holds: an automatic child
        // takes its children's mean at once, then turns manual.
        AttributeSet set;
        set.flags = AttributeSet::Progress;
        set.progress = 40;
        set.automatic = false;
        ApplyAttributes::apply(p, set);
        QCOMPARE(wasAuto->progress(), 100);
        QVERIFY(!wasAuto->autoProgress());
        QCOMPARE(wasManual->progress(), 40);

        // Switched to automatic in the same step, a child keeps the given
        // progress until something below it changes.
        set.automatic = true;
        set.progress = 30;
        ApplyAttributes::apply(p, set);
        QCOMPARE(wasManual->progress(), 30);
        QVERIFY(wasManual->autoProgress());
        Outline::find(document.root(), QStringLiteral("u"))->setProgress(0);
        QCOMPARE(wasManual->progress(), 50);

        // Bit 0x100 alone stores the flag without touching progress.
        set.flags = AttributeSet::Automatic;
        set.automatic = false;
        ApplyAttributes::apply(p, set);
        QVERIFY(!wasManual->autoProgress());
        QCOMPARE(wasManual->progress(), 50);
    }

    // A parent that keeps its children in order sorts them again when an
    // applied value moves one of them.
    void sortedParentsSortAgain()
    {
        Document document;
        Outline::build(document.root(), R"(
Q | sort=3
  x | auto
    x1
  y | prog=50
)");
        Item *q = Outline::find(document.root(), QStringLiteral("Q"));
        QCOMPARE(Outline::names(q->children()), (QStringList{"x", "y"}));
        AttributeSet set;
        set.flags = AttributeSet::Progress;
        set.progress = 80;
        set.automatic = true;
        ApplyAttributes::apply(Outline::find(document.root(), QStringLiteral("x")), set);
        QCOMPARE(Outline::names(q->children()), (QStringList{"y", "x"}));
    }

    void deepChain()
    {
        Document document;
        TreeNode *parent = document.root();
        Item *first = nullptr;
        for (int i = 0; i < 200000; ++i) {
            auto *item = new Item(QStringLiteral("n"));
            item->setAutoProgress(true);
            parent->appendChild(item);
            if (!first)
                first = item;
            parent = item;
        }
        AttributeSet set;
        set.flags = AttributeSet::Progress | AttributeSet::Colour;
        set.progress = 60;
        set.colour = 5;
        set.automatic = true;
        set.allSubItems = true;
        ApplyAttributes::apply(first, set);
        // The last item has no children, so being automatic it falls to 0 when
        // its progress is set, and every automatic item above follows it.
        QCOMPARE(static_cast<Item *>(parent)->colour(), 5);
        QCOMPARE(static_cast<Item *>(parent)->progress(), 0);
        QCOMPARE(first->progress(), 0);
        QCOMPARE(first->colour(), 0);
    }
};

QTEST_GUILESS_MAIN(TestApplyAttributes)
#include "tst_applyattributes.moc"
