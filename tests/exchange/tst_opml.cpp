#include "exchange/opmlexport.h"
#include "exchange/opmlimport.h"
#include "support/exchangetest.h"
#include "support/treesummary.h"
#include "model/document.h"
#include "tools/documentgenerator.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>

Q_DECLARE_METATYPE(OpmlImport::Result)

namespace {

using namespace ExchangeTest;

OpmlImport::Result readBytes(const QByteArray &bytes, TreeNode *root, Document *categories = nullptr,
                             QString *error = nullptr, quint16 noteType = 0)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return OpmlImport::read(buffer, root, {noteType, 812}, categories, error);
}

QByteArray writeBytes(const TreeNode *root, quint16 noteType)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!OpmlExport::write(buffer, root, {noteType}))
        return QByteArray("(failed)");
    return buffer.data();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestOpml : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void exportWritesEveryAttribute();
    void importsWhatOtherOutlinersWrite_data();
    void importsWhatOtherOutlinersWrite();
    void roundTrip_data();
    void roundTrip();
    void importIntoIsAllOrNothing();
};

void TestOpml::exportWritesEveryAttribute()
{
    TreeNode root(QStringLiteral("Plans & <ideas>"));
    auto *a = new Item(QStringLiteral("Say \"hi\" & <go>"));
    a->setNote(note(u"line one\r\nline two"));
    a->storeProgress(100);
    a->setPriority(3);
    a->setCategory(QStringLiteral("Work"));
    a->setDueDate(at(2024, 2, 29));
    a->setLinks({QStringLiteral("!5"), QStringLiteral("https://example.org/?a=1&b=2"), QStringLiteral("C:\\x")});
    root.appendChild(a);
    // Units XML cannot carry are left out.
    auto *b = new Item(QStringLiteral("B\x01" "a\uFFFEr\uFFFF"));
    b->setStatusType(Item::NoStatus);
    a->appendChild(b);
    auto *c = new Item(QStringLiteral("c"));
    c->setStatusType(Item::ProgressBar);
    c->storeProgress(40);
    a->appendChild(c);
    c->appendChild(new Item(QStringLiteral("d")));
    // The last item is nested: the outlines still open close at the end.
    auto *last = new Item(QString());
    root.appendChild(last);
    last->appendChild(new Item(QStringLiteral("e")));

    QCOMPARE(writeBytes(&root, 0),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<opml version=\"2.0\">\n"
                        "  <head>\n"
                        "    <title>Plans &amp; &lt;ideas&gt;</title>\n"
                        "  </head>\n"
                        "  <body>\n"
                        "    <outline text=\"Say &quot;hi&quot; &amp; &lt;go&gt;\" _note=\"line one&#10;line two\" "
                        "_status=\"checked\" _priority=\"3\" _category=\"Work\" _due=\"2024-02-29\" type=\"link\" "
                        "url=\"https://example.org/?a=1&amp;b=2\">\n"
                        "      <outline text=\"Bar\" _status=\"none\"/>\n"
                        "      <outline text=\"c\" _progress=\"40\">\n"
                        "        <outline text=\"d\"/>\n"
                        "      </outline>\n"
                        "    </outline>\n"
                        "    <outline text=\"\">\n"
                        "      <outline text=\"e\"/>\n"
                        "    </outline>\n"
                        "  </body>\n"
                        "</opml>\n"));
}

