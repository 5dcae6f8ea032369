#include "views/categorylist.h"
#include "model/links.h"
#include "model/document.h"

#include <QTest>

class TestLinks : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void kinds_data()
    {
        QTest::addColumn<QString>("link");
        QTest::addColumn<int>("kind");
        QTest::newRow("item") << "!42" << int(Links::Kind::ItemLink);
        QTest::newRow("item wins over url") << "!http://x" << int(Links::Kind::ItemLink);
        QTest::newRow("web") << "http://example.org" << int(Links::Kind::Url);
        QTest::newRow("mailto") << "mailto:ann@example.org" << int(Links::Kind::Url);
        QTest::newRow("mailto inside") << "write mailto:x" << int(Links::Kind::Url);
        QTest::newRow("url wins over phone") << "ftp://ph:1" << int(Links::Kind::Url);
        QTest::newRow("phone") << "ph:555 1234" << int(Links::Kind::Phone);
        QTest::newRow("phone inside") << "home ph:555" << int(Links::Kind::Phone);
        QTest::newRow("relative file") << "Notes/plan.txt" << int(Links::Kind::File);
        QTest::newRow("absolute file") << "/tmp/plan.txt" << int(Links::Kind::File);
    }
    void kinds()
    {
        QFETCH(QString, link);
        QFETCH(int, kind);
        QCOMPARE(int(Links::kindOf(link)), kind);
    }

    void deadItemLinksAreDroppedAndCounted()
    {
        Document document;
        auto *owner = new Item(QStringLiteral("owner"));
        auto *live = new Item(QStringLiteral("Live target"));
        auto *doomed = new Item(QStringLiteral("doomed"));
        document.root()->appendChild(owner);
        document.root()->appendChild(live);
        document.root()->appendChild(doomed);
        const QString deadLink = doomed->linkText();
        owner->setLinks({deadLink, live->linkText(), QStringLiteral("!0"), QStringLiteral("x ph:12")});
        document.root()->removeChild(doomed);
        delete doomed;

        const Links::Page page = Links::fill(document, *owner);
        QCOMPARE(page.dropped, 2);
        QCOMPARE(page.rows.size(), 2);
        QCOMPARE(page.rows[0].text, QStringLiteral("Live target"));
        QCOMPARE(page.rows[0].target, live);
        // A phone row shows the text after the first three characters, and is
        // written back as "ph:" and that text.
        QCOMPARE(page.rows[1].text, QStringLiteral("h:12"));
        QCOMPARE(Links::store(page.rows), QStringList({live->linkText(), QStringLiteral("ph:h:12")}));
    }

    void storeWritesEachKind()
    {
        Document document;
        auto *target = new Item(QStringLiteral("t"));
        document.root()->appendChild(target);
        const QList<Links::Row> rows{Links::urlRow(QStringLiteral("mailto:a@b.c")), Links::itemRow(target),
                                     Links::phoneRow(QStringLiteral("+44 20 7946 0000")),
                                     Links::fileRow(QStringLiteral("/home/u/Documents/a/b.txt"),
                                                    QStringLiteral("/home/u/Documents")),
                                     Links::fileRow(QStringLiteral("/home/u/Documents2/c.txt"),
                                                    QStringLiteral("/home/u/Documents/"))};
        QCOMPARE(Links::store(rows), QStringList({QStringLiteral("mailto:a@b.c"), target->linkText(),
                                                  QStringLiteral("ph:+44 20 7946 0000"), QStringLiteral("a/b.txt"),
                                                  QStringLiteral("/home/u/Documents2/c.txt")}));
    }

    void followTargets()
    {
        const QString docs = QStringLiteral("/home/u/Documents");
        QCOMPARE(Links::target(QStringLiteral("a/b.txt"), docs), QUrl::fromLocalFile(docs + "/a/b.txt"));
        QCOMPARE(Links::target(QStringLiteral("/etc/hosts"), docs), QUrl::fromLocalFile("/etc/hosts"));
        QCOMPARE(Links::target(QStringLiteral("mailto:a@b.c"), docs).scheme(), QStringLiteral("mailto"));
        QCOMPARE(Links::target(QStringLiteral("http://example.org/x"), docs), QUrl("http://example.org/x"));
        QCOMPARE(Links::target(QStringLiteral("ph:555"), docs), QUrl("tel:555"));
        QVERIFY(!Links::target(QStringLiteral("!3"), docs).isValid());
    }

    void categoryList()
    {
        Document document;
        document.collectCategory(QStringLiteral("work"));
        document.collectCategory(QStringLiteral("Home"));
        const QStringList store{QStringLiteral("Work"), QStringLiteral("Home"), QStringLiteral("Errands")};
        QCOMPARE(CategoryList::fill(document, false, store), QStringList({"work", "Home"}));
        QCOMPARE(CategoryList::fill(document, true, store), QStringList({"work", "Home", "Work", "Errands"}));
        QCOMPARE(CategoryList::fill(document, true, {}), QStringList({"work", "Home"}));
    }
};

QTEST_GUILESS_MAIN(TestLinks)
#include "tst_links.moc"
