#include "exchange/itemexport.h"
#include "support/exchangetest.h"
#include "support/outline.h"

#include <QTemporaryDir>
#include <QTest>

using namespace ExchangeTest;

namespace {

// R(A(A1(A1x),A2(A2a)),B(B1),C): A1, A2a, B and B1 done; A2a links to B, to C and to the web.
struct Sample {
    Document document;
    Sample()
    {
        document.noteType = Document::RichText;
        document.root()->setName(QStringLiteral("R"));
        Outline::build(document.root(), "A\n  A1 | prog=100\n    A1x\n  A2\n    A2a | prog=100 cat=Work\n"
                                        "B | prog=100\n  B1 | prog=100\nC\n");
        Item *a2a = item("A2a");
        a2a->setLinks({item("B")->linkText(), item("C")->linkText(), QStringLiteral("http://x")});
        a2a->setNote("{\\rtf1 note}");
        a2a->setCreated(at(2021, 6, 7, 8, 9, 10));
    }
    Item *item(const QString &name) const { return Outline::find(document.root(), name); }
};

} // namespace

class TestItemExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void choices()
    {
        const std::tuple<int, const char *, QStringList, int, const char *, const char *> cases[] = {
            {0, "", {}, 4, "R(A1,A2a,B(B1))", "R(A(A1(A1x),A2),C)"},
            {1, "", {}, 6, "R(A(A1,A2(A2a)),B(B1))", "R(A(A1(A1x),A2),C)"},
            {2, "A", {}, 5, "A(A1(A1x),A2(A2a))", "R(B(B1),C)"},
            {2, "", {}, 8, "R(A(A1(A1x),A2(A2a)),B(B1),C)", "R"},
            {3, "", {"A2a", "C", "A2"}, 3, "R(A2(A2a),C)", "R(A(A1(A1x)),B(B1))"},
            {3, "", {"A", "A1", "A1x", "A2", "A2a"}, 5, "R(A(A1(A1x),A2(A2a)))", "R(B(B1),C)"},
            {3, "", {"A1"}, 1, "R(A1)", "R(A(A1(A1x),A2(A2a)),B(B1),C)"},
        };
        for (const auto &[choice, current, selection, count, exported, leftAfterDelete] : cases) {
            for (const bool deleteAfter : {false, true}) {
                Sample sample;
                if (*current)
                    sample.document.setCurrent(sample.item(QString::fromLatin1(current)));
                std::vector<Item *> picked;
                for (const QString &name : selection)
                    picked.push_back(sample.item(name));
                const QString before = describe(sample.document.root());
                QTemporaryDir dir;
                // A failed write deletes nothing.
                QCOMPARE(ItemExport::exportItems(sample.document, ItemExport::Choice(choice), deleteAfter, picked,
                                                 dir.filePath(QStringLiteral("missing/part.qbx"))),
                         ItemExport::Failed);
                QCOMPARE(describe(sample.document.root()), before);
                const QString path = dir.filePath(QStringLiteral("part.qbx"));
                QCOMPARE(
                    ItemExport::exportItems(sample.document, ItemExport::Choice(choice), deleteAfter, picked, path),
                    count);
                Document back;
                QCOMPARE(describeFile(path, &back), QString::fromLatin1(exported));
                QCOMPARE(back.noteType, quint16(Document::RichText));
                QCOMPARE(describe(sample.document.root()), deleteAfter ? QString::fromLatin1(leftAfterDelete) : before);
            }
        }
    }

    void copiesKeepTheirFieldsAndLinks()
    {
        Sample sample;
        sample.item(QStringLiteral("B"))->setExpanded(true);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("part.qbx"));
        QCOMPARE(ItemExport::exportItems(sample.document, ItemExport::CompletedOnly, false, {}, path), 4);
        Document back;
        QCOMPARE(describeFile(path, &back), QStringLiteral("R(A1,A2a,B(B1))"));
        const Item *b = Outline::find(back.root(), QStringLiteral("B"));
        QVERIFY(b->isExpanded()); // its child came along
        const Item *a2a = Outline::find(back.root(), QStringLiteral("A2a"));
        QCOMPARE(a2a->created(), at(2021, 6, 7, 8, 9, 10));
        // B was written too: its link leads to B's copy. C was not: a dead link.
        const QStringList links = a2a->links();
        QCOMPARE(links.size(), 3);
        QCOMPARE(back.linkTarget(links[0]), b);
        QCOMPARE(back.linkTarget(links[1]), nullptr);
        QCOMPARE(links[2], QStringLiteral("http://x"));
    }

    void nothingToExport()
    {
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
