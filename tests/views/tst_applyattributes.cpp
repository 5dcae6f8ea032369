#include "support/outline.h"
#include "support/randomtree.h"

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

    // Apply read plainly: each field through the item's own setter, progress
    // through setProgress with its climb to automatic ancestors, children
    // first, then recursion.
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
    void automaticFlagComesLast();
    void sortedParentsSortAgain();
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

// A parent that keeps its children in order sorts them again when an
// applied value moves one of them.
void TestApplyAttributes::sortedParentsSortAgain()
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
