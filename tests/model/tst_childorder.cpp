#include "model/childorder.h"
#include "model/document.h"
#include "platform/collation.h"

#include <QScopeGuard>
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
        for (const char *n : {"pear", "Apple", "apple", "Äpfel", "banana"})
            add(&root, QString::fromUtf8(n));
        ChildOrder::orderChildrenBy(&root, TreeNode::SortName);
        // Letters first, then accents, then case: lower case first in this locale.
        QCOMPARE(names(&root), QString::fromUtf8("Äpfel apple Apple banana pear"));
        ChildOrder::setDirection(&root, false);
        QCOMPARE(names(&root), QString::fromUtf8("pear banana Apple apple Äpfel"));
    }

    void byNameWithSortKeysAgreesWithDirectComparison()
    {
        // Above a threshold the sort compares collation keys; the order must
        // be the same as comparing the texts.
        TreeNode many;
        QStringList texts;
        for (int i = 0; i < 200; ++i)
            texts << QStringLiteral("%1%2").arg(QChar(i % 3 ? u'a' + i % 26 : u'A' + i % 26)).arg((i * 7919) % 101);
        for (const QString &t : texts)
            add(&many, t);
        ChildOrder::orderChildrenBy(&many, TreeNode::SortName);
        for (int i = 1; i < many.childCount(); ++i)
            QVERIFY(Collation::instance().compare(many.child(i - 1)->name(), many.child(i)->name()) <= 0);
    }

    void equalKeysStayInPlaceAscending()
    {
        TreeNode root;
        const int priorities[] = {5, 3, 5, 1, 3, 5};
        for (int i = 0; i < 6; ++i)
            add(&root, QString::number(i))->setPriority(quint16(priorities[i]));
        ChildOrder::orderChildrenBy(&root, TreeNode::SortPriority);
        QCOMPARE(names(&root), QStringLiteral("3 1 4 0 2 5"));
        // Manual order afterwards keeps the sorted order as the new manual order.
        ChildOrder::orderChildrenBy(&root, TreeNode::SortManual);
        QCOMPARE(names(&root), QStringLiteral("3 1 4 0 2 5"));
        ChildOrder::setDirection(&root, false);
        QCOMPARE(names(&root), QStringLiteral("3 1 4 0 2 5"));
    }

    void dueDates_data()
    {
        QTest::addColumn<QList<int>>("days"); // 0: no due date
        QTest::addColumn<bool>("ascending");
        QTest::addColumn<QString>("expected");
        // Items are named by their position before the sort.
        QTest::newRow("ascending: undated last, in place") << QList<int>{0, 5, 0, 2, 5} << true << "3 1 4 0 2";
        // Descending counts equal dates, and undated items, as "before": with
        // the merge taking the right run's head when it goes before, both come
        // out reversed.
        QTest::newRow("descending: undated first, reversed") << QList<int>{0, 5, 0, 2, 5} << false << "2 0 4 1 3";
        QTest::newRow("descending: equal dates reversed") << QList<int>{7, 7, 7, 7} << false << "3 2 1 0";
        QTest::newRow("ascending: equal dates kept") << QList<int>{7, 7, 7, 7} << true << "0 1 2 3";
        QTest::newRow("descending: mixed") << QList<int>{1, 9, 0, 9, 4} << false << "2 3 1 4 0";
    }
    void dueDates()
    {
        QFETCH(QList<int>, days);
        QFETCH(bool, ascending);
        QFETCH(QString, expected);
        TreeNode root;
        for (int i = 0; i < days.size(); ++i)
            add(&root, QString::number(i))->setDueDate(day(days[i]));
        root.setAscending(ascending);
        ChildOrder::orderChildrenBy(&root, TreeNode::SortDueDate);
        QCOMPARE(names(&root), expected);
    }

    void monthZeroMeansNoDate()
    {
        Item dated, undated;
        dated.setDueDate(day(3));
        undated.setDueDate({2024, 0, 1, 3, 4, 5, 6, 7});
        QVERIFY(ChildOrder::goesBefore(&dated, &undated, TreeNode::SortDueDate, true));
        QVERIFY(!ChildOrder::goesBefore(&undated, &dated, TreeNode::SortDueDate, true));
        QVERIFY(ChildOrder::goesBefore(&undated, &dated, TreeNode::SortDueDate, false));
        QVERIFY(ChildOrder::goesBefore(&undated, &undated, TreeNode::SortDueDate, false));
    }

    void creationDateAndOtherKeys()
    {
        TreeNode root;
        const int days[] = {3, 1, 3, 2};
        for (int i = 0; i < 4; ++i) {
            Item *item = add(&root, QString::number(i));
            item->setCreated(day(days[i]));
            item->storeProgress(quint16(100 - 10 * i));
            item->setCategory(i % 2 ? QStringLiteral("b") : QStringLiteral("a"));
        }
        ChildOrder::orderChildrenBy(&root, TreeNode::SortCreationDate);
        QCOMPARE(names(&root), QStringLiteral("1 3 0 2"));
        ChildOrder::setDirection(&root, false);
        QCOMPARE(names(&root), QStringLiteral("2 0 3 1")); // equal dates reversed
        ChildOrder::setDirection(&root, true);
        ChildOrder::orderChildrenBy(&root, TreeNode::SortPercentComplete);
        QCOMPARE(names(&root), QStringLiteral("3 2 1 0"));
        ChildOrder::orderChildrenBy(&root, TreeNode::SortCategory);
        QCOMPARE(names(&root), QStringLiteral("2 0 3 1"));
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
        // Against std::stable_sort with the same strict ordering.
        std::vector<Item *> items;
        std::vector<std::unique_ptr<Item>> owner;
        quint32 seed = 12345;
        for (int i = 0; i < 5000; ++i) {
            seed = seed * 1103515245 + 12345;
            owner.push_back(std::make_unique<Item>(QString::number(i)));
            owner.back()->setPriority(quint16(seed >> 16) % 20 + 1);
            items.push_back(owner.back().get());
        }
        std::vector<Item *> expected = items;
        std::stable_sort(expected.begin(), expected.end(),
                         [](const Item *a, const Item *b) { return a->priority() > b->priority(); });
        ChildOrder::sortItems(items, TreeNode::SortPriority, false);
        QVERIFY(items == expected);

        // The descending date rule reverses equal dates whatever the buffer.
        std::vector<Item *> dated(items.begin(), items.begin() + 300);
        for (size_t i = 0; i < dated.size(); ++i)
            dated[i]->setDueDate(i % 3 ? day(int(i % 5) + 1) : SystemTime{});
        std::vector<Item *> reference = dated;
        std::stable_sort(reference.begin(), reference.end(), [&](const Item *a, const Item *b) {
            // undated first, later dates first, equal ones by reversed position
            const auto rank = [&](const Item *x) {
                return std::make_tuple(!x->hasDueDate(), x->dueDate().day,
                                       std::find(dated.begin(), dated.end(), x) - dated.begin());
            };
            return rank(a) > rank(b);
        });
        ChildOrder::sortItems(dated, TreeNode::SortDueDate, false);
        QVERIFY(dated == reference);
    }
};

QTEST_GUILESS_MAIN(TestChildOrder)
#include "tst_childorder.moc"
