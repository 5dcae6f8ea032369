#include "support/outline.h"

#include "model/links.h"
#include "views/categorylist.h"

#include <QTest>

class TestLinks : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void kinds()
    {
        using K = Links::Kind;
        const std::pair<const char *, K> cases[] = {{"!42", K::ItemLink},           {"!http://x", K::ItemLink},
                                                    {"http://example.org", K::Url}, {"write mailto:x", K::Url},
                                                    {"ftp://ph:1", K::Url},         {"home ph:555", K::Phone},
                                                    {"Notes/plan.txt", K::File},    {"/tmp/plan.txt", K::File}};
        for (const auto &[link, kind] : cases)
            QCOMPARE(int(Links::kindOf(QLatin1String(link))), int(kind));
    }

    void pageAndStore()
    {
        Outline::Doc document("owner\nLive target");
        Item *owner = document["owner"], *live = document["Live target"], *doomed = new Item(QStringLiteral("doomed"));
        owner->setLinks({doomed->linkText(), live->linkText(), QStringLiteral("!0"), QStringLiteral("x ph:12")});
        delete doomed;
        const Links::Page page = Links::fill(document, *owner);
        QCOMPARE(page.dropped, 2);
        QCOMPARE(page.rows.value(0).text, QStringLiteral("Live target"));
        // A phone row shows the text after the first three characters, and is written back as "ph:" and that text.
        QCOMPARE(Links::store(page.rows), QStringList({live->linkText(), QStringLiteral("ph:h:12")}));

        const QList<Links::Row> rows{
            Links::urlRow(QStringLiteral("mailto:a@b.c")), Links::phoneRow(QStringLiteral("+44 20 7946 0000")),
            Links::fileRow(QStringLiteral("/home/u/Documents/a/b.txt"), QStringLiteral("/home/u/Documents")),
            Links::fileRow(QStringLiteral("/home/u/Documents2/c.txt"), QStringLiteral("/home/u/Documents/"))};
        QCOMPARE(Links::store(rows),
                 QStringList({"mailto:a@b.c", "ph:+44 20 7946 0000", "a/b.txt", "/home/u/Documents2/c.txt"}));
    }

    void categoryList()
    {
        Document document;
        document.collectCategory(QStringLiteral("work"));
        document.collectCategory(QStringLiteral("Home"));
        const QStringList store{QStringLiteral("Work"), QStringLiteral("Home"), QStringLiteral("Errands")};
        QCOMPARE(CategoryList::fill(document, false, store), QStringList({"work", "Home"}));
        QCOMPARE(CategoryList::fill(document, true, store), QStringList({"work", "Home", "Work", "Errands"}));
    }
};

QTEST_GUILESS_MAIN(TestLinks)
#include "tst_links.moc"
