#include "support/randomtree.h"

#include "model/childorder.h"
#include "platform/collation.h"
#include "views/grouporder.h"

#include <QTest>

// The order inside a group is exactly the child order, ties and the descending date rules included.
class TestGroupOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void sameAsChildOrder()
    {
        for (int count : {2, 7, 33, 3000}) {
            TreeNode root;
            RandomTree::fill(&root, count, quint32(count));
            std::vector<Item *> items;
            root.forEachDescendant([&](Item *item) { items.push_back(item); });
            for (size_t i = 0; i < items.size(); i += 5)
                items[i]->setDueDate({2024, 2, 0, 30, 0, 0, 0, 0}); // a date the calendar cannot hold
            for (int key : {0, 1, 2, 3, 4, 5, 9}) {
                for (bool ascending : {true, false}) {
                    std::vector<Item *> expected = items;
                    ChildOrder::sortItems(expected, quint16(key), ascending);
                    std::vector<Item *> actual = items;
                    GroupOrder::sort(actual, quint16(key), ascending);
                    QVERIFY2(actual == expected, qPrintable(QStringLiteral("key %1, %2 items").arg(key).arg(count)));
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestGroupOrder)
#include "tst_grouporder.moc"
