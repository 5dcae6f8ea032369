#include "support/outline.h"

#include "model/editing.h"
#include "model/treewalker.h"
#include "platform/clock.h"
#include "platform/collation.h"

#include <QTest>

class TestTreeNode : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { Clock::reset(); }

    void newItemDefaultsAndFlags()
    {
        Clock::setFixed(QDateTime(QDate(2024, 2, 29), QTime(13, 45, 6, 789)));
        Item item(QStringLiteral("Task"), 3);
        // Thursday 29 February 2024; day of week counts from Sunday = 0.
        QCOMPARE(item.created(), (SystemTime{2024, 2, 4, 29, 13, 45, 6, 789}));
        QCOMPARE(item.stdFlags(), quint32(2));
        for (const quint32 flags : {0u, 1u, 2u, 4u, 0xFFFFFFF8u, 0xFFFFFFFFu}) { // icon, automatic, italic
            item.setFlags(flags);
            QCOMPARE(quint32(item.showIcon()) | quint32(item.autoProgress()) << 1 | quint32(item.isItalic()) << 2,
                     flags & 7u);
            QCOMPARE(item.flags(), flags & 7u);
        }
        TreeNode root;
        root.setProgress(50); // the root ignores attribute setters
        QCOMPARE(root.progress(), quint16(0));
    }

    // The children live in one block that grows past its first four.
    void childrenAndParents()
    {
        TreeNode root;
        Outline::build(&root, "b\nd\ne\nf\ng");
        root.insertChild(new Item(QStringLiteral("a")), 0);
        root.insertChild(new Item(QStringLiteral("c")), 2);
        root.insertChild(new Item(QStringLiteral("h")), 99);
        QCOMPARE(Outline::names(root.children()), QStringList({"a", "b", "c", "d", "e", "f", "g", "h"}));
        Item stranger;
        QCOMPARE(root.indexOf(&stranger), 8); // absent: the count
        QVERIFY(!root.removeChild(&stranger));
        Item *a = root.child(0);
        QVERIFY(root.removeChild(a));
        QCOMPARE(a->parent(), nullptr);
        delete root.takeChild(6);
        std::vector<Item *> order = root.copyOfChildren();
        std::reverse(order.begin(), order.end());
        root.reorderChildren(order);
        QCOMPARE(Outline::names(root.children()), QStringList({"g", "f", "e", "d", "c", "b"}));
        root.child(1)->appendChild(a);
        QVERIFY(root.isAncestorOf(a) && !a->isAncestorOf(root.child(1)));
        root.setStdFlags(1);
        QVERIFY(root.isExpanded() && !root.isAscending());
        while (root.hasChildren())
            delete root.takeChild(0);
        QVERIFY(!root.isExpanded());
        root.setStdFlags(3);
        QVERIFY(!root.isExpanded() && root.isAscending());
        root.appendChild(new Item(QStringLiteral("again")));
        QCOMPARE(Outline::names(root.children()), QStringList({"again"}));
    }

    void cloneCopiesAttributesNotChildren()
    {
        Item source(QStringLiteral("Source"), 812);
        Outline::setFields(&source, "cat=Work pri=3 due=2021-05-04 rem=2021-05-03T09:30 prog=40 st=2 col=17 sort=1 "
                                    "desc italic auto note=n");
        source.setExtraWord(0xDEADBEEF);
        source.setTaskTimeType(2);
        source.setLinks({QStringLiteral("http://example.org"), QStringLiteral("!12")});
        source.appendChild(new Item(QStringLiteral("child")));
        Clock::setFixed(QDateTime(QDate(2022, 6, 7), QTime(9, 10)));
        std::unique_ptr<Item> copy(source.clone());
        QVERIFY(!copy->hasChildren());
        QCOMPARE(Outline::fields(*copy), Outline::fields(source));
        QCOMPARE(copy->created().year, quint16(2022)); // a duplicate is created now
    }

    void documentLinksCategoriesAndFlags()
    {
        Outline::Doc document("target"), other("foreign");
        const QString link = document.root()->child(0)->linkText();
        QCOMPARE(document.linkTarget(link), document.root()->child(0));
        QCOMPARE(document.linkTarget(other.root()->child(0)->linkText()), nullptr); // not live in this document
        // A destroyed target leaves a dead link, and its handle is never reused.
        delete document.root()->takeChild(0);
        Outline::build(document.root(), "newcomer");
        QCOMPARE(document.linkTarget(link), nullptr);
        QCOMPARE(Item::handleOfLink(QStringLiteral("!abc")) + Item::handleOfLink(QStringLiteral("http://x")), 0u);

        for (const char *text : {"Work", "", "home", "work", "Work", "Home"})
            document.collectCategory(QString::fromLatin1(text));
        QCOMPARE(document.categories, QStringList({"Work", "home", "work", "Home"}));
        // A spelling not met before that the locale finds equal joins nothing.
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        document.collectCategory(QString::fromUtf8("Caf\u00e9"));
        document.collectCategory(QString::fromUtf8("Cafe\u0301"));
        QCOMPARE(document.categories.size(), 5);
        document.categories.clear(); // an edit of the list elsewhere is noticed
        document.collectCategory(QStringLiteral("Work"));
        QCOMPARE(document.categories, QStringList{QStringLiteral("Work")});

        document.setDocFlags(0x8F | 0x100);
        QVERIFY(document.hideCompleted && document.showNoteWindow && document.showDueDate && document.showStatistics &&
                document.viewAscending);
        QCOMPARE(document.docFlags(), 0x8Fu); // no other bit is written
        document.setDocFlags(0x06);
        QCOMPARE(document.docFlags(), 0x06u);
    }

    void aMillionLevelsWithoutRecursion()
    {
        // Built, walked, looked up, copied, rolled up and destroyed with explicit stacks.
        constexpr int depth = 1000000;
        auto document = std::make_unique<Document>();
        TreeNode *parent = document->root();
        for (int i = 0; i < depth; ++i) {
            auto *item = new Item(QString());
            parent->appendChild(item);
            parent = item;
        }
        Item *top = document->root()->child(0), *deepest = parent->asItem();
        int count = 0, maxDepth = 0;
        for (TreeWalker walker(document->root()); walker.next(); ++count)
            maxDepth = std::max(maxDepth, walker.depth());
        QCOMPARE(count, depth);
        QCOMPARE(maxDepth, depth);
        QCOMPARE(deepest->level(), depth);
        QCOMPARE(document->linkTarget(deepest->linkText()), deepest);
        std::unique_ptr<Item> copy(top->clone());
        Editing::copyChildren(top, copy.get());
        count = 0;
        copy->forEachDescendant([&](Item *) { ++count; });
        QCOMPARE(count, depth - 1);
        top->setAutoProgress(true);
        deepest->setProgress(100); // the roll-up climbs the whole chain to a manual 0 below the top
        QCOMPARE(top->progress(), quint16(0));
    }
};

QTEST_GUILESS_MAIN(TestTreeNode)
#include "tst_treenode.moc"