void TestOpml::importsWhatOtherOutlinersWrite_data()
{
    QTest::addColumn<QByteArray>("opml");
    QTest::addColumn<OpmlImport::Result>("result");
    QTest::addColumn<QString>("rootName");
    QTest::addColumn<QString>("summary");

    const auto ok = OpmlImport::Result::Ok;
    const auto format = OpmlImport::Result::FormatError;

    QTest::newRow("completed items, notes, markup kept as text")
        << QByteArray("<?xml version=\"1.0\"?>\n<opml version=\"2.0\"><head><owner_email>me@example.org</owner_email>"
                      "</head><body>\n<outline text=\"Groceries\" _complete=\"true\">\n"
                      "  <outline text=\"Milk\" _note=\"2 litres&#10;semi-skimmed\" /></outline>\n"
                      "<outline text=\"&lt;b&gt;Bold&lt;/b&gt; plan\" complete=\"true\"/></body></opml>\n")
        << ok << "Root" << "1 Groceries[x]\n2 Milk{2 litres\nsemi-skimmed}\n1 <b>Bold</b> plan[x]\n";
    QTest::newRow("feed list: title instead of text, feed addresses")
        << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<opml version=\"1.0\"><head>"
                      "<title>My feeds</title><dateCreated>Mon, 02 Jan 2006 10:00:00 GMT</dateCreated></head><body>"
                      "<outline title=\"News \xe9t\xe9\" text=\"\"><outline type=\"rss\" text=\"Example\" title=\"Other\" "
                      "xmlUrl=\"https://example.org/feed.xml\" htmlUrl=\"https://example.org/\"/></outline>"
                      "</body></opml>")
        << ok << "My feeds"
        << QString::fromUtf8("1 News été\n2 Example<https://example.org/feed.xml><https://example.org/>\n");
    QTest::newRow("missing text, unknown attributes and elements, bad values")
        << QByteArray("<opml version=\"2.0\"><body><outline isComment=\"true\" created=\"Tue, 01 Jan 2019\">"
                      "<extra><outline text=\"inner\"/></extra></outline>"
                      "<outline text=\"b\" _priority=\"21\" _due=\"soon\" _progress=\"101\" _status=\"maybe\"/>"
                      "</body></opml>")
        << ok << "Root" << "1 \n2 inner\n1 b\n";
    QTest::newRow("HTML entities")
        << QByteArray("<opml version=\"2.0\"><head><title>Caf&eacute;</title></head><body><outline text=\""
                      "cr&egrave;me&nbsp;br&ucirc;l&eacute;e &ndash; &copy; &#8364;5 &amp;amp; &Omega;&omega;\"/>"
                      "</body></opml>")
        << ok << QString::fromUtf8("Café") << QString::fromUtf8("1 crème\u00a0brûlée – © €5 &amp; Ωω\n");
    QTest::newRow("link outline")
        << QByteArray("<opml version=\"2.0\"><body><outline text=\"Docs\" type=\"link\" "
                      "url=\" https://doc.example.org/a?b=1&amp;c=2 \"/></body></opml>")
        << ok << "Root" << "1 Docs<https://doc.example.org/a?b=1&c=2>\n";
    QTest::newRow("task attributes")
        << QByteArray("<opml version=\"2.0\"><body><outline text=\"Task\" _status=\"checked\" _priority=\"2\" "
                      "_category=\"Home\" _due=\"2024-03-01T09:30:00Z\"/><outline text=\"Idea\" _status=\"none\"/>"
                      "<outline text=\"Half\" _progress=\"50\" _priority=\"1\"/>"
                      "<outline text=\"Open\" _status=\"unchecked\" _priority=\"20\"/></body></opml>")
        << ok << "Root" << "1 Task[x]!2@Home^2024-03-01\n1 Idea[-]\n1 Half[50%]!1\n1 Open!20\n";

    QTest::newRow("mismatched tags") << QByteArray("<opml><body><outline text=\"a\"></body></opml>") << format
                                     << "Root" << QString();
    QTest::newRow("cut short") << QByteArray("<opml><body><outline text=\"a\">") << format << "Root" << QString();
    QTest::newRow("not an outline") << QByteArray("<rss version=\"2.0\"><channel/></rss>") << format << "Root"
                                    << QString();
    QTest::newRow("empty file") << QByteArray() << format << "Root" << QString();
    QTest::newRow("unknown entity") << QByteArray("<opml><body><outline text=\"&bogus;\"/></body></opml>") << format
                                    << "Root" << QString();
}

void TestOpml::importsWhatOtherOutlinersWrite()
{
    QFETCH(QByteArray, opml);
    QFETCH(OpmlImport::Result, result);
    QFETCH(QString, rootName);
    QFETCH(QString, summary);
    TreeNode root;
    QString error;
    QCOMPARE(readBytes(opml, &root, nullptr, &error), result);
    if (result != OpmlImport::Result::Ok) {
        QVERIFY(!error.isEmpty());
        return;
    }
    QCOMPARE(root.name(), rootName);
    QCOMPARE(TreeSummary::of(&root, 0), summary);
}

