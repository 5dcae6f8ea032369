#include "support/outline.h"

#include "model/childorder.h"
#include "model/editing.h"
#include "platform/clock.h"

#include <QTest>

namespace {
QString names(const TreeNode *node)
{
    return Outline::names(node->children()).join(QLatin1Char(' '));
}

const char *const Tree = "a\n  a1\n  a2\n    a21\nb\nc\n";
} // namespace

class TestEditing : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { Clock::reset(); }

    void insertAndCopy()
    {
        Outline::Doc o(Tree);
        o.setCurrent(o["a1"]);
        Item *same = new Item(QStringLiteral("same"));
        QCOMPARE(Editing::insertItem(o, same, InsertPosition::Same), o["a"]);
        QCOMPARE(o.current(), same);
        o.setCurrent(o["a2"]);
        Editing::insertItem(o, new Item(QStringLiteral("child")), InsertPosition::Child);
        QCOMPARE(names(o["a"]) + QLatin1Char('/') + names(o["a2"]), QStringLiteral("a1 same a2/child a21"));
        o.setCurrent(o["a21"]);
        Editing::insertItem(o, new Item(QStringLiteral("top")), InsertPosition::Top);
        // With the root current, every position goes to the top.
        o.setCurrent(nullptr);
        Editing::insertItem(o, new Item(QStringLiteral("x")), InsertPosition::Same);
        QCOMPARE(names(o.root()), QStringLiteral("a b c top x"));

        Clock::setFixed(QDateTime(QDate(2030, 1, 2), QTime(3, 4)));
        Item *copy = Editing::createCopy(o["a"]);
        QVERIFY(o.root()->child(1) == copy && !copy->hasChildren());
        QCOMPARE(copy->created().year, quint16(2030));
    }

    void pasteEnabling()
    {
        const struct {
            int mode; // 0 nothing marked, 1 move, 2 copy
            const char *marked, *target;
            bool allowed;
        } cases[] = {{0, "a", "b", false}, {2, "a", "a", false}, {2, "a", "a21", false}, {1, "a2", "a", false},
                     {2, "a2", "a", true}, {1, "a21", "", true}, {1, "a", "", false}};
        for (const auto &c : cases) {
            Outline::Doc o(Tree);
            TreeNode *target = *c.target ? o[c.target] : static_cast<TreeNode *>(o.root());
            Item *marked = o[c.marked];
            ItemClip clip;
            if (c.mode)
                c.mode == 1 ? clip.markMove(marked) : clip.markCopy(marked);
            QCOMPARE(clip.canPaste(target), c.allowed);
            const QString before = names(target);
            QCOMPARE(clip.paste(target, true) != nullptr, c.allowed);
            if (!c.allowed)
                QCOMPARE(names(target), before);
        }
    }

    void pasteMovesOrCopies()
    {
        Outline::Doc o(Tree);
        ItemClip clip;
        clip.markMove(o["a2"]);
        QVERIFY(!clip.asksForChildren()); // a move takes the whole branch
        QCOMPARE(clip.paste(o["b"], false), o["a2"]);
        QCOMPARE(clip.paste(o["c"], false), o["a2"]); // a second paste moves it again
        QCOMPARE(names(o["a"]) + names(o["b"]) + names(o["a2"]), QStringLiteral("a1a21"));

        clip.markCopy(o["a"]);
        QVERIFY(clip.asksForChildren());
        o["a"]->setName(QStringLiteral("renamed"));
        Item *alone = clip.paste(o["c"], false);
        QVERIFY(alone->name() == QStringLiteral("renamed") && !alone->hasChildren());
        Item *branch = clip.paste(o["b"], true);
        QCOMPARE(names(branch), QStringLiteral("a1"));
        QVERIFY(branch->child(0) != o["a1"]);
    }

    void deleteEmptiesTheClipAndRecomputesTheParent()
    {
        Outline::Doc o(Tree);
        o["a"]->setAutoProgress(true);
        o["a1"]->storeProgress(100);
        ItemClip clip;
        clip.markMove(o["a2"]);
        o.setCurrent(o["a21"]);
        QCOMPARE(Editing::deleteItem(o, o["a2"], &clip), o["a"]);
        QVERIFY(clip.isEmpty() && o.current() == o["a"]);
        QCOMPARE(o["a"]->progress(), quint16(100));
        clip.markCopy(o["a1"]);
        Editing::deleteItem(o, o["a"], &clip);
        QVERIFY(clip.isEmpty());
        o["b"]->setAutoProgress(true);
        Outline::build(o["b"], "only | prog=100");
        Editing::deleteItem(o, o["b"]->child(0), &clip);
        QCOMPARE(o["b"]->progress(), quint16(0));
    }

    void dropAndMove()
    {
        Outline::Doc o(Tree);
        QVERIFY(!Editing::canDrop(o["a"], nullptr) && !Editing::canDrop(o["a"], o["a21"]) &&
                !Editing::drop(o["a"], o["a1"]));
        QVERIFY(Editing::drop(o["a1"], o["a"]));
        QVERIFY(Editing::move(o, o["a1"], Editing::Move::DownLevel));
        QCOMPARE(names(o["a2"]), QStringLiteral("a21 a1")); // last child of the previous sibling

        using Editing::Move;
        // Not up from the top, nor under nothing from a first child, nor out of the root, nor down from the last.
        QVERIFY(!Editing::canMove(o, o["a"], Move::Up) && !Editing::canMove(o, o["a2"], Move::DownLevel) &&
                !Editing::canMove(o, o["b"], Move::UpLevel) && !Editing::canMove(o, o["c"], Move::Down));
        QVERIFY(Editing::move(o, o["c"], Move::Up));
        QVERIFY(Editing::move(o, o["a"], Move::Down)); // the one before the last
        o["a"]->setExpanded(true);
        QVERIFY(Editing::move(o, o["a2"], Move::UpLevel));
        QCOMPARE(names(o.root()), QStringLiteral("c a a2 b")); // right after its old parent
        QVERIFY(!o["a"]->isExpanded());                        // it lost its only child
        o.viewMode = Document::ByCategory;
        QVERIFY(!Editing::canMove(o, o["b"], Move::Up));
    }

    void applyPropertiesStoresEveryField()
    {
        Outline::Doc o(Tree);
        Item *a1 = o["a1"], *a2 = o["a2"]; // both renamed below
        ChildOrder::orderChildrenBy(o["a"], TreeNode::SortPriority);
        ItemProperties p;
        p.name = QStringLiteral("renamed");
        p.priority = 20;
        p.category = QStringLiteral("Errands");
        p.image = 7;
        p.colour = 4;
        p.italic = true;
        p.statusType = Item::ProgressBar;
        p.dueDate = SystemTime{2024, 3, 0, 5, 9, 30, 0, 0};
        p.taskTime = QStringLiteral("15");
        p.taskTimeType = 1;
        p.reminderTime = SystemTime{2024, 3, 0, 4, 8, 0, 0, 0};
        p.links = QStringList{QStringLiteral("tel:1")};
        p.note = QByteArray("n\0\0", 4);
        p.progress = 60;
        Editing::applyProperties(a1, p, &o);
        QCOMPARE(Outline::fields(*a1),
                 QStringLiteral(
                     "renamed pri=20 cat=Errands img=7 col=4 st=2 prog=60 flags=4 sort=15 asc=1 exp=0 "
                     "due=2024.3.0.5.9.30.0.0 rem=2024.3.0.4.8.0.0.0 time=15/1 extra=0 links=tel:1 note=6e000000"));
        QCOMPARE(names(o["a"]), QStringLiteral("a2 renamed")); // its parent orders by priority
        QVERIFY(o.categories.contains(QStringLiteral("Errands")));

        // Links and note stay when the dialog did not show them.
        p.links.reset();
        p.note.reset();
        Editing::applyProperties(a2, p, &o);
        QCOMPARE(a2->links().size() + a2->noteSize(), 0);
    }

    // Every edit that can move an item in a parent that keeps its children in order sorts them again.
    void editsSortASortedParentAgain()
    {
        Outline::Doc o(Tree);
        ChildOrder::orderChildrenBy(o.root(), TreeNode::SortName);
        o.setCurrent(o["c"]);
        Editing::insertItem(o, new Item(QStringLiteral("0 first")), InsertPosition::Same);
        QCOMPARE(names(o.root()), QStringLiteral("0 first a b c"));
        ChildOrder::orderChildrenBy(o["a"], TreeNode::SortName);
        o["a"]->setAscending(false);
        ItemClip clip;
        clip.markCopy(o["b"]);
        clip.paste(o["a"], false);
        QCOMPARE(names(o["a"]), QStringLiteral("b a2 a1"));
        ChildOrder::orderChildrenBy(o.root(), TreeNode::SortPriority);
        Editing::setPriority(o["c"], 1);
        QCOMPARE(names(o.root()), QStringLiteral("c 0 first a b"));
        Editing::setPriority(o["a2"], 1); // a name-ordered parent keeps its order
        QCOMPARE(names(o["a"]), QStringLiteral("b a2 a1"));
        o["a"]->setAscending(true);
        ChildOrder::orderChildrenBy(o["a"], TreeNode::SortPriority);
        o["a21"]->setPriority(0);
        QVERIFY(Editing::move(o, o["a21"], Editing::Move::UpLevel));
        QCOMPARE(names(o["a"]), QStringLiteral("a21 a2 b a1"));
    }

    void quickEntry()
    {
        Outline::Doc o(Tree);
        Outline::setFields(o["b"], "pri=4 st=2 col=9 noicon");
        std::unique_ptr<Item> item(Editing::quickEntryItem(QString(80, QLatin1Char('x')), 812, true, o["b"]));
        QCOMPARE(Outline::fields(*item), QString(63, QLatin1Char('x')) +
                                             " pri=4 cat= img=812 col=9 st=2 prog=0 flags=4 sort=15 asc=1 exp=0 "
                                             "due=0.0.0.0.0.0.0.0 rem=0.0.0.0.0.0.0.0 time=/0 extra=0 links= note=");
        QCOMPARE(std::unique_ptr<Item>(Editing::quickEntryItem("t", 0, false, o.root()))->priority(), quint16(10));

        QStringList history;
        QVERIFY(Editing::addToHistory(history, QStringLiteral("Milk")) &&
                !Editing::addToHistory(history, QStringLiteral("milk")) &&
                Editing::addToHistory(history, QStringLiteral("Bread")));
        QCOMPARE(history, QStringList({QStringLiteral("Milk"), QStringLiteral("Bread")}));
    }
};

QTEST_GUILESS_MAIN(TestEditing)
#include "tst_editing.moc"
