#include "exchange/xmlexport.h"
#include "support/exchangetest.h"
#include "model/document.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace ExchangeTest;

// A small document with every element in its interesting forms.
struct Sample {
    Document document;
    Sample()
    {
        TreeNode *root = document.root();
        root->setName(QStringLiteral("My <List>"));
        root->setImage(5);
        root->setSort(TreeNode::SortName);

        auto *a = new Item(QStringLiteral("a<b&c"), 812);
        auto *b = new Item(QStringLiteral(""));
        auto *c = new Item(QStringLiteral("Target & Co"), 3);
        auto *d = new Item();
        root->appendChild(a);
        a->appendChild(b);
        root->appendChild(c);
        root->appendChild(d);
        root->setExpanded(true);
        a->setExpanded(true);

        a->setItalic(true);
        a->setTaskTime(QStringLiteral("2h"));
        a->setTaskTimeType(2);
        a->setColour(3);
        a->setDueDate(at(2024, 3, 5, 17, 30));
        a->storeProgress(50);
        a->setStatusType(Item::ProgressBar);
        a->setPriority(3);
        a->setCategory(QStringLiteral("Work \"x\""));
        a->setCreated(at(2023, 12, 31, 23, 59, 58));
        auto *gone = new Item(QStringLiteral("gone"));
        const QString deadLink = gone->linkText();
        delete gone;
        a->setLinks({QStringLiteral("file:///tmp/x's"), c->linkText(), deadLink});
        a->setNote(note(u"line1\r\nline2 <b>&amp;</b>"));

        b->setCreated(at(2024, 1, 2, 3, 4, 5));

        c->setShowIcon(false);
        c->setAutoProgress(true);
        c->setStatusType(Item::NoStatus);
        c->storeProgress(100);
        SystemTime noMonth = at(2020, 0, 5);
        c->setDueDate(noMonth);
        c->setCreated(at(2000, 2, 29));
        c->setLinks({deadLink});

        d->setCreated(at(1999, 1, 1, 12, 0, 1));
    }
};

