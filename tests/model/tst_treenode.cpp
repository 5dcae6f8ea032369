#include "model/editing.h"
#include "model/document.h"
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
        QCOMPARE(item.kind(), TreeNode::Kind::Item);
        QCOMPARE(item.priority(), quint16(10));
        QCOMPARE(item.statusType(), quint16(Item::CheckBox));
        QVERIFY(item.showIcon());
        QVERIFY(!item.isItalic());
        QVERIFY(!item.autoProgress());
        QCOMPARE(item.sort(), quint16(TreeNode::SortManual));
        QVERIFY(item.isAscending());
        QVERIFY(!item.isExpanded());
        QCOMPARE(item.colour(), quint16(0));
        QCOMPARE(item.progress(), quint16(0));
        QVERIFY(item.category().isEmpty());
        QVERIFY(!item.hasDueDate());
        QVERIFY(item.reminderTime().isZero());
        // Thursday 29 February 2024; day of week counts from Sunday = 0.
        const SystemTime expected{2024, 2, 4, 29, 13, 45, 6, 789};
        QCOMPARE(item.created(), expected);
        QCOMPARE(item.flags(), quint32(1));
        QCOMPARE(item.stdFlags(), quint32(2));

        TreeNode root;
        QCOMPARE(root.name(), QStringLiteral("Root"));
        QCOMPARE(root.kind(), TreeNode::Kind::Root);
        QCOMPARE(root.priority(), quint16(0));
        root.setProgress(50); // the root ignores attribute setters
        QCOMPARE(root.progress(), quint16(0));
    }

    void flagPacking_data()
    {
        QTest::addColumn<quint32>("flags");
        QTest::addColumn<bool>("showIcon");
        QTest::addColumn<bool>("autoProgress");
        QTest::addColumn<bool>("italic");
        QTest::newRow("none") << 0u << false << false << false;
        QTest::newRow("icon") << 1u << true << false << false;
        QTest::newRow("auto") << 2u << false << true << false;
        QTest::newRow("italic") << 4u << false << false << true;
        QTest::newRow("all, high bits dropped") << 0xFFFFFFFFu << true << true << true;
    }
    void flagPacking()
    {
        QFETCH(quint32, flags);
        QFETCH(bool, showIcon);
        QFETCH(bool, autoProgress);
        QFETCH(bool, italic);
        Item item;
        item.setFlags(flags);
        QCOMPARE(item.showIcon(), showIcon);
        QCOMPARE(item.autoProgress(), autoProgress);
        QCOMPARE(item.isItalic(), italic);
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
        auto *child = new Item(QStringLiteral("a"));
        root.appendChild(child);
        root.setStdFlags(1);
        QVERIFY(root.isExpanded());
        QVERIFY(!root.isAscending());
        // Losing the last child collapses the node.
        delete root.takeChild(0);
        QVERIFY(!root.isExpanded());
    }

    void childrenAndParents()
    {
        TreeNode root;
        auto *a = new Item(QStringLiteral("a"));
        auto *b = new Item(QStringLiteral("b"));
        auto *c = new Item(QStringLiteral("c"));
        root.appendChild(a);
        root.insertChild(b, 0);
        root.insertChild(c, 99);
        QCOMPARE(root.childCount(), 3);
        QCOMPARE(root.child(0), b);
        QCOMPARE(root.child(2), c);
        QCOMPARE(a->parent(), &root);
        QCOMPARE(root.indexOf(c), 2);
        Item stranger;
        QCOMPARE(root.indexOf(&stranger), 3); // absent: the count
        QVERIFY(!root.removeChild(&stranger));
        QVERIFY(root.removeChild(a));
        QCOMPARE(a->parent(), nullptr);
        b->appendChild(a);
        QCOMPARE(a->level(), 2);
        QVERIFY(root.isAncestorOf(a));
        QVERIFY(!a->isAncestorOf(b));
        QCOMPARE(a->topNode(), &root);
    }

    void cloneCopiesAttributesNotChildren()
    {
        Clock::setFixed(QDateTime(QDate(2020, 1, 1), QTime(8, 0)));
        Item source(QStringLiteral("Source"), 812);
        source.setSort(TreeNode::SortPriority);
        source.setAscending(false);
        source.setExtraWord(0xDEADBEEF);
        source.setTaskTime(QStringLiteral("2h"));
        source.setTaskTimeType(2);
        source.setColour(17);
        source.storeProgress(40);
        source.setStatusType(Item::ProgressBar);
        source.setFlags(6);
        source.setCategory(QStringLiteral("Work"));
        source.setPriority(3);
        source.setDueDate({2021, 5, 0, 4, 0, 0, 0, 0});
        source.setReminderTime({2021, 5, 0, 3, 9, 30, 0, 0});
        source.setLinks({QStringLiteral("http://example.org"), QStringLiteral("!12")});
        source.setNote(QByteArray("n\0o\0", 4));
        source.appendChild(new Item(QStringLiteral("child")));
        source.setExpanded(true);

        Clock::setFixed(QDateTime(QDate(2022, 6, 7), QTime(9, 10)));
        std::unique_ptr<Item> copy(source.clone());
        QCOMPARE(copy->name(), source.name());
        QCOMPARE(copy->image(), quint16(812));
        QCOMPARE(copy->sort(), quint16(TreeNode::SortPriority));
        QVERIFY(!copy->isAscending());
        QCOMPARE(copy->extraWord(), 0xDEADBEEFu);
        QCOMPARE(copy->taskTime(), QStringLiteral("2h"));
        QCOMPARE(copy->taskTimeType(), quint16(2));
        QCOMPARE(copy->colour(), quint16(17));
        QCOMPARE(copy->progress(), quint16(40));
        QCOMPARE(copy->statusType(), quint16(Item::ProgressBar));
        QCOMPARE(copy->flags(), 6u);
        QCOMPARE(copy->category(), QStringLiteral("Work"));
        QCOMPARE(copy->priority(), quint16(3));
        QCOMPARE(copy->dueDate(), source.dueDate());
        QCOMPARE(copy->reminderTime(), source.reminderTime());
        QCOMPARE(copy->links(), source.links());
        QCOMPARE(copy->note(), source.note());
        QVERIFY(!copy->hasChildren());
        QVERIFY(!copy->isExpanded());
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
        const QStringList texts{QStringLiteral("Work"), QString(), QStringLiteral("home"), QStringLiteral("work"),
                                QStringLiteral("Work"), QStringLiteral("Home")};
        for (const QString &text : texts)
            document.collectCategory(text);
        QCOMPARE(document.categories,
                 QStringList({QStringLiteral("Work"), QStringLiteral("home"), QStringLiteral("work"),
                              QStringLiteral("Home")}));
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
        document.setDocFlags(0x04);
        QCOMPARE(document.docFlags(), 0x04u);
        QVERIFY(!document.viewAscending && !document.showNoteWindow);
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
        deepest->setProgress(100); // the roll-up climbs the whole chain
        QCOMPARE(document->root()->child(0)->progress(), quint16(0)); // its one child is manual at 0
        document.reset();
    }
};

QTEST_GUILESS_MAIN(TestTreeNode)
#include "tst_treenode.moc"
