#include "outline.h"
#include "randomtree.h"

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
                           .arg(item->name())
                           .arg(item->priority())
                           .arg(item->category())
                           .arg(item->image())
                           .arg(item->colour())
                           .arg(item->statusType())
                           .arg(item->showIcon())
                           .arg(item->isItalic())
                           .arg(item->progress())
                           .arg(item->autoProgress()));
        }
        return out;
    }

    // Apply read plainly: each field through the item's own setter, progress
    // through setProgress with its climb, children first, then recursion.
    static void plainApply(TreeNode *target, const AttributeSet &set)
    {
        for (Item *child : target->children()) {
            if (set.flags & 0x001)
                child->setPriority(set.priority);
            if (set.flags & 0x002)
                child->setCategory(set.category);
            if (set.flags & 0x004)
                child->setImage(set.icon);
            if (set.flags & 0x008)
                child->setColour(set.colour);
            if (set.flags & 0x020)
                child->setStatusType(set.statusType);
            if (set.flags & 0x040)
                child->setShowIcon(set.showIcon);
            if (set.flags & 0x080)
                child->setItalic(set.italic);
            if (set.flags & 0x010)
                child->setProgress(set.progress);
            if (set.flags & 0x110)
                child->setAutoProgress(set.automatic);
        }
        if (set.allSubItems) {
            for (Item *child : target->children()) {
                if (child->hasChildren())
                    plainApply(child, set);
            }
        }
    }

private Q_SLOTS:
    void childrenOnlyOrWholeBranch_data();
    void childrenOnlyOrWholeBranch();
    void progressRollsUp();
    void automaticFlagComesLast();
    void sortedParentsSortAgain();
    void availability();
    void deepChain();
    void agreesWithThePlainReading_data();
    void agreesWithThePlainReading();
};

void TestApplyAttributes::childrenOnlyOrWholeBranch_data()
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

void TestApplyAttributes::childrenOnlyOrWholeBranch()
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
    ApplyAttributes::apply(Outline::find(document.root(), QStringLiteral("P")), set);
    QCOMPARE(snapshot(document.root()), expected);

    // An empty set changes nothing.
    const QStringList before = snapshot(document.root());
    set.flags = 0;
    ApplyAttributes::apply(document.root(), set);
    QCOMPARE(snapshot(document.root()), before);
}

void TestApplyAttributes::progressRollsUp()
{
    Document document;
    Outline::build(document.root(), R"(
top | auto
  manual | prog=20
    P | auto
      a | prog=10
      b | prog=30
  sibling | prog=0
)");
    AttributeSet set;
    set.flags = AttributeSet::Progress;
    set.progress = 100;
    Item *p = Outline::find(document.root(), QStringLiteral("P"));
    ApplyAttributes::apply(p, set);
    QCOMPARE(p->progress(), 100);
    // The climb passes the manual item and reaches the automatic top.
    QCOMPARE(Outline::find(document.root(), QStringLiteral("manual"))->progress(), 20);
    QCOMPARE(Outline::find(document.root(), QStringLiteral("top"))->progress(), 10);
    QVERIFY(!Outline::find(document.root(), QStringLiteral("a"))->autoProgress());
}

void TestApplyAttributes::automaticFlagComesLast()
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