void TestOpml::roundTrip_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<bool>("chain");
    QTest::addColumn<quint16>("noteType");
    QTest::addColumn<quint32>("seed");

    QTest::newRow("tree, plain notes") << 3000 << false << quint16(0) << 1u;
    QTest::newRow("tree, rich text notes") << 800 << false << quint16(2) << 7u;
    QTest::newRow("chain 100,000 deep") << 100000 << true << quint16(0) << 3u;
}

void TestOpml::roundTrip()
{
    QFETCH(int, items);
    QFETCH(bool, chain);
    QFETCH(quint16, noteType);
    QFETCH(quint32, seed);
    Document original;
    DocumentGenerator::Options options;
    options.items = items;
    options.chain = chain;
    options.noteType = noteType;
    options.seed = seed;
    DocumentGenerator::generate(&original, options);
    original.root()->child(0)->setName(QStringLiteral("a < b & \"c\" > 'd'\tend"));

    const QByteArray bytes = writeBytes(original.root(), noteType);
    Document copy;
    copy.noteType = noteType;
    QCOMPARE(readBytes(bytes, copy.root(), &copy, nullptr, noteType), OpmlImport::Result::Ok);
    QCOMPARE(copy.root()->name(), original.root()->name());
    // An outline holds one link.
    TreeSummary::Keep keep;
    keep.allLinks = false;
    const QString expected = TreeSummary::of(original.root(), noteType, keep);
    QVERIFY(expected.contains(QLatin1Char('{')) && expected.contains(QLatin1Char('@')));
    QCOMPARE(TreeSummary::of(copy.root(), noteType, keep), expected);
    QCOMPARE(copy.categories.size(), original.categories.size());
}

void TestOpml::importIntoIsAllOrNothing()
{
    QTemporaryDir dir;
    const QString good = dir.filePath(QStringLiteral("good.opml"));
    const QString bad = dir.filePath(QStringLiteral("bad.opml"));
    QVERIFY(writeFile(good, "<opml version=\"2.0\"><head><title>Ignored</title></head><body>"
                            "<outline text=\"n\" _category=\"New\" _note=\"x\" _status=\"checked\"><outline text=\"m\"/>"
                            "</outline>"
                            "</body></opml>"));
    QVERIFY(writeFile(bad, "<opml version=\"2.0\"><body><outline text=\"n\" _category=\"Other\"/><outline>"
                           "</body></opml>"));
    Document document;
    document.noteType = 2;
    document.root()->setName(QStringLiteral("R"));
    auto *a = new Item(QStringLiteral("a"));
    a->setCategory(document.collectCategory(QStringLiteral("Old")));
    a->setStatusType(Item::ProgressBar);
    a->setAutoProgress(true);
    document.root()->appendChild(a);
    a->appendChild(new Item(QStringLiteral("b")));
    const QString before = TreeSummary::of(document.root(), 2);

    QCOMPARE(OpmlImport::importInto(bad, &document, a, {}), OpmlImport::Result::FormatError);
    QCOMPARE(TreeSummary::of(document.root(), 2), before);
    QCOMPARE(document.categories, QStringList{QStringLiteral("Old")});

    // The notes take the document's type, whatever the options say; the
    // target's automatic progress counts the new children, and it opens.
    QCOMPARE(OpmlImport::importInto(good, &document, a, {}), OpmlImport::Result::Ok);
    QCOMPARE(TreeSummary::of(document.root(), 2), QString("1 a[50%]@Old\n2 b\n2 n[x]@New{x}\n3 m\n"));
    QVERIFY(a->isExpanded());
    QCOMPARE(document.root()->name(), QStringLiteral("R"));
    QCOMPARE(document.categories, (QStringList{QStringLiteral("Old"), QStringLiteral("New")}));
}

QTEST_GUILESS_MAIN(TestOpml)
#include "tst_opml.moc"
