// How an Item keeps its fields small: packed dates with a whole fallback,
// categories as numbers into one pool, the children in one block, and the
// tree freed behind the caller's back.
#include "model/document.h"
#include "model/item.h"

#include <QTest>
#include <memory>

namespace {

SystemTime time(quint16 year, quint16 month, quint16 dayOfWeek, quint16 day, quint16 hour, quint16 minute,
                quint16 second, quint16 milliseconds)
{
    return {year, month, dayOfWeek, day, hour, minute, second, milliseconds};
}

QStringList names(const TreeNode *node)
{
    QStringList out;
    for (const Item *child : node->children())
        out.append(child->name());
    return out;
}

} // namespace

class TestItemStorage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void datesKeepEveryField_data()
    {
        QTest::addColumn<SystemTime>("date");
        QTest::newRow("zero") << SystemTime();
        QTest::newRow("every field at the top of its packed range") << time(65535, 15, 7, 31, 31, 63, 63, 1023);
        QTest::newRow("a month too wide") << time(2024, 16, 0, 1, 0, 0, 0, 0);
        QTest::newRow("milliseconds too wide") << time(2024, 1, 0, 1, 0, 0, 0, 1024);
        QTest::newRow("every field too wide") << time(65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535);
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
        const SystemTime narrow = time(2020, 2, 6, 29, 23, 59, 58, 999);
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
        QCOMPARE(a.category(), QStringLiteral("Home"));
        QCOMPARE(b.category(), QStringLiteral("home"));
        b.setCategory(QStringLiteral("Home"));
        QCOMPARE(b.category(), QStringLiteral("Home"));
        a.setCategory(QString());
        QCOMPARE(a.category(), QString());
    }

    void childrenInOneBlock()
    {
        TreeNode root;
        for (const char *name : {"b", "d", "e", "f", "g"}) // past the first block of four
            root.appendChild(new Item(QString::fromLatin1(name)));
        root.insertChild(new Item(QStringLiteral("a")), 0);
        root.insertChild(new Item(QStringLiteral("c")), 2);
        root.insertChild(new Item(QStringLiteral("h")), 99);
        QCOMPARE(names(&root), QStringList({"a", "b", "c", "d", "e", "f", "g", "h"}));
        QCOMPARE(root.indexOf(root.child(7)), 7);
        delete root.takeChild(0);
        delete root.takeChild(6);
        QCOMPARE(names(&root), QStringList({"b", "c", "d", "e", "f", "g"}));
        std::vector<Item *> order = root.copyOfChildren();
        std::reverse(order.begin(), order.end());
        root.reorderChildren(order);
        QCOMPARE(names(&root), QStringList({"g", "f", "e", "d", "c", "b"}));
        while (root.hasChildren())
            delete root.takeChild(0);
        QCOMPARE(root.childCount(), 0);
        root.appendChild(new Item(QStringLiteral("again")));
        QCOMPARE(names(&root), QStringList({"again"}));
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
