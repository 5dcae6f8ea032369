// How an Item keeps its fields small: packed dates with a whole fallback,
// categories as numbers into one pool, and the tree freed behind the
// caller's back.
#include "model/document.h"
#include "model/item.h"
#include "model/lastingtext.h"

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

    void fileTimes_data()
    {
        QTest::addColumn<SystemTime>("time");
        QTest::addColumn<qint64>("fileTime"); // in 100 ns steps since 1601; -1: refused
        QTest::newRow("the first instant") << SystemTime{1601, 1, 1, 1, 0, 0, 0, 0} << qint64(0);
        QTest::newRow("the first day's last ms") << SystemTime{1601, 1, 1, 1, 23, 59, 59, 999} << qint64(863999990000);
        QTest::newRow("a morning in 2024") << SystemTime{2024, 3, 2, 5, 10, 30, 15, 250} << qint64(133541082152500000);
        QTest::newRow("1600") << SystemTime{1600, 12, 0, 31, 0, 0, 0, 0} << qint64(-1);
        QTest::newRow("30 February") << SystemTime{2024, 2, 0, 30, 0, 0, 0, 0} << qint64(-1);
        QTest::newRow("hour 24") << SystemTime{2024, 3, 0, 5, 24, 0, 0, 0} << qint64(-1);
        QTest::newRow("minute 60") << SystemTime{2024, 3, 0, 5, 0, 60, 0, 0} << qint64(-1);
        QTest::newRow("second 60") << SystemTime{2024, 3, 0, 5, 0, 0, 60, 0} << qint64(-1);
        QTest::newRow("ms 1000") << SystemTime{2024, 3, 0, 5, 0, 0, 0, 1000} << qint64(-1);
    }
    void fileTimes()
    {
        QFETCH(SystemTime, time);
        QFETCH(qint64, fileTime);
        qint64 out = 0;
        QCOMPARE(time.toFileTime(&out), fileTime >= 0);
        if (fileTime >= 0)
            QCOMPARE(out, fileTime);
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

    void rareFieldsAndTheirLimits()
    {
        Item item;
        item.setTaskTime(QStringLiteral("12345678"));
        QCOMPARE(item.taskTime(), QStringLiteral("1234567"));
        item.setLinks({QStringLiteral("a")});
        item.setTaskTime(QString());
        item.setNote("n");
        QCOMPARE(item.links(), QStringList{QStringLiteral("a")});
        item.setLinks({});
        QCOMPARE(item.note(), QByteArray("n"));
    }

    // From here on texts read in this program last until it ends.
    void lastingTextsKeepTheirBytes()
    {
        LastingText::enable();
        const QByteArray units("a\0b\0c\0", 6);
        const auto *data = reinterpret_cast<const uchar *>(units.constData());
        QStringList texts;
        QByteArrayList blocks;
        for (int i = 0; i < 3000; ++i) {
            texts.append(LastingText::copy(data, 1 + i % 3));
            blocks.append(LastingText::copyBytes(data, 1 + i % 5));
        }
        for (int i = 0; i < 3000; ++i) {
            QCOMPARE(texts[i], QStringLiteral("abc").left(1 + i % 3));
            QCOMPARE(blocks[i], units.left(1 + i % 5));
            QCOMPARE(blocks[i].constData()[blocks[i].size()], '\0');
        }
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