const char *const SampleXml = "<?xml version=\"1.0\" ?>\r\n"
                              "<ROOT Flags=\"3\" Image=\"5\" Sort=\"0\" Name=\"My &amp;lt;List&amp;gt;\">\r\n"
                              "<ITEM StdFlags=\"3\" Flags=\"5\" Image=\"812\" Sort=\"15\">\r\n"
                              "<NAME>a&amp;lt;b&amp;c</NAME>\r\n"
                              "<TASKTIME Type=\"2\">\r\n"
                              "2h</TASKTIME>\r\n"
                              "<COLOUR>3</COLOUR>\r\n"
                              "<DUEDATE>2024-03-05</DUEDATE>\r\n"
                              "<PROGRESS>50</PROGRESS>\r\n"
                              "<STATUSTYPE>2</STATUSTYPE>\r\n"
                              "<PRIORITY>3</PRIORITY>\r\n"
                              "<CATEGORY>Work &quot;x&quot;</CATEGORY>\r\n"
                              "<CREATED>2023-12-31T23:59:58</CREATED>\r\n"
                              "<LINKS>\r\n"
                              "<LINK>file:///tmp/x&apos;s</LINK>\r\n"
                              "<LINK>Target &amp; Co</LINK>\r\n"
                              "</LINKS>\r\n"
                              "<NOTE>\r\n"
                              "<![CDATA[\r\n"
                              "line1\r\n"
                              "line2 <b>&amp;</b>\r\n"
                              "]]>\r\n"
                              "</NOTE>\r\n"
                              "<SUBITEMS>\r\n"
                              "<ITEM StdFlags=\"2\" Flags=\"1\" Image=\"0\" Sort=\"15\">\r\n"
                              "<NAME></NAME>\r\n"
                              "<TASKTIME />\r\n"
                              "<COLOUR>0</COLOUR>\r\n"
                              "<DUEDATE />\r\n"
                              "<PROGRESS>0</PROGRESS>\r\n"
                              "<STATUSTYPE>1</STATUSTYPE>\r\n"
                              "<PRIORITY>10</PRIORITY>\r\n"
                              "<CATEGORY />\r\n"
                              "<CREATED>2024-01-02T03:04:05</CREATED>\r\n"
                              "<LINKS />\r\n"
                              "<NOTE />\r\n"
                              "</ITEM>\r\n"
                              "</SUBITEMS>\r\n"
                              "</ITEM>\r\n"
                              "<ITEM StdFlags=\"2\" Flags=\"2\" Image=\"3\" Sort=\"15\">\r\n"
                              "<NAME>Target &amp; Co</NAME>\r\n"
                              "<TASKTIME />\r\n"
                              "<COLOUR>0</COLOUR>\r\n"
                              "<DUEDATE />\r\n"
                              "<PROGRESS>100</PROGRESS>\r\n"
                              "<STATUSTYPE>0</STATUSTYPE>\r\n"
                              "<PRIORITY>10</PRIORITY>\r\n"
                              "<CATEGORY />\r\n"
                              "<CREATED>2000-02-29T00:00:00</CREATED>\r\n"
                              "<LINKS>\r\n"
                              "</LINKS>\r\n"
                              "<NOTE />\r\n"
                              "</ITEM>\r\n"
                              "<ITEM StdFlags=\"2\" Flags=\"1\" Image=\"0\" Sort=\"15\">\r\n"
                              "<NAME />\r\n"
                              "<TASKTIME />\r\n"
                              "<COLOUR>0</COLOUR>\r\n"
                              "<DUEDATE />\r\n"
                              "<PROGRESS>0</PROGRESS>\r\n"
                              "<STATUSTYPE>1</STATUSTYPE>\r\n"
                              "<PRIORITY>10</PRIORITY>\r\n"
                              "<CATEGORY />\r\n"
                              "<CREATED>1999-01-01T12:00:01</CREATED>\r\n"
                              "<LINKS />\r\n"
                              "<NOTE />\r\n"
                              "</ITEM>\r\n"
                              "</ROOT>\r\n";

// The record of an Item with default fields, created 2024-01-01 00:00:00.
QByteArray plainItem(const QByteArray &name, const QByteArray &note = QByteArray(), bool children = false)
{
    QByteArray xml = "<ITEM StdFlags=\"2\" Flags=\"1\" Image=\"0\" Sort=\"15\">\r\n<NAME>" + name +
                     "</NAME>\r\n<TASKTIME />\r\n<COLOUR>0</COLOUR>\r\n<DUEDATE />\r\n<PROGRESS>0</PROGRESS>\r\n"
                     "<STATUSTYPE>1</STATUSTYPE>\r\n<PRIORITY>10</PRIORITY>\r\n<CATEGORY />\r\n"
                     "<CREATED>2024-01-01T00:00:00</CREATED>\r\n<LINKS />\r\n";
    xml += note.isNull() ? QByteArray("<NOTE />\r\n") : "<NOTE>\r\n<![CDATA[\r\n" + note + "\r\n]]>\r\n</NOTE>\r\n";
    xml += children ? "<SUBITEMS>\r\n" : "</ITEM>\r\n";
    return xml;
}

Item *plain(const QString &name)
{
    auto *item = new Item(name);
    item->setCreated(at(2024, 1, 1));
    return item;
}

} // namespace

class TestXmlExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void wholeRecord();
    void notesAsPlainText_data();
    void notesAsPlainText();
    void fileBytes_data();
    void fileBytes();
    void failures();
    void deepChain();
};

