#include "model/childorder.h"
#include "model/item.h"
#include "platform/collation.h"
#include "views/grouporder.h"

#include <QRandomGenerator>
#include <QTest>
#include <memory>

// The order inside a group must be exactly the model's child order, ties,
// undated items and the descending date rules included.
class TestGroupOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void sameAsChildOrder_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("ascending");
        QTest::addColumn<int>("count");
        for (int key : {0, 1, 2, 3, 4, 5, 9}) {
            for (bool ascending : {true, false}) {
                for (int count : {2, 7, 33, 3000}) {
                    const QByteArray tag =
                        QByteArray::number(key) + (ascending ? "/asc/" : "/desc/") + QByteArray::number(count);
                    QTest::newRow(tag.constData()) << key << ascending << count;
                }
            }
        }
    }

    void sameAsChildOrder()
    {
        QFETCH(int, key);
        QFETCH(bool, ascending);
        QFETCH(int, count);
        QRandomGenerator rng(quint32(key * 1000 + count + ascending));
        std::vector<std::unique_ptr<Item>> owned;
        std::vector<Item *> items;
        static const char *names[] = {"apple", "Apple", "äpple", "pear", "Pear", "", "zebra"};
        for (int i = 0; i < count; ++i) {
            auto item = std::make_unique<Item>(QString::fromUtf8(names[rng.bounded(7u)]));
            item->setCategory(QString::fromUtf8(names[rng.bounded(7u)]));
            item->setPriority(quint16(1 + rng.bounded(4u)));
            item->storeProgress(quint16(rng.bounded(3u) * 50));
            SystemTime due;
            switch (rng.bounded(4u)) {
            case 0:
                break; // no due date
            case 1:
                due = {2024, 2, 0, 30, 0, 0, 0, 0}; // a date the calendar cannot hold
                break;
            default:
                due = {
                    2024, quint16(1 + rng.bounded(2u)), 0, quint16(1 + rng.bounded(2u)), quint16(rng.bounded(2u)), 0, 0,
                    0};
            }
            item->setDueDate(due);
            item->setCreated({2023, quint16(1 + rng.bounded(2u)), 0, 1, 0, 0, 0, 0});
            items.push_back(item.get());
            owned.push_back(std::move(item));
        }
        std::vector<Item *> expected = items;
        ChildOrder::sortItems(expected, quint16(key), ascending);
        std::vector<Item *> actual = items;
        GroupOrder::sort(actual, quint16(key), ascending);
        QVERIFY(actual == expected);
    }
};

QTEST_GUILESS_MAIN(TestGroupOrder)
#include "tst_grouporder.moc"
