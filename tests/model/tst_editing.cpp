#include "support/outline.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/editing.h"
#include "platform/clock.h"

#include <QTest>

namespace {
Item *add(TreeNode *parent, const QString &name)
{
    auto *item = new Item(name);
    parent->appendChild(item);
    return item;
}

QString names(const TreeNode *node)
{
    QStringList list;
    for (const Item *child : node->children())
        list << child->name();
    return list.join(QLatin1Char(' '));
}

// root: a (a1, a2 (a21)), b, c
struct Tree {
    Document document;
    Item *a, *a1, *a2, *a21, *b, *c;
    Tree()
    {
        TreeNode *root = document.root();
        a = add(root, QStringLiteral("a"));
        a1 = add(a, QStringLiteral("a1"));
        a2 = add(a, QStringLiteral("a2"));
        a21 = add(a2, QStringLiteral("a21"));
        b = add(root, QStringLiteral("b"));
        c = add(root, QStringLiteral("c"));
    }
};
} // namespace

class TestEditing : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { Clock::reset(); }

    void insertPositions()
    {
        Tree o;
        o.document.setCurrent(o.a1);
        Item *same = new Item(QStringLiteral("same"));
        QCOMPARE(Editing::insertItem(o.document, same, InsertPosition::Same), o.a);
        QCOMPARE(names(o.a), QStringLiteral("a1 same a2"));
        QCOMPARE(o.document.current(), same);

        o.document.setCurrent(o.a2);
        Item *child = new Item(QStringLiteral("child"));
        Editing::insertItem(o.document, child, InsertPosition::Child);
        QCOMPARE(names(o.a2), QStringLiteral("child a21")); // first among the children

        o.document.setCurrent(o.a21);
        Editing::insertItem(o.document, new Item(QStringLiteral("top")), InsertPosition::Top);
        QCOMPARE(names(o.document.root()), QStringLiteral("a b c top"));

        // With the root current, every position goes to the top.
        o.document.setCurrent(nullptr);
        Editing::insertItem(o.document, new Item(QStringLiteral("x")), InsertPosition::Same);
        QCOMPARE(names(o.document.root()), QStringLiteral("a b c top x"));
    }

    void createCopy()
    {
        Tree o;
        Clock::setFixed(QDateTime(QDate(2030, 1, 2), QTime(3, 4)));
        Item *copy = Editing::createCopy(o.a);
        QCOMPARE(names(o.document.root()), QStringLiteral("a a b c"));
        QCOMPARE(o.document.root()->child(1), copy);
        QVERIFY(!copy->hasChildren());
        QCOMPARE(copy->created().year, quint16(2030));
    }

    void pasteEnabling_data()
    {
        QTest::addColumn<int>("mode"); // 1 move, 2 copy
        QTest::addColumn<QString>("marked");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("nothing marked") << 0 << "" << "b" << false;
        QTest::newRow("onto itself") << 2 << "a" << "a" << false;
        QTest::newRow("copy onto a child") << 2 << "a" << "a1" << false;
        QTest::newRow("copy onto a grandchild") << 2 << "a" << "a21" << false;
        QTest::newRow("move onto its parent") << 1 << "a2" << "a" << false;
        QTest::newRow("copy onto its parent") << 2 << "a2" << "a" << true;
        QTest::newRow("move elsewhere") << 1 << "a2" << "b" << true;
        QTest::newRow("move onto the root") << 1 << "a21" << "root" << true;
        QTest::newRow("move a top item onto the root") << 1 << "a" << "root" << false;
        QTest::newRow("copy child onto ancestor") << 2 << "a21" << "a" << true;
    }
    void pasteEnabling()
    {
        QFETCH(int, mode);
        QFETCH(QString, marked);
        QFETCH(QString, target);
        QFETCH(bool, allowed);
        Tree o;
        const QHash<QString, TreeNode *> nodes{{"a", o.a},     {"a1", o.a1}, {"a2", o.a2}, {"a21", o.a21},
                                               {"b", o.b},     {"c", o.c},   {"root", o.document.root()}};
        ItemClip clip;
        if (mode == 1)
            clip.markMove(nodes.value(marked)->asItem());
        else if (mode == 2)
            clip.markCopy(nodes.value(marked)->asItem());
        QCOMPARE(clip.canPaste(nodes.value(target)), allowed);
        const QString before = names(nodes.value(target));
        QCOMPARE(clip.paste(nodes.value(target), true) != nullptr, allowed);
        if (!allowed)
            QCOMPARE(names(nodes.value(target)), before);
    }

    void pasteMoveKeepsTheMark()
    {
        Tree o;
        ItemClip clip;
        clip.markMove(o.a2);
        QVERIFY(!clip.asksForChildren()); // a move takes the whole branch
        QCOMPARE(clip.paste(o.b, false), o.a2);
        QCOMPARE(names(o.a), QStringLiteral("a1"));
        QCOMPARE(names(o.b), QStringLiteral("a2"));
        QCOMPARE(o.a2->childCount(), 1);        // children go with it
        QCOMPARE(clip.paste(o.c, false), o.a2); // a second paste moves it again
        QVERIFY(!o.b->hasChildren());
        QCOMPARE(o.a2->parent(), o.c);
    }

    void pasteCopyDuplicatesAtPasteTime()
    {
        Tree o;
        ItemClip clip;
        clip.markCopy(o.a);
        QVERIFY(clip.asksForChildren());
        o.a->setName(QStringLiteral("renamed"));
        Item *alone = clip.paste(o.c, false);
        QCOMPARE(alone->name(), QStringLiteral("renamed"));
        QVERIFY(!alone->hasChildren());

        Item *branch = clip.paste(o.b, true);
        QCOMPARE(names(branch), QStringLiteral("a1 a2"));
        QCOMPARE(names(branch->child(1)), QStringLiteral("a21"));
        QVERIFY(branch->child(1) != o.a2);
        QCOMPARE(names(o.a), QStringLiteral("a1 a2")); // the source is untouched
        QVERIFY(!clip.isEmpty());
    }

    void deleteEmptiesTheClipAndRecomputesTheParent()
    {
        Tree o;
        o.a->setAutoProgress(true);
        o.a1->storeProgress(100);
        ItemClip clip;
        clip.markMove(o.a2);
        o.document.setCurrent(o.a21);
        QCOMPARE(Editing::deleteItem(o.document, o.a2, &clip), o.a);
        QVERIFY(clip.isEmpty());
        QVERIFY(!clip.canPaste(o.b));
        QCOMPARE(o.a->progress(), quint16(100));
        QCOMPARE(o.document.current(), o.a);

        // A mark inside a deleted branch goes too.
        clip.markCopy(o.a1);
        Editing::deleteItem(o.document, o.a, &clip);
        QVERIFY(clip.isEmpty());

        // Deleting the last child of an automatic item sets it to 0.
        Item *parent = add(o.b, QStringLiteral("p"));
        parent->setAutoProgress(true);
        Item *only = add(parent, QStringLiteral("only"));
        only->setProgress(100);
        QCOMPARE(parent->progress(), quint16(100));
        Editing::deleteItem(o.document, only, &clip);
        QCOMPARE(parent->progress(), quint16(0));
    }

    void dropRefusals()
    {
        Tree o;
        QVERIFY(!Editing::canDrop(o.a, nullptr));
        QVERIFY(!Editing::canDrop(o.a, o.a));
        QVERIFY(!Editing::canDrop(o.a, o.a21));
        QVERIFY(!Editing::drop(o.a, o.a1));
        QCOMPARE(names(o.document.root()), QStringLiteral("a b c"));
        // A drop onto the present parent is allowed and makes it the last child.
        QVERIFY(Editing::drop(o.a1, o.a));
        QCOMPARE(names(o.a), QStringLiteral("a2 a1"));
        o.a2->setExpanded(true);
        QVERIFY(Editing::drop(o.a21, o.document.root()));
        QCOMPARE(names(o.document.root()), QStringLiteral("a b c a21"));
        QVERIFY(!o.a2->isExpanded()); // it lost its only child
    }

    void moveMenu()
    {
        Tree o;
        using Editing::Move;
        QVERIFY(!Editing::canMove(o.document, o.a, Move::Up));
        QVERIFY(!Editing::canMove(o.document, o.a, Move::DownLevel)); // first child: nothing to go under
        QVERIFY(!Editing::canMove(o.document, o.b, Move::UpLevel));   // a child of the root
        QVERIFY(!Editing::canMove(o.document, o.c, Move::Down));
        QVERIFY(Editing::canMove(o.document, o.b, Move::Down)); // the one before the last
        QVERIFY(!Editing::canMove(o.document, nullptr, Move::Down));

        QVERIFY(Editing::move(o.document, o.c, Move::Up));
        QCOMPARE(names(o.document.root()), QStringLiteral("a c b"));
        QVERIFY(Editing::move(o.document, o.a, Move::Down));
        QCOMPARE(names(o.document.root()), QStringLiteral("c a b"));
        o.a2->setExpanded(true);
        QVERIFY(Editing::move(o.document, o.a21, Move::UpLevel));
        QCOMPARE(names(o.a), QStringLiteral("a1 a2 a21")); // right after its old parent
        QVERIFY(!o.a2->isExpanded());                      // it lost its only child
        QVERIFY(Editing::move(o.document, o.a2, Move::DownLevel));
        QCOMPARE(names(o.a1), QStringLiteral("a2")); // last child of the previous sibling
        QVERIFY(!Editing::move(o.document, o.a1, Move::Up));

        o.document.viewMode = Document::ByCategory;
        QVERIFY(!Editing::canMove(o.document, o.b, Move::Up));
    }

    void applyPropertiesStoresEveryField()
    {
        Tree o;
        ChildOrder::orderChildrenBy(o.a, TreeNode::SortPriority);
        const SystemTime due{2024, 3, 0, 5, 9, 30, 0, 0};
        const SystemTime remind{2024, 3, 0, 4, 8, 0, 0, 0};
        ItemProperties p;
        p.name = QStringLiteral("renamed");
        p.priority = 20;
        p.category = QStringLiteral("Errands");
        p.image = 7;
        p.colour = 4;
        p.showIcon = false;
        p.italic = true;
        p.statusType = Item::ProgressBar;
        p.dueDate = due;
        p.taskTime = QStringLiteral("15");
        p.taskTimeType = 1;
        p.reminderTime = remind;
        p.links = QStringList{QStringLiteral("tel:1")};
        p.note = QByteArray("n\0\0", 4);
        p.progress = 60;
        Editing::applyProperties(o.a1, p, &o.document);
        QCOMPARE(Outline::fields(*o.a1), QStringLiteral("renamed pri=20 cat=Errands img=7 col=4 st=2 prog=60 flags=4 "
                                                        "sort=15 asc=1 exp=0 due=2024.3.0.5.9.30.0.0 "
                                                        "rem=2024.3.0.4.8.0.0.0 time=15/1 extra=0 links=tel:1 "
                                                        "note=6e000000"));
        QCOMPARE(names(o.a), QStringLiteral("a2 renamed")); // its parent orders by priority
        QVERIFY(o.document.categories.contains(QStringLiteral("Errands")));

        // Links and note stay when the dialog did not show them; automatic
        // progress comes from the children.
        ItemProperties q = p;
        q.links.reset();
        q.note.reset();
        q.autoProgress = true;
        o.a21->setProgress(100);
        Editing::applyProperties(o.a2, q, &o.document);
        QVERIFY(o.a2->links().isEmpty());
        QVERIFY(o.a2->note().isEmpty());
        QVERIFY(o.a2->autoProgress());
        QCOMPARE(o.a2->progress(), quint16(100));
    }

    // Every edit that can move an item in a parent that keeps its children in
    // order sorts them again.
    void editsSortASortedParentAgain()
    {
        Tree o;
        ChildOrder::orderChildrenBy(o.document.root(), TreeNode::SortName);
        o.document.setCurrent(o.c);
        Editing::insertItem(o.document, new Item(QStringLiteral("0 first")), InsertPosition::Same);
        QCOMPARE(names(o.document.root()), QStringLiteral("0 first a b c"));

        ChildOrder::orderChildrenBy(o.a, TreeNode::SortName);
        o.a->setAscending(false);
        ItemClip clip;
        clip.markCopy(o.b);
        clip.paste(o.a, false);
        QCOMPARE(names(o.a), QStringLiteral("b a2 a1"));

        ChildOrder::orderChildrenBy(o.document.root(), TreeNode::SortPriority);
        Editing::setPriority(o.c, 1);
        QCOMPARE(names(o.document.root()), QStringLiteral("c 0 first a b"));
        Editing::setPriority(o.a2, 1); // a name-ordered parent keeps its order
        QCOMPARE(names(o.a), QStringLiteral("b a2 a1"));

        o.a->setAscending(true);
        ChildOrder::orderChildrenBy(o.a, TreeNode::SortPriority);
        o.a21->setPriority(0);
        QVERIFY(Editing::move(o.document, o.a21, Editing::Move::UpLevel));
        QCOMPARE(names(o.a), QStringLiteral("a21 a2 b a1"));
    }

    void quickEntry()
    {
        Tree o;
        o.b->setPriority(4);
        o.b->setStatusType(Item::ProgressBar);
        o.b->setColour(9);
        o.b->setShowIcon(false);
        const QString longText(80, QLatin1Char('x'));
        std::unique_ptr<Item> item(Editing::quickEntryItem(longText, 812, true, o.b));
        QCOMPARE(item->name().size(), 63);
        QCOMPARE(item->image(), quint16(812));
        QVERIFY(item->isItalic());
        QCOMPARE(item->priority(), quint16(4));
        QCOMPARE(item->statusType(), quint16(Item::ProgressBar));
        QCOMPARE(item->colour(), quint16(9));
        QVERIFY(!item->showIcon());
        QCOMPARE(Editing::quickEntryPosition(o.b, true), InsertPosition::Child);
        QCOMPARE(Editing::quickEntryPosition(o.b, false), InsertPosition::Same);
        QCOMPARE(Editing::quickEntryPosition(o.document.root(), true), InsertPosition::Top);

        std::unique_ptr<Item> plain(Editing::quickEntryItem(QStringLiteral("t"), 0, false, o.document.root()));
        QCOMPARE(plain->priority(), quint16(10));

        QStringList history;
        QVERIFY(Editing::addToHistory(history, QStringLiteral("Milk")));
        QVERIFY(!Editing::addToHistory(history, QStringLiteral("milk")));
        QVERIFY(Editing::addToHistory(history, QStringLiteral("Bread")));
        QCOMPARE(history, QStringList({QStringLiteral("Milk"), QStringLiteral("Bread")}));
    }
};

QTEST_GUILESS_MAIN(TestEditing)
#include "tst_editing.moc"