void TestApplyAttributes::sortedParentsSortAgain()
{
    Document document;
    Outline::build(document.root(), R"(
P | sort=1
  a | pri=1
  b | pri=5
  c | pri=9
    c1 | pri=2
    c2 | pri=1
Q | sort=3
  x | prog=0
  y | prog=50
)");
    Item *p = Outline::find(document.root(), QStringLiteral("P"));
    // Only some children move under a sorted parent: setting priority 5 on
    // c's children (sorted by hand) leaves their order alone.
    AttributeSet set;
    set.flags = AttributeSet::Priority;
    set.priority = 5;
    set.allSubItems = true;
    ApplyAttributes::apply(p, set);
    QCOMPARE(Outline::names(p->children()), (QStringList{"a", "b", "c"}));
    QCOMPARE(Outline::names(Outline::find(document.root(), QStringLiteral("c"))->children()),
             (QStringList{"c1", "c2"}));

    // Q orders its children by percent complete; a new progress on x's
    // children would not move x, but y's own progress does.
    Item *y = Outline::find(document.root(), QStringLiteral("y"));
    auto *y1 = new Item(QStringLiteral("y1"));
    y->appendChild(y1);
    y->setAutoProgress(true);
    set.flags = AttributeSet::Progress;
    set.progress = 0;
    set.allSubItems = false;
    ApplyAttributes::apply(y, set);
    QCOMPARE(y->progress(), 0);
    QCOMPARE(Outline::names(Outline::find(document.root(), QStringLiteral("Q"))->children()), (QStringList{"x", "y"}));
    Item *x = Outline::find(document.root(), QStringLiteral("x"));
    x->appendChild(new Item(QStringLiteral("x1")));
    x->setAutoProgress(true);
    set.progress = 80;
    ApplyAttributes::apply(x, set);
    QCOMPARE(Outline::names(Outline::find(document.root(), QStringLiteral("Q"))->children()), (QStringList{"y", "x"}));
}

void TestApplyAttributes::availability()
{
    Document document;
    Outline::build(document.root(), R"(
P
  c
)");
    Item *p = Outline::find(document.root(), QStringLiteral("P"));
    QVERIFY(ApplyAttributes::isAvailable(p, 0));
    QVERIFY(!ApplyAttributes::isAvailable(p, 1));
    QVERIFY(!ApplyAttributes::isAvailable(Outline::find(document.root(), QStringLiteral("c")), 0));
    QVERIFY(!ApplyAttributes::isAvailable(document.root(), 0));
}

void TestApplyAttributes::deepChain()
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

void TestApplyAttributes::agreesWithThePlainReading_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::newRow(QByteArray::number(seed).constData()) << seed;
}

void TestApplyAttributes::agreesWithThePlainReading()
{
    QFETCH(quint32, seed);
    QRandomGenerator rng(seed);
    for (int round = 0; round < 10; ++round) {
        Document ours;
        Document plain;
        RandomTree::fill(ours.root(), 300, seed * 100 + quint32(round));
        RandomTree::fill(plain.root(), 300, seed * 100 + quint32(round));
        // The same automatic flags in both trees.
        TreeWalker a(ours.root());
        TreeWalker b(plain.root());
        while (Item *x = a.next()) {
            Item *y = b.next();
            const bool automatic = rng.bounded(3u) == 0;
            x->setAutoProgress(automatic);
            y->setAutoProgress(automatic);
        }
        AttributeSet set;
        set.flags = rng.bounded(0x200u);
        set.priority = quint16(1 + rng.bounded(20u));
        set.category = QStringLiteral("C%1").arg(rng.bounded(3u));
        set.icon = quint16(rng.bounded(100u));
        set.colour = quint16(rng.bounded(36u));
        set.statusType = quint16(rng.bounded(3u));
        set.italic = rng.bounded(2u);
        set.showIcon = rng.bounded(2u);
        set.progress = quint16(rng.bounded(101u));
        set.automatic = rng.bounded(2u);
        set.allSubItems = rng.bounded(2u);
        // A target with children somewhere in the tree.
        const int pick = int(rng.bounded(40u));
        TreeWalker walkOurs(ours.root());
        TreeWalker walkPlain(plain.root());
        TreeNode *targetOurs = ours.root();
        TreeNode *targetPlain = plain.root();
        for (int i = 0; i < pick; ++i) {
            Item *x = walkOurs.next();
            Item *y = walkPlain.next();
            if (x->hasChildren()) {
                targetOurs = x;
                targetPlain = y;
            }
        }
        ApplyAttributes::apply(targetOurs, set);
        plainApply(targetPlain, set);
        QCOMPARE(snapshot(ours.root()), snapshot(plain.root()));
    }
}

QTEST_GUILESS_MAIN(TestApplyAttributes)
#include "tst_applyattributes.moc"
