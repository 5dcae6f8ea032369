#include "exchange/opmlexport.h"
#include "exchange/opmlimport.h"
#include "support/exchangetest.h"
#include "support/outline.h"
#include "support/treesummary.h"
#include "tools/documentgenerator.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>

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
    return OpmlExport::write(buffer, root, {noteType}) ? buffer.data() : QByteArray("(failed)");
}

} // namespace

class TestOpml : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void exportWritesEveryAttribute()
    {
        // The last item is nested: the outlines still open close at the end.
        TreeNode root(QStringLiteral("Plans & <ideas>"));
        Outline::build(&root, "Say \"hi\" & <go> | prog=100 pri=3 cat=Work due=2024-02-29\n  B | st=0\n"
                              "  c | st=2 prog=40\n    d\n|\n  e\n");
        Item *a = root.child(0);
        a->setNote(note(u"line one\r\nline two"));
        a->setLinks({QStringLiteral("!5"), QStringLiteral("https://example.org/?a=1&b=2"), QStringLiteral("C:\\x")});
        a->child(0)->setName(QStringLiteral("B\001a\uFFFEr\uFFFF")); // units XML cannot carry are left out

        QCOMPARE(
            writeBytes(&root, 0),
            QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<opml version=\"2.0\">\n  <head>\n"
                       "    <title>Plans &amp; &lt;ideas&gt;</title>\n  </head>\n  <body>\n"
                       "    <outline text=\"Say &quot;hi&quot; &amp; &lt;go&gt;\" _note=\"line one&#10;line two\" "
                       "_status=\"checked\" _priority=\"3\" _category=\"Work\" _due=\"2024-02-29\" type=\"link\" "
                       "url=\"https://example.org/?a=1&amp;b=2\">\n"
                       "      <outline text=\"Bar\" _status=\"none\"/>\n      <outline text=\"c\" _progress=\"40\">\n"
                       "        <outline text=\"d\"/>\n      </outline>\n    </outline>\n"
                       "    <outline text=\"\">\n      <outline text=\"e\"/>\n    </outline>\n"
                       "  </body>\n</opml>\n"));
    }

    void importsWhatOtherOutlinersWrite()
    {
        // The root's name and the items; none: the file is refused as no OPML.
        const std::tuple<QByteArray, const char *> cases[] = {
            {"<?xml version=\"1.0\"?>\n<opml version=\"2.0\"><head><owner_email>me@example.org</owner_email></head>"
             "<body>\n<outline text=\"Groceries\" _complete=\"true\">\n  <outline text=\"Milk\" _note=\"2 litres&#10;"
             "semi-skimmed\" /></outline>\n<outline text=\"&lt;b&gt;Bold&lt;/b&gt; plan\" complete=\"true\"/></body>"
             "</opml>\n",
             "Root\n1 Groceries[x]\n2 Milk{2 litres\nsemi-skimmed}\n1 <b>Bold</b> plan[x]\n"},
            {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<opml version=\"1.0\"><head><title>My feeds</title>"
             "<dateCreated>Mon, 02 Jan 2006 10:00:00 GMT</dateCreated></head><body><outline title=\"News \xe9t\xe9\" "
             "text=\"\"><outline type=\"rss\" text=\"Example\" title=\"Other\" xmlUrl=\"https://example.org/feed.xml\" "
             "htmlUrl=\"https://example.org/\"/></outline></body></opml>",
             "My feeds\n1 News été\n2 Example<https://example.org/feed.xml><https://example.org/>\n"},
            // Missing text, unknown attributes and elements, bad values.
            {"<opml version=\"2.0\"><body><outline isComment=\"true\" created=\"Tue, 01 Jan 2019\"><extra><outline "
             "text=\"inner\"/></extra></outline><outline text=\"b\" _priority=\"21\" _due=\"soon\" _progress=\"101\" "
             "_status=\"maybe\"/></body></opml>",
             "Root\n1 \n2 inner\n1 b\n"},
            {"<opml version=\"2.0\"><head><title>Caf&eacute;</title></head><body><outline text=\"cr&egrave;me&nbsp;"
             "br&ucirc;l&eacute;e &ndash; &copy; &#8364;5 &amp;amp; &Omega;&omega;\"/></body></opml>",
             "Café\n1 crème\u00a0brûlée – © €5 &amp; Ωω\n"},
            {"<opml version=\"2.0\"><body><outline text=\"Docs\" type=\"link\" url=\" https://doc.example.org/a?b=1"
             "&amp;c=2 \"/></body></opml>",
             "Root\n1 Docs<https://doc.example.org/a?b=1&c=2>\n"},
            {"<opml version=\"2.0\"><body><outline text=\"Task\" _status=\"checked\" _priority=\"2\" "
             "_category=\"Home\" _due=\"2024-03-01T09:30:00Z\"/><outline text=\"Idea\" _status=\"none\"/><outline "
             "text=\"Half\" _progress=\"50\" _priority=\"1\"/><outline text=\"Open\" _status=\"unchecked\" "
             "_priority=\"20\"/></body></opml>",
             "Root\n1 Task[x]!2@Home^2024-03-01\n1 Idea[-]\n1 Half[50%]!1\n1 Open!20\n"},
            {"<opml><body><outline text=\"a\"></body></opml>", nullptr},
            {"<opml><body><outline text=\"a\">", nullptr},
            {"<rss version=\"2.0\"><channel/></rss>", nullptr},
            {"", nullptr},
            {"<opml><body><outline text=\"&bogus;\"/></body></opml>", nullptr},
        };
        for (const auto &[opml, expected] : cases) {
            TreeNode root;
            QString error;
            QCOMPARE(readBytes(opml, &root, nullptr, &error),
                     expected ? OpmlImport::Result::Ok : OpmlImport::Result::FormatError);
            QCOMPARE(error.isEmpty(), bool(expected));
            if (expected)
                QCOMPARE(root.name() + '\n' + TreeSummary::of(&root, 0), QString::fromUtf8(expected));
        }
    }

    void roundTrip()
    {
        for (const DocumentGenerator::Options &options :
             {DocumentGenerator::Options{3000}, {800, 7, false, 2}, DocumentGenerator::Options{100000, 3, true}}) {
            const quint16 noteType = options.noteType;
            Document original;
            DocumentGenerator::generate(&original, options);
            original.root()->child(0)->setName(QStringLiteral("a < b & \"c\" > 'd'\tend"));
            Document copy;
            copy.noteType = noteType;
            QCOMPARE(readBytes(writeBytes(original.root(), noteType), copy.root(), &copy, nullptr, noteType),
                     OpmlImport::Result::Ok);
            QCOMPARE(copy.root()->name(), original.root()->name());
            TreeSummary::Keep keep;
            keep.allLinks = false; // an outline holds one link
            const QString expected = TreeSummary::of(original.root(), noteType, keep);
            QVERIFY(expected.contains(QLatin1Char('{')) && expected.contains(QLatin1Char('@')));
            QCOMPARE(TreeSummary::of(copy.root(), noteType, keep), expected);
            QCOMPARE(copy.categories.size(), original.categories.size());
        }
    }

    void importIntoIsAllOrNothing()
    {
        QTemporaryDir dir;
        const QString good = dir.filePath(QStringLiteral("good.opml"));
        const QString bad = dir.filePath(QStringLiteral("bad.opml"));
        QVERIFY(writeFile(good, "<opml version=\"2.0\"><head><title>Ignored</title></head><body><outline text=\"n\" "
                                "_category=\"New\" _note=\"x\" _status=\"checked\"><outline text=\"m\"/></outline>"
                                "</body></opml>"));
        QVERIFY(writeFile(bad, "<opml version=\"2.0\"><body><outline text=\"n\" _category=\"Other\"/><outline>"
                               "</body></opml>"));
        Document document;
        document.noteType = 2;
        document.root()->setName(QStringLiteral("R"));
        document.collectCategory(QStringLiteral("Old"));
        Outline::build(document.root(), "a | cat=Old st=2 auto\n  b\n");
        Item *a = document.root()->child(0);
        const QString before = TreeSummary::of(document.root(), 2);

        QCOMPARE(OpmlImport::importInto(bad, &document, a, {}), OpmlImport::Result::FormatError);
        QCOMPARE(TreeSummary::of(document.root(), 2), before);
        QCOMPARE(document.categories, QStringList{QStringLiteral("Old")});
        // Notes take the document's type whatever the options say; the target's progress counts the new children.
        QCOMPARE(OpmlImport::importInto(good, &document, a, {}), OpmlImport::Result::Ok);
        QCOMPARE(TreeSummary::of(document.root(), 2), QString("1 a[50%]@Old\n2 b\n2 n[x]@New{x}\n3 m\n"));
        QVERIFY(a->isExpanded());
        QCOMPARE(document.root()->name(), QStringLiteral("R"));
        QCOMPARE(document.categories, (QStringList{QStringLiteral("Old"), QStringLiteral("New")}));
    }
};

QTEST_GUILESS_MAIN(TestOpml)
#include "tst_opml.moc"
