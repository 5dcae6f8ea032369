#include "support/outline.h"

#include "model/childorder.h"
#include "platform/collation.h"

#include <QScopeGuard>
#include <QTest>

namespace {
QString names(const TreeNode *node)
{
    return Outline::names(node->children()).join(QLatin1Char(' '));
}

SystemTime day(int d)
{
    return d ? SystemTime{2024, 3, 0, quint16(d), 0, 0, 0, 0} : SystemTime{};
}
} // namespace

class TestChildOrder : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void byName()
    {
        TreeNode root;
        Outline::build(&root, "pear\nApple\napple\n\xc3\x84pfel\nbanana\n");
        ChildOrder::orderChildrenBy(&root, TreeNode::SortName);
        // Letters first, then accents, then case: lower case first in this locale.
        QCOMPARE(names(&root), QString::fromUtf8("Äpfel apple Apple banana pear"));
        ChildOrder::setDirection(&root, false);
        QCOMPARE(names(&root), QString::fromUtf8("pear banana Apple apple Äpfel"));

        // Above a threshold the sort compares collation keys: the same order.
        TreeNode many;
        for (int i = 0; i < 200; ++i)
            many.appendChild(
                new Item(QStringLiteral("%1%2").arg(QChar(u"aA"[i % 3 == 0] + i % 26)).arg(i * 7919 % 101)));
        ChildOrder::orderChildrenBy(&many, TreeNode::SortName);
        for (int i = 1; i < many.childCount(); ++i)
            QVERIFY(Collation::instance().compare(many.child(i - 1)->name(), many.child(i)->name()) <= 0);
    }

    void byKey()
    {
        // The fields of the items 0, 1, ... in order, and the order they are sorted in.
        const struct {
            int key;
            bool ascending;
            const char *fields, *expected;
        } cases[] = {{1, true, "pri=5,pri=3,pri=5,pri=1,pri=3,pri=5", "3 1 4 0 2 5"}, // equal keys stay in place
                     {1, false, "pri=5,pri=3,pri=5,pri=1", "0 2 1 3"},
                     {2, true, "cat=b,cat=a,cat=b,cat=a", "1 3 0 2"},
                     {3, true, "prog=100,prog=90,prog=80,prog=70", "3 2 1 0"},
                     {4, true, "due=2024-03-09,,due=2024-03-05,due=2024-03-09,", "2 0 3 1 4"}, // undated last, in place
                     // Descending counts equal dates, and undated items, as "before": with the merge taking the right
                     // run's head when it goes before, both come out reversed.
                     {4, false, ",due=2024-03-05,,due=2024-03-02,due=2024-03-05", "2 0 4 1 3"},
                     {4, false, "due=2024-03-07,due=2024-03-07,due=2024-03-07", "2 1 0"},
                     {4, false, "due=2024-03-01,due=2024-03-09,,due=2024-03-09T00:00,due=2024-03-04", "2 3 1 4 0"},
                     {5, true, "made=2024-03-03,made=2024-03-01,made=2024-03-03,made=2024-03-02", "1 3 0 2"},
                     {5, false, "made=2024-03-03,made=2024-03-01,made=2024-03-03,made=2024-03-02", "2 0 3 1"}};
        for (const auto &c : cases) {
            TreeNode root;
            const QStringList fields = QString::fromLatin1(c.fields).split(QLatin1Char(','));
            for (int i = 0; i < fields.size(); ++i)
                Outline::build(&root, (QString::number(i) + QStringLiteral(" | ") + fields[i]).toUtf8().constData());
            root.setAscending(c.ascending);
            ChildOrder::orderChildrenBy(&root, quint16(c.key));
            QCOMPARE(names(&root), QLatin1String(c.expected));
            // Manual order afterwards keeps the sorted order, whatever the direction.
            ChildOrder::orderChildrenBy(&root, TreeNode::SortManual);
            ChildOrder::setDirection(&root, !c.ascending);
            QCOMPARE(names(&root), QLatin1String(c.expected));
        }
    }

    void largeSortIsAStableSort_data()
    {
        QTest::addColumn<qsizetype>("bufferLimit");
        QTest::newRow("full buffer") << qsizetype(-1);
        QTest::newRow("small buffer") << qsizetype(37);
        QTest::newRow("one entry") << qsizetype(1);
        QTest::newRow("in place") << qsizetype(0);
    }
    void largeSortIsAStableSort()
    {
        QFETCH(qsizetype, bufferLimit);
        ChildOrder::setMergeBufferLimit(bufferLimit < 0 ? SIZE_MAX : size_t(bufferLimit));
        auto restore = qScopeGuard([] { ChildOrder::setMergeBufferLimit(SIZE_MAX); });
        // Against std::stable_sort: undated first, later dates first, equal ones by reversed position.
        std::vector<Item *> items;
        std::vector<std::unique_ptr<Item>> owner;
        quint32 seed = 12345;
        for (int i = 0; i < 5000; ++i) {
            seed = seed * 1103515245 + 12345;
            items.push_back(owner.emplace_back(std::make_unique<Item>(QString::number(i))).get());
            items.back()->setDueDate(i % 3 ? day(int(seed >> 20) % 5 + 1) : SystemTime{});
        }
        std::vector<Item *> reference = items;
        const auto rank = [&](const Item *x) {
            return std::make_tuple(!x->hasDueDate(), x->dueDate().day, x->name().toInt());
        };
        std::stable_sort(reference.begin(), reference.end(),
                         [&](const Item *a, const Item *b) { return rank(a) > rank(b); });
        ChildOrder::sortItems(items, TreeNode::SortDueDate, false);
        QVERIFY(items == reference);
    }
};

QTEST_GUILESS_MAIN(TestChildOrder)
#include "tst_childorder.moc"