void TestXmlExport::wholeRecord()
{
    Sample sample;
    QCOMPARE(XmlExport::text(sample.document.root(), {}), QString::fromLatin1(SampleXml));
    // Markup and an entity already in the text are escaped twice, quotes once.
    QCOMPARE(XmlExport::escape(QStringLiteral("<&lt;>&\"'")),
             QStringLiteral("&amp;lt;&amp;lt;&amp;gt;&amp;&quot;&apos;"));
}

void TestXmlExport::notesAsPlainText_data()
{
    QTest::addColumn<quint16>("noteType");
    QTest::addColumn<QByteArray>("note");
    QTest::addColumn<QByteArray>("text");
    // The note goes into CDATA as it is, even one holding the CDATA end; how
    // each note type reads as text is the notes' rule.
    QTest::newRow("plain with the CDATA end") << quint16(0) << le(u"a ]]> b & <c>") << QByteArray("a ]]> b & <c>");
    QTest::newRow("rich text") << quint16(2) << QByteArray("{\\rtf1 {\\b Bold}\\par x\\u233?}")
                               << QByteArray("Bold\r\nx\xe9");
    QTest::newRow("rich ink") << quint16(1) << QByteArray("QBINK\r\n\x1aRTF \x0b\x00\x00\x00{\\rtf1 ink}", 27)
                              << QByteArray("ink");
}

void TestXmlExport::notesAsPlainText()
{
    QFETCH(quint16, noteType);
    QFETCH(QByteArray, note);
    QFETCH(QByteArray, text);
    TreeNode root(QStringLiteral("R"));
    Item *item = plain(QStringLiteral("n"));
    item->setNote(note);
    root.appendChild(item);
    XmlExport::Options options;
    options.noteType = noteType;
    const QByteArray expected =
        "<?xml version=\"1.0\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"R\">\r\n" + plainItem("n", text) +
        "</ROOT>\r\n";
    QCOMPARE(XmlExport::text(&root, options), QString::fromLatin1(expected));
}

void TestXmlExport::fileBytes_data()
{
    QTest::addColumn<int>("encoding");
    QTest::addColumn<QString>("codePage");
    QTest::addColumn<QString>("rootName");
    QTest::addColumn<int>("items");
    QTest::addColumn<QByteArray>("bytes");

    const QString cafe = QString::fromUtf8("Café😀");
    QTest::newRow("default: code page, no declaration")
        << 0 << "windows-1252" << QString::fromUtf8("Café") << 0
        << QByteArray("<?xml version=\"1.0\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"Caf\xe9\">\r\n"
                      "</ROOT>\r\n");
    // The declaration says UTF-8, the bytes are the code page's, one per
    // UTF-16 unit: the pair became one "?", which leaves a zero at the end.
    QTest::newRow("UTF-8 is only a label")
        << 1 << "windows-1252" << cafe << 0
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" "
                      "Name=\"Caf\xe9?\">\r\n</ROOT>\r\n") +
               QByteArray(1, '\0');
    QTest::newRow("UTF-16") << 2 << "windows-1252" << cafe << 0
                            << QByteArray("\xff\xfe") +
                                   le(u"<?xml version=\"1.0\" encoding=\"UTF-16\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" "
                                      u"Sort=\"15\" Name=\"Caf\u00e9\xd83d\xde00\">\r\n</ROOT>\r\n");
    QTest::newRow("ISO-8859-1 label") << 3 << "windows-1252" << QString::fromUtf8("€") << 0
                                      << QByteArray(
                                             "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" ?>\r\n<ROOT "
                                             "Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"\x80\">\r\n</ROOT>\r\n");
    // Two bytes per character in a double-byte code page: the text is cut at
    // its number of UTF-16 units, in the middle of the closing tag.
    QTest::newRow("Shift-JIS is cut") << 5 << "windows-932" << QString::fromUtf8("日本") << 0
                                      << QByteArray("<?xml version=\"1.0\" encoding=\"Shift-JIS\" ?>\r\n<ROOT "
                                                    "Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"\x93\xfa\x96\x7b\">\r\n"
                                                    "</ROOT>");

    // Megabytes of text reach the file in many pieces; the cut and the
    // padding still fall at the very end, and no piece is lost or doubled.
    const int many = 7000;
    const QByteArray items = plainItem("x").repeated(many);
    QTest::newRow("Shift-JIS cut at the end of a large file")
        << 5 << "windows-932" << QString::fromUtf8("日本") << many
        << QByteArray("<?xml version=\"1.0\" encoding=\"Shift-JIS\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" "
                      "Name=\"\x93\xfa\x96\x7b\">\r\n") +
               items + "</ROOT>";
    QTest::newRow("a pair padded at the end of a large file")
        << 0 << "windows-1252" << cafe << many
        << QByteArray("<?xml version=\"1.0\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"Caf\xe9?\">\r\n") +
               items + "</ROOT>\r\n" + QByteArray(1, '\0');
    QByteArray wide("\xff\xfe");
    for (const char c : QByteArray("<?xml version=\"1.0\" encoding=\"UTF-16\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" "
                                   "Sort=\"15\" Name=\"R\">\r\n") +
                            items + "</ROOT>\r\n") {
        wide += c;
        wide += '\0';
    }
    QTest::newRow("UTF-16, large file") << 2 << "windows-1252" << QStringLiteral("R") << many << wide;
}

