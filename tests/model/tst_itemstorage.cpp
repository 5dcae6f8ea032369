// How an Item keeps its fields small: packed dates with a whole fallback,
// categories as numbers into one pool, and the tree freed behind the
// caller's back.
#include "model/document.h"
#include "model/item.h"

#include <QTest>
#include <memory>

class TestItemStorage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void datesKeepEveryField_data()
    {
        QTest::addColumn<SystemTime>("date");
        QTest::newRow("zero") << SystemTime();
        QTest::newRow("every field at the top of its packed range") << SystemTime{65535, 15, 7, 31, 31, 63, 63, 1023};
        QTest::newRow("a month too wide") << SystemTime{2024, 16, 0, 1, 0, 0, 0, 0};
        QTest::newRow("milliseconds too wide") << SystemTime{2024, 1, 0, 1, 0, 0, 0, 1024};
        QTest::newRow("every field too wide") << SystemTime{65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535};
    }
    void datesKeepEveryField()
    {
        QFETCH(SystemTime, date);
        Item item(QStringLiteral("a"), 0, date);
        item.setDueDate(date);
        QCOMPARE(item.created(), date);
        QCOMPARE(item.dueDate(), date);
        QCOMPARE(item.hasDueDate(), date.hasDate());
        const std::unique_ptr<Item> copy(item.clone());
        QCOMPARE(copy->dueDate(), date);
        // A narrow date replaces a wide one and the other stays.
        const SystemTime narrow{2020, 2, 6, 29, 23, 59, 58, 999};
        item.setCreated(narrow);
        QCOMPARE(item.created(), narrow);
        QCOMPARE(item.dueDate(), date);
        item.setDueDate(narrow);
        QCOMPARE(item.dueDate(), narrow);
    }

    void categoriesByText()
    {
        Item a;
        Item b;
        a.setCategory(QStringLiteral("Home"));
        b.setCategory(QStringLiteral("home"));
        QCOMPARE(a.category() + b.category(), QStringLiteral("Homehome"));
        a.setCategory(QString());
        QCOMPARE(a.category() + b.category(), QStringLiteral("home"));
    }

    // Last: from here on every Document in this program frees its tree on a
    // thread of its own.
    void treeFreedInBackgroundLeavesNoLiveLink()
    {
        Document::freeTreesInBackground();
        auto document = std::make_unique<Document>();
        auto *target = new Item(QStringLiteral("target"));
        document->root()->appendChild(new Item(QStringLiteral("parent")));
        document->root()->child(0)->appendChild(target);
        const quint32 handle = target->handle();
        QCOMPARE(Item::fromHandle(handle), target);
        document.reset();
        QCOMPARE(Item::fromHandle(handle), nullptr);
    }
};

QTEST_GUILESS_MAIN(TestItemStorage)
#include "tst_itemstorage.moc"
