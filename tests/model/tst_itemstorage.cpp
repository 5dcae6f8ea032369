// How an Item keeps its fields small: packed dates, categories as numbers into one pool, lasting texts.
#include "model/document.h"
#include "model/item.h"
#include "model/lastingtext.h"

#include <QTest>
#include <memory>

class TestItemStorage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void datesKeepEveryField()
    {
        // Whether it is a date (a month of 0 is none), then: zero, every field at the top of its packed range, then
        // too wide: the month, the milliseconds, every field.
        const std::pair<SystemTime, bool> dates[] = {{{2024, 0, 1, 3, 4, 5, 6, 7}, false},
                                                     {{}, false},
                                                     {{65535, 15, 7, 31, 31, 63, 63, 1023}, true},
                                                     {{2024, 16, 0, 1, 0, 0, 0, 0}, true},
                                                     {{2024, 1, 0, 1, 0, 0, 0, 1024}, true},
                                                     {{65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535}, true}};
        for (const auto &[date, isDate] : dates) {
            Item item(QStringLiteral("a"), 0, date);
            item.setDueDate(date);
            QCOMPARE(item.hasDueDate(), isDate);
            QCOMPARE(item.created(), date);
            QCOMPARE(std::unique_ptr<Item>(item.clone())->dueDate(), date);
            const SystemTime narrow{2020, 2, 6, 29, 23, 59, 58, 999};
            item.setCreated(narrow); // a narrow date replaces a wide one, and the other stays
            QCOMPARE(item.created(), narrow);
            QCOMPARE(item.dueDate(), date);
        }
    }

    void fileTimes()
    {
        // In 100 ns steps since 1601; -1: refused.
        const std::pair<SystemTime, qint64> cases[] = {{{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
                                                       {{1601, 1, 1, 1, 23, 59, 59, 999}, 863999990000},
                                                       {{2024, 3, 2, 5, 10, 30, 15, 250}, 133541082152500000},
                                                       {{1600, 12, 0, 31, 0, 0, 0, 0}, -1},
                                                       {{2024, 2, 0, 30, 0, 0, 0, 0}, -1},
                                                       {{2024, 3, 0, 5, 24, 0, 0, 0}, -1},
                                                       {{2024, 3, 0, 5, 0, 60, 0, 0}, -1},
                                                       {{2024, 3, 0, 5, 0, 0, 60, 0}, -1},
                                                       {{2024, 3, 0, 5, 0, 0, 0, 1000}, -1}};
        for (const auto &[time, fileTime] : cases) {
            qint64 out = -1;
            QCOMPARE(time.toFileTime(&out), fileTime >= 0);
            QCOMPARE(out, fileTime);
        }
    }

    void categoriesAndRareFields()
    {
        Item a;
        Item b;
        a.setCategory(QStringLiteral("Home"));
        b.setCategory(QStringLiteral("home"));
        QCOMPARE(a.category() + b.category(), QStringLiteral("Homehome"));
        a.setCategory(QString());
        QCOMPARE(a.category() + b.category(), QStringLiteral("home"));
        a.setTaskTime(QStringLiteral("12345678"));
        QCOMPARE(a.taskTime(), QStringLiteral("1234567"));
        a.setLinks({QStringLiteral("a")});
        a.setTaskTime(QString());
        a.setNote("n");
        QCOMPARE(a.links(), QStringList{QStringLiteral("a")});
        a.setLinks({});
        QCOMPARE(a.note(), QByteArray("n"));
    }

    // From here on texts read in this program last until it ends.
    void lastingTextsKeepTheirBytes()
    {
        LastingText::enable();
        const QByteArray units("a\0b\0c\0", 6);
        const auto *data = reinterpret_cast<const uchar *>(units.constData());
        // Short texts are packed one after another, bytes in whole units.
        const QString first = LastingText::copy(data, 3);
        QCOMPARE(LastingText::copy(data, 2).constData(), first.constData() + 3);
        const QByteArray bytes = LastingText::copyBytes(data, 5);
        QCOMPARE(LastingText::copyBytes(data, 1).constData(), bytes.constData() + 6);
        for (int i = 0; i < 3000; ++i) {
            QCOMPARE(LastingText::copy(data, 1 + i % 3), QStringLiteral("abc").left(1 + i % 3));
            const QByteArray block = LastingText::copyBytes(data, 1 + i % 5);
            QCOMPARE(block, units.left(1 + i % 5));
            QCOMPARE(block.constData()[block.size()], '\0');
        }
    }

    // Last: from here on every Document in this program frees its tree on a thread of its own.
    void treeFreedInBackgroundLeavesNoLiveLink()
    {
        Document::freeTreesInBackground();
        auto document = std::make_unique<Document>();
        document->root()->appendChild(new Item(QStringLiteral("parent")));
        document->root()->child(0)->appendChild(new Item(QStringLiteral("target")));
        const quint32 handle = document->root()->child(0)->child(0)->handle();
        document.reset();
        QCOMPARE(Item::fromHandle(handle), nullptr);
    }
};

QTEST_GUILESS_MAIN(TestItemStorage)
#include "tst_itemstorage.moc"