void TestXmlExport::fileBytes()
{
    QFETCH(int, encoding);
    QFETCH(QString, codePage);
    QFETCH(QString, rootName);
    QFETCH(int, items);
    QFETCH(QByteArray, bytes);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("out.xml"));
    {
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(4096, 'x')); // an older, longer file is replaced whole
    }
    TreeNode root(rootName);
    for (int i = 0; i < items; ++i)
        root.appendChild(plain(QStringLiteral("x")));
    XmlExport::Options options;
    options.encoding = quint16(encoding);
    options.codePage = codePage;
    QVERIFY(XmlExport::exportXml(path, &root, options));
    const QByteArray written = readFile(path);
    QCOMPARE(written.size(), bytes.size());
    QVERIFY(written == bytes);
    // Written beside the target and renamed over it: nothing else is left.
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("out.xml")});
}

void TestXmlExport::failures()
{
    QTemporaryDir dir;
    TreeNode root;
    QVERIFY(!XmlExport::exportXml(dir.filePath(QStringLiteral("no/such/folder/out.xml")), &root, {}));
    // An encoding past either end of the list has no label.
    QVERIFY(XmlExport::encodingLabel(-1).isEmpty());
    QVERIFY(XmlExport::encodingLabel(int(XmlExport::encodingLabels().size())).isEmpty());

    // An unknown code page fails before any file exists.
    XmlExport::Options options;
    options.codePage = QStringLiteral("no-such-page");
    const QString path = dir.filePath(QStringLiteral("never.xml"));
    QVERIFY(!XmlExport::exportXml(path, &root, options));
    QVERIFY(!QFile::exists(path));
}

void TestXmlExport::deepChain()
{
    constexpr int Depth = 200000;
    TreeNode root(QStringLiteral("R"));
    TreeNode *parent = &root;
    for (int i = 0; i < Depth; ++i) {
        Item *item = plain(QStringLiteral("x"));
        parent->appendChild(item);
        parent = item;
    }
    const QString text = XmlExport::text(&root, {});
    QCOMPARE(text.count(QLatin1String("<SUBITEMS>\r\n")), Depth - 1);
    QCOMPARE(text.count(QLatin1String("</SUBITEMS>\r\n</ITEM>\r\n")), Depth - 1);
    QVERIFY(text.endsWith(QString::fromLatin1(
        plainItem("x") + QByteArray("</SUBITEMS>\r\n</ITEM>\r\n").repeated(Depth - 1) + "</ROOT>\r\n")));
}

QTEST_GUILESS_MAIN(TestXmlExport)
#include "tst_xmlexport.moc"
