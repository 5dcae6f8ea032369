#include "support/outline.h"

#include "model/document.h"
#include "model/editing.h"
#include "platform/clock.h"
#include "platform/collation.h"

#include <QTest>

class TestTreeNode : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { Clock::reset(); }

    void newItemDefaults()
    {
        Clock::setFixed(QDateTime(QDate(2024, 2, 29), QTime(13, 45, 6, 789)));
        Item item(QStringLiteral("Task"), 3);
        QCOMPARE(Outline::fields(item), QStringLiteral("Task pri=10 cat= img=3 col=0 st=1 prog=0 flags=1 sort=15 asc=1 "
                                                       "exp=0 due=0.0.0.0.0.0.0.0 rem=0.0.0.0.0.0.0.0 time=/0 "
                                                       "extra=0 links= note="));
        // Thursday 29 February 2024; day of week counts from Sunday = 0.
        QCOMPARE(item.created(), (SystemTime{2024, 2, 4, 29, 13, 45, 6, 789}));
        QCOMPARE(item.stdFlags(), quint32(2));

        TreeNode root;
        QCOMPARE(root.name(), QStringLiteral("Root"));
        QCOMPARE(root.kind(), TreeNode::Kind::Root);
        root.setProgress(50); // the root ignores attribute setters
        QCOMPARE(root.progress(), quint16(0));
    }

    void flagPacking_data()
    {
        QTest::addColumn<quint32>("flags");
        QTest::addColumn<QString>("expected"); // icon, auto, italic
        QTest::newRow("none") << 0u << "000";
        QTest::newRow("icon") << 1u << "100";
        QTest::newRow("auto") << 2u << "010";
        QTest::newRow("italic") << 4u << "001";
        QTest::newRow("all, high bits dropped") << 0xFFFFFFFFu << "111";
    }
    void flagPacking()
    {
        QFETCH(quint32, flags);
        QFETCH(QString, expected);
        Item item;
        item.setFlags(flags);
        QCOMPARE(QStringLiteral("%1%2%3").arg(item.showIcon()).arg(item.autoProgress()).arg(item.isItalic()), expected);
        QCOMPARE(item.flags(), flags & 7u);
    }

    void expandedOnlyWithChildren()
    {
        TreeNode root;
        root.setExpanded(true);
        QVERIFY(!root.isExpanded());
        root.setStdFlags(3);
        QVERIFY(!root.isExpanded());
        QVERIFY(root.isAscending());
        root.appendChild(new Item(QStringLiteral("a")));
        root.setStdFlags(1);
        QVERIFY(root.isExpanded());
        QVERIFY(!root.isAscending());
        // Losing the last child collapses the node.
        delete root.takeChild(0);
        QVERIFY(!root.isExpanded());
    }

    // The children live in one block that grows past its first four.
    void childrenAndParents()
    {
        TreeNode root;
        for (const char *name : {"b", "d", "e", "f", "g"})
            root.appendChild(new Item(QString::fromLatin1(name)));
        root.insertChild(new Item(QStringLiteral("a")), 0);
        root.insertChild(new Item(QStringLiteral("c")), 2);
        root.insertChild(new Item(QStringLiteral("h")), 99);
        QCOMPARE(Outline::names(root.children()), QStringList({"a", "b", "c", "d", "e", "f", "g", "h"}));
        QCOMPARE(root.indexOf(root.child(7)), 7);
        Item stranger;
        QCOMPARE(root.indexOf(&stranger), 8); // absent: the count
        QVERIFY(!root.removeChild(&stranger));
        Item *a = root.child(0);
        QVERIFY(root.removeChild(a));
        QCOMPARE(a->parent(), nullptr);
        delete root.takeChild(6);
        QCOMPARE(Outline::names(root.children()), QStringList({"b", "c", "d", "e", "f", "g"}));
        std::vector<Item *> order = root.copyOfChildren();
        std::reverse(order.begin(), order.end());
        root.reorderChildren(order);
        QCOMPARE(Outline::names(root.children()), QStringList({"g", "f", "e", "d", "c", "b"}));
        root.child(1)->appendChild(a);
        QCOMPARE(a->parent(), root.child(1));
        QCOMPARE(a->level(), 2);
        QVERIFY(root.isAncestorOf(a));
        QVERIFY(!a->isAncestorOf(root.child(1)));
        QCOMPARE(a->topNode(), &root);
        while (root.hasChildren())
            delete root.takeChild(0);
        root.appendChild(new Item(QStringLiteral("again")));
        QCOMPARE(Outline::names(root.children()), QStringList({"again"}));
    }

    void cloneCopiesAttributesNotChildren()
    {
        Item source(QStringLiteral("Source"), 812);
        Outline::setFields(&source, "cat=Work pri=3 due=2021-05-04 rem=2021-05-03T09:30 prog=40 st=2 col=17 sort=1 "
                                    "desc italic auto note=n");
        source.setExtraWord(0xDEADBEEF);
        source.setTaskTime(QStringLiteral("2h"));
        source.setTaskTimeType(2);
        source.setLinks({QStringLiteral("http://example.org"), QStringLiteral("!12")});
        source.appendChild(new Item(QStringLiteral("child")));
        source.setExpanded(true);
        const QString before = Outline::fields(source);

        Clock::setFixed(QDateTime(QDate(2022, 6, 7), QTime(9, 10)));
        std::unique_ptr<Item> copy(source.clone());
        QVERIFY(!copy->hasChildren());
        copy->appendChild(new Item(QStringLiteral("child")));
        copy->setExpanded(true);
        QCOMPARE(Outline::fields(*copy), before);
        QCOMPARE(copy->created().year, quint16(2022)); // a duplicate is created now
        // The copy is independent of its source.
        source.setNote(QByteArray());
        QCOMPARE(copy->noteSize(), 4);
    }

    void itemHandles()
    {
        Document document;
        auto *target = new Item(QStringLiteral("target"));
        document.root()->appendChild(target);
        const QString link = target->linkText();
        QVERIFY(link.startsWith(QLatin1Char('!')));
        QCOMPARE(document.linkTarget(link), target);
        QCOMPARE(target->linkText(), link); // stable

        // An Item of another tree is not live in this document.
        Document other;
        auto *foreign = new Item(QStringLiteral("foreign"));
        other.root()->appendChild(foreign);
        QCOMPARE(document.linkTarget(foreign->linkText()), nullptr);
        QCOMPARE(other.linkTarget(foreign->linkText()), foreign);

        // A destroyed target leaves a dead link, and its handle is never reused.
        document.root()->removeChild(target);
        delete target;
        QCOMPARE(document.linkTarget(link), nullptr);
        auto *newcomer = new Item(QStringLiteral("newcomer"));
        document.root()->appendChild(newcomer);
        QVERIFY(newcomer->linkText() != link);
        QCOMPARE(document.linkTarget(link), nullptr);

        QCOMPARE(Item::handleOfLink(QStringLiteral("!abc")), 0u);
        QCOMPARE(Item::handleOfLink(QStringLiteral("http://x")), 0u);
        QCOMPARE(document.linkTarget(QStringLiteral("!0")), nullptr);
    }

    void categoriesCollectedCaseSensitively()
    {
        Document document;
        const QStringList texts{QStringLiteral("Work"), QString(),
                                QStringLiteral("home"), QStringLiteral("work"),
                                QStringLiteral("Work"), QStringLiteral("Home")};
        for (const QString &text : texts)
            document.collectCategory(text);
        QCOMPARE(document.categories, QStringList({QStringLiteral("Work"), QStringLiteral("home"),
                                                   QStringLiteral("work"), QStringLiteral("Home")}));
        // A spelling not met before that the locale finds equal joins nothing.
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        document.collectCategory(QString::fromUtf8("Caf\u00e9"));
        document.collectCategory(QString::fromUtf8("Cafe\u0301"));
        QCOMPARE(document.categories.size(), 5);
        // An edit of the list elsewhere is noticed.
        document.categories.clear();
        document.collectCategory(QStringLiteral("Work"));
        QCOMPARE(document.categories, QStringList{QStringLiteral("Work")});
    }

    void documentFlags()
    {
        Document document;
        document.setDocFlags(0x8F | 0x100);
        QVERIFY(document.hideCompleted && document.showNoteWindow && document.showDueDate && document.showStatistics);
        QVERIFY(document.viewAscending);
        QCOMPARE(document.docFlags(), 0x8Fu); // no other bit is written
        document.setDocFlags(0x06);
        QCOMPARE(document.docFlags(), 0x06u);
        QVERIFY(!document.viewAscending && !document.hideCompleted && document.showNoteWindow);
    }

    void deepChainSurvives()
    {
        // A million levels: built, walked, searched, cloned and destroyed
        // without recursion.
        constexpr int depth = 1000000;
        auto document = std::make_unique<Document>();
        TreeNode *parent = document->root();
        Item *deepest = nullptr;
        for (int i = 0; i < depth; ++i) {
            auto *item = new Item(QString());
            parent->appendChild(item);
            parent = item;
            deepest = item;
        }
        int count = 0;
        int maxDepth = 0;
        TreeWalker walker(document->root());
        while (walker.next()) {
            ++count;
            maxDepth = std::max(maxDepth, walker.depth());
        }
        QCOMPARE(count, depth);
        QCOMPARE(maxDepth, depth);
        QCOMPARE(deepest->level(), depth);
        QCOMPARE(document->linkTarget(deepest->linkText()), deepest);

        auto *copyTop = document->root()->child(0)->clone();
        Editing::copyChildren(document->root()->child(0), copyTop);
        int copied = 0;
        copyTop->forEachDescendant([&](Item *) { ++copied; });
        QCOMPARE(copied, depth - 1);
        delete copyTop;

        deepest->storeProgress(100);
        document->root()->child(0)->setAutoProgress(true);
        deepest->setProgress(100);                                    // the roll-up climbs the whole chain
        QCOMPARE(document->root()->child(0)->progress(), quint16(0)); // its one child is manual at 0
        document.reset();
    }
};

QTEST_GUILESS_MAIN(TestTreeNode)
#include "tst_treenode.moc"
