#include "model/childorder.h"
#include "model/item.h"
#include "platform/collation.h"
#include "views/grouporder.h"

#include <QRandomGenerator>
#include <QTest>
#include <memory>

// The order inside a group must be exactly the model's child order, ties, undated items and the descending date rules
// included.
class TestGroupOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void sameAsChildOrder()
    {
        static const char *names[] = {"apple", "Apple", "äpple", "pear", "Pear", "", "zebra"};
        for (int key : {0, 1, 2, 3, 4, 5, 9}) {
            for (bool ascending : {true, false}) {
                for (int count : {2, 7, 33, 3000}) {
                    QRandomGenerator rng(quint32(key * 1000 + count + ascending));
                    std::vector<std::unique_ptr<Item>> owned;
                    std::vector<Item *> items;
                    for (int i = 0; i < count; ++i) {
                        auto item = std::make_unique<Item>(QString::fromUtf8(names[rng.bounded(7u)]));
                        item->setCategory(QString::fromUtf8(names[rng.bounded(7u)]));
                        item->setPriority(quint16(1 + rng.bounded(4u)));
                        item->storeProgress(quint16(rng.bounded(3u) * 50));
                        // Undated, a date the calendar cannot hold (30 February), or one of a few.
                        const quint32 due = rng.bounded(4u);
                        item->setDueDate(due == 0
                                             ? SystemTime{}
                                             : SystemTime{2024, quint16(1 + due % 2), 0, quint16(due == 1 ? 30 : due),
                                                          quint16(rng.bounded(2u)), 0, 0, 0});
                        item->setCreated({2023, quint16(1 + rng.bounded(2u)), 0, 1, 0, 0, 0, 0});
                        items.push_back(owned.emplace_back(std::move(item)).get());
                    }
                    std::vector<Item *> expected = items;
                    ChildOrder::sortItems(expected, quint16(key), ascending);
                    GroupOrder::sort(items, quint16(key), ascending);
                    QVERIFY2(items == expected, qPrintable(QStringLiteral("key %1, %2 items").arg(key).arg(count)));
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestGroupOrder)
#include "tst_grouporder.moc"
