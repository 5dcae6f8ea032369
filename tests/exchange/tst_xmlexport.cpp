#include "exchange/xmlexport.h"
#include "support/exchangetest.h"
#include "support/outline.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace ExchangeTest;

const char *const SampleXml =
    "<?xml version=\"1.0\" ?>\r\n<ROOT Flags=\"3\" Image=\"5\" Sort=\"0\" Name=\"My &amp;lt;List&amp;gt;\">\r\n"
    "<ITEM StdFlags=\"3\" Flags=\"5\" Image=\"812\" Sort=\"15\">\r\n<NAME>a&amp;lt;b&amp;c</NAME>\r\n"
    "<TASKTIME Type=\"2\">\r\n2h</TASKTIME>\r\n<COLOUR>3</COLOUR>\r\n<DUEDATE>2024-03-05</DUEDATE>\r\n"
    "<PROGRESS>50</PROGRESS>\r\n<STATUSTYPE>2</STATUSTYPE>\r\n<PRIORITY>3</PRIORITY>\r\n"
    "<CATEGORY>Work &quot;x&quot;</CATEGORY>\r\n<CREATED>2023-12-31T23:59:58</CREATED>\r\n"
    "<LINKS>\r\n<LINK>file:///tmp/x&apos;s</LINK>\r\n<LINK>Target &amp; Co</LINK>\r\n</LINKS>\r\n"
    "<NOTE>\r\n<![CDATA[\r\nline1\r\nline2 <b>&amp;</b> ]]>\r\n]]>\r\n</NOTE>\r\n<SUBITEMS>\r\n"
    "<ITEM StdFlags=\"2\" Flags=\"1\" Image=\"0\" Sort=\"15\">\r\n<NAME></NAME>\r\n<TASKTIME />\r\n"
    "<COLOUR>0</COLOUR>\r\n<DUEDATE />\r\n<PROGRESS>0</PROGRESS>\r\n<STATUSTYPE>1</STATUSTYPE>\r\n"
    "<PRIORITY>10</PRIORITY>\r\n<CATEGORY />\r\n<CREATED>2024-01-02T03:04:05</CREATED>\r\n<LINKS />\r\n"
    "<NOTE />\r\n</ITEM>\r\n</SUBITEMS>\r\n</ITEM>\r\n"
    "<ITEM StdFlags=\"2\" Flags=\"2\" Image=\"3\" Sort=\"15\">\r\n<NAME>Target &amp; Co</NAME>\r\n"
    "<TASKTIME />\r\n<COLOUR>0</COLOUR>\r\n<DUEDATE />\r\n<PROGRESS>100</PROGRESS>\r\n<STATUSTYPE>0</STATUSTYPE>\r\n"
    "<PRIORITY>10</PRIORITY>\r\n<CATEGORY />\r\n<CREATED>2000-02-29T00:00:00</CREATED>\r\n<LINKS>\r\n</LINKS>\r\n"
    "<NOTE />\r\n</ITEM>\r\n"
    "<ITEM StdFlags=\"2\" Flags=\"1\" Image=\"0\" Sort=\"15\">\r\n<NAME />\r\n<TASKTIME />\r\n<COLOUR>0</COLOUR>\r\n"
    "<DUEDATE />\r\n<PROGRESS>0</PROGRESS>\r\n<STATUSTYPE>1</STATUSTYPE>\r\n<PRIORITY>10</PRIORITY>\r\n"
    "<CATEGORY />\r\n<CREATED>1999-01-01T12:00:01</CREATED>\r\n<LINKS />\r\n<NOTE />\r\n</ITEM>\r\n</ROOT>\r\n";

// The record of an Item with default fields, created 2024-01-01 00:00:00.
QByteArray plainItem(const QByteArray &name, const QByteArray &note = QByteArray())
{
    return "<ITEM StdFlags=\"2\" Flags=\"1\" Image=\"0\" Sort=\"15\">\r\n<NAME>" + name +
           "</NAME>\r\n<TASKTIME />\r\n<COLOUR>0</COLOUR>\r\n<DUEDATE />\r\n<PROGRESS>0</PROGRESS>\r\n"
           "<STATUSTYPE>1</STATUSTYPE>\r\n<PRIORITY>10</PRIORITY>\r\n<CATEGORY />\r\n"
           "<CREATED>2024-01-01T00:00:00</CREATED>\r\n<LINKS />\r\n" +
           (note.isNull() ? QByteArray("<NOTE />\r\n") : "<NOTE>\r\n<![CDATA[\r\n" + note + "\r\n]]>\r\n</NOTE>\r\n") +
           "</ITEM>\r\n";
}

// Appends an Item with default fields, created 2024-01-01 00:00:00.
Item *plain(TreeNode *parent)
{
    auto *item = new Item(QStringLiteral("x"));
    item->setCreated(at(2024, 1, 1));
    parent->appendChild(item);
    return item;
}

const QByteArray Prolog("<?xml version=\"1.0\" ?>\r\n");
const QByteArray RootR("<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"R\">\r\n");

} // namespace

class TestXmlExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // Every element in its forms: markup escaped twice, quotes once, the CDATA end left in a note.
    void wholeRecord()
    {
        Document document;
        TreeNode *root = document.root();
        root->setName(QStringLiteral("My <List>"));
        root->setImage(5);
        root->setSort(TreeNode::SortName);
        Outline::build(root, "a<b&c | italic col=3 due=2024-03-05T17:30 prog=50 st=2 pri=3\n"
                             "Target & Co | noicon auto st=0 prog=100\n");
        Item *a = root->child(0);
        Item *c = root->child(1);
        a->appendChild(new Item(QStringLiteral("")));
        root->appendChild(new Item());
        root->setExpanded(true);
        a->setExpanded(true);
        a->setImage(812);
        a->setTaskTime(QStringLiteral("2h"));
        a->setTaskTimeType(2);
        a->setCategory(QStringLiteral("Work \"x\""));
        a->setCreated(at(2023, 12, 31, 23, 59, 58));
        auto *gone = new Item(QStringLiteral("gone"));
        a->setLinks({QStringLiteral("file:///tmp/x's"), c->linkText(), gone->linkText()});
        c->setLinks({gone->linkText()});
        delete gone;
        a->setNote(note(u"line1\r\nline2 <b>&amp;</b> ]]>"));
        a->child(0)->setCreated(at(2024, 1, 2, 3, 4, 5));
        c->setImage(3);
        c->setDueDate(at(2020, 0, 5)); // no month: no date
        c->setCreated(at(2000, 2, 29));
        root->child(2)->setCreated(at(1999, 1, 1, 12, 0, 1));
        QCOMPARE(XmlExport::text(root, {}), QString::fromLatin1(SampleXml));
    }

    void richNotesAsPlainText()
    {
        TreeNode root(QStringLiteral("R"));
        plain(&root)->setNote("{\\rtf1 {\\b Bold}\\par x\\u233?}");
        QCOMPARE(XmlExport::text(&root, {.noteType = 2}),
                 QString::fromLatin1(Prolog + RootR + plainItem("x", "Bold\r\nx\xe9") + "</ROOT>\r\n"));
    }

    void fileBytes()
    {
        const QString cafe = QString::fromUtf8("Café😀");
        const QByteArray jis = "<?xml version=\"1.0\" encoding=\"Shift-JIS\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" "
                               "Sort=\"15\" Name=\"\x93\xfa\x96\x7b\">\r\n";
        // Megabytes written in pieces: the cut and the padding still fall at the very end, no piece lost or doubled.
        const int many = 7000;
        const QByteArray items = plainItem("x").repeated(many);
        const QString wide =
            QString::fromLatin1("<?xml version=\"1.0\" encoding=\"UTF-16\" ?>\r\n" + RootR + items + "</ROOT>\r\n");
        const std::tuple<int, const char *, QString, int, QByteArray> cases[] = {
            {0, "windows-1252", QString::fromUtf8("Café"), 0,
             Prolog + "<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"Caf\xe9\">\r\n</ROOT>\r\n"},
            // UTF-8 is only a label: one code-page byte per unit, the pair one "?", leaving a zero at the end.
            {1, "windows-1252", cafe, 0,
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" "
                        "Name=\"Caf\xe9?\">\r\n</ROOT>\r\n") +
                 '\0'},
            {2, "windows-1252", cafe, 0,
             "\xff\xfe" + le(u"<?xml version=\"1.0\" encoding=\"UTF-16\" ?>\r\n<ROOT Flags=\"2\" Image=\"0\" "
                             u"Sort=\"15\" Name=\"Caf\u00e9\xd83d\xde00\">\r\n</ROOT>\r\n")},
            // A double-byte code page: the text is cut at its number of units, inside the closing tag.
            {5, "windows-932", QString::fromUtf8("日本"), 0, jis + "</ROOT>"},
            {5, "windows-932", QString::fromUtf8("日本"), many, jis + items + "</ROOT>"},
            {0, "windows-1252", cafe, many,
             Prolog + "<ROOT Flags=\"2\" Image=\"0\" Sort=\"15\" Name=\"Caf\xe9?\">\r\n" + items + "</ROOT>\r\n" +
                 '\0'},
            {2, "windows-1252", QStringLiteral("R"), many,
             "\xff\xfe" + QByteArray(reinterpret_cast<const char *>(wide.utf16()), 2 * wide.size())},
        };
        for (const auto &[encoding, codePage, rootName, items, bytes] : cases) {
            QTemporaryDir dir;
            const QString path = dir.filePath(QStringLiteral("out.xml"));
            QVERIFY(writeFile(path, QByteArray(4096, 'x'))); // an older, longer file is replaced whole
            TreeNode root(rootName);
            for (int i = 0; i < items; ++i)
                plain(&root);
            QVERIFY(XmlExport::exportXml(path, &root, {quint16(encoding), QString::fromLatin1(codePage)}));
            QVERIFY(readFile(path) == bytes); // too large to print
            // Written beside the target and renamed over it: nothing else is left.
            QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("out.xml")});
        }
    }

    void failures()
    {
        QTemporaryDir dir;
        TreeNode root;
        QVERIFY(!XmlExport::exportXml(dir.filePath(QStringLiteral("no/such/folder/out.xml")), &root, {}));
        QVERIFY(XmlExport::encodingLabel(-1).isEmpty() &&
                XmlExport::encodingLabel(int(XmlExport::encodingLabels().size())).isEmpty());
        const XmlExport::Options options{.codePage = QStringLiteral("no-such-page")};
        const QString path = dir.filePath(QStringLiteral("never.xml"));
        QVERIFY(!XmlExport::exportXml(path, &root, options));
        QVERIFY(!QFile::exists(path));
    }

    void deepChain()
    {
        constexpr int Depth = 200000;
        TreeNode root(QStringLiteral("R"));
        TreeNode *parent = &root;
        for (int i = 0; i < Depth; ++i)
            parent = plain(parent);
        const QString text = XmlExport::text(&root, {});
        QCOMPARE(text.count(QLatin1String("<SUBITEMS>\r\n")), Depth - 1);
        QVERIFY(text.endsWith(QString::fromLatin1(
            plainItem("x") + QByteArray("</SUBITEMS>\r\n</ITEM>\r\n").repeated(Depth - 1) + "</ROOT>\r\n")));
    }
};

QTEST_GUILESS_MAIN(TestXmlExport)
#include "tst_xmlexport.moc"
