#include "exchange/itemexport.h"
#include "support/exchangetest.h"
#include "model/document.h"
#include "storage/documentfile.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace ExchangeTest;

Item *find(const TreeNode *root, const QString &name)
{
    Item *found = nullptr;
    root->forEachDescendant([&](Item *item) {
        if (!found && item->name() == name)
            found = item;
    });
    return found;
}

// R
//   A
//     A1 (done)
//       A1x
//     A2
//       A2a (done; links to B and to C)
//   B (done)
//     B1 (done)
//   C
struct Sample {
    Document document;
    Sample()
    {
        document.noteType = Document::RichText;
        TreeNode *r = document.root();
        r->setName(QStringLiteral("R"));
        auto add = [](TreeNode *parent, const char *name, bool done) {
            auto *item = new Item(QString::fromLatin1(name));
            item->storeProgress(done ? 100 : 0);
            item->setCreated(at(2021, 6, 7, 8, 9, 10));
            parent->appendChild(item);
            return item;
        };
        Item *a = add(r, "A", false);
        Item *a1 = add(a, "A1", true);
        add(a1, "A1x", false);
        Item *a2 = add(a, "A2", false);
        Item *a2a = add(a2, "A2a", true);
        Item *b = add(r, "B", true);
        add(b, "B1", true);
        Item *c = add(r, "C", false);
        a2a->setLinks({b->linkText(), c->linkText(), QStringLiteral("http://x")});
        a2a->setCategory(QStringLiteral("Work"));
        a2a->setNote("{\\rtf1 note}");
    }
    Item *item(const char *name) const { return find(document.root(), QString::fromLatin1(name)); }
};

} // namespace

class TestItemExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void choices()
    {
        // Each choice exports, then exports and deletes.
        const struct {
            ItemExport::Choice choice;
            const char *current;
            QStringList selection;
            int count;
            const char *exported, *leftAfterDelete;
        } cases[] = {
            {ItemExport::Choice(0), "", {}, 4, "R(A1,A2a,B(B1))", "R(A(A1(A1x),A2),C)"},
            {ItemExport::Choice(1), "", {}, 6, "R(A(A1,A2(A2a)),B(B1))", "R(A(A1(A1x),A2),C)"},
            {ItemExport::Choice(2), "A", {}, 5, "A(A1(A1x),A2(A2a))", "R(B(B1),C)"},
            {ItemExport::Choice(2), "", {}, 8, "R(A(A1(A1x),A2(A2a)),B(B1),C)", "R"},
            {ItemExport::Choice(3), "", {"A2a", "C", "A2"}, 3, "R(A2(A2a),C)", "R(A(A1(A1x)),B(B1))"},
            {ItemExport::Choice(3), "", {"A", "A1", "A1x", "A2", "A2a"}, 5, "R(A(A1(A1x),A2(A2a)))", "R(B(B1),C)"},
            {ItemExport::Choice(3), "", {"A1"}, 1, "R(A1)", "R(A(A1(A1x),A2(A2a)),B(B1),C)"},
        };
        for (const auto &c : cases) {
            for (const bool deleteAfter : {false, true}) {
                Sample sample;
                if (*c.current)
                    sample.document.setCurrent(sample.item(c.current));
                std::vector<Item *> picked;
                for (const QString &name : c.selection)
                    picked.push_back(sample.item(name.toLatin1().constData()));
                const QString before = describe(sample.document.root());
                QTemporaryDir dir;
                const QString path = dir.filePath(QStringLiteral("part.qbx"));
                QCOMPARE(ItemExport::exportItems(sample.document, c.choice, deleteAfter, picked, path), c.count);
                Document back;
                QCOMPARE(DocumentFile::load(path, &back), DocumentFile::Loaded);
                QCOMPARE(describe(back.root()), QString::fromLatin1(c.exported));
                QCOMPARE(back.noteType, quint16(Document::RichText));
                QCOMPARE(describe(sample.document.root()),
                         deleteAfter ? QString::fromLatin1(c.leftAfterDelete) : before);
            }
        }
    }

    void copiesKeepTheirFieldsAndLinks()
    {
        Sample sample;
        sample.item("B")->setExpanded(true);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("part.qbx"));
        QCOMPARE(ItemExport::exportItems(sample.document, ItemExport::CompletedOnly, false, {}, path), 4);
        Document back;
        QCOMPARE(DocumentFile::load(path, &back), DocumentFile::Loaded);
        QVERIFY(find(back.root(), QStringLiteral("B"))->isExpanded()); // its child came along
        const Item *a2a = find(back.root(), QStringLiteral("A2a"));
        QVERIFY(a2a);
        QCOMPARE(a2a->category(), QStringLiteral("Work"));
        QCOMPARE(a2a->note(), QByteArray("{\\rtf1 note}"));
        QCOMPARE(a2a->created(), at(2021, 6, 7, 8, 9, 10));
        const QStringList links = a2a->links();
        QCOMPARE(links.size(), 3);
        // B was written too: its link leads to B's copy. C was not: a dead link.
        QCOMPARE(back.linkTarget(links[0]), find(back.root(), QStringLiteral("B")));
        QCOMPARE(back.linkTarget(links[1]), nullptr);
        QCOMPARE(links[2], QStringLiteral("http://x"));
    }

    void failureDeletesNothing()
    {
        for (int choice = 0; choice < 4; ++choice) {
            Sample sample;
            sample.document.setCurrent(sample.item("B"));
            const QString before = describe(sample.document.root());
            QTemporaryDir dir;
            QCOMPARE(ItemExport::exportItems(sample.document, ItemExport::Choice(choice), true, {sample.item("C")},
                                             dir.filePath(QStringLiteral("missing/part.qbx"))),
                     ItemExport::Failed);
            QCOMPARE(describe(sample.document.root()), before);
        }
        // Nothing to export: no file, and nothing deleted.
        Document document;
        document.root()->appendChild(new Item(QStringLiteral("open task")));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("part.qbx"));
        QCOMPARE(ItemExport::exportItems(document, ItemExport::CompletedOnly, true, {}, path), 0);
        QCOMPARE(document.root()->childCount(), 1);
        Document empty;
        QCOMPARE(ItemExport::exportItems(empty, ItemExport::CurrentBranch, true, {}, path), 0);
        QVERIFY(!QFile::exists(path));
    }
};

QTEST_GUILESS_MAIN(TestItemExport)
#include "tst_itemexport.moc"
