#include "exchange/textexport.h"
#include "support/exchangetest.h"
#include "support/outline.h"
#include "platform/collation.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace ExchangeTest;

// R(Alpha(Beta(Gamma)),Çé): notes, links to the web, to an item, to none and to a file, a pair.
struct Sample {
    Document document;
    Sample()
    {
        document.root()->setName(QStringLiteral("R"));
        Outline::build(document.root(), "Alpha | note=hello\n  Beta\n    Gamma\nÇé\n");
        Item *alpha = document.root()->child(0);
        Item *last = document.root()->child(1);
        auto *gone = new Item(QStringLiteral("gone"));
        alpha->setLinks({QStringLiteral("http://example.com"), last->linkText(), gone->linkText()});
        delete gone;
        alpha->child(0)->child(0)->setNote(note(u"two\r\nlines"));
        last->setNote(note(u"x\xd83d\xde00y"));
        last->setLinks({QStringLiteral("/home/me/file.txt")});
    }
};

const QByteArray Zero(1, '\0');

} // namespace

class TestTextExport : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString out() const { return m_dir.filePath(QStringLiteral("out.txt")); }
    QByteArray written(bool exported) const { return exported ? readFile(out()) : QByteArray("(failed)"); }

private Q_SLOTS:
    void view()
    {
        const std::tuple<quint16, bool, QByteArray> cases[] = {
            {0, false, "R\r\nAlpha\r\nBeta\r\nGamma\r\n\xc7\xe9\r\n"},
            {6, false, "R\r\n     Alpha\r\n          Beta\r\n               Gamma\r\n     \xc7\xe9\r\n"},
            {1, true, "\xff\xfe" + le(u"R\r\n\tAlpha\r\n\t\tBeta\r\n\t\t\tGamma\r\n\t\u00c7\u00e9\r\n")},
        };
        for (const auto &[indent, unicode, bytes] : cases) {
            Sample sample;
            const TextExport::Options options{.unicode = unicode, .indent = indent};
            QCOMPARE(written(TextExport::exportView(out(), sample.document.root(), options)), bytes);
        }
        // A line is one piece: a pair is one "?" padded with a zero; a double-byte code page cuts the line.
        TreeNode root(QStringLiteral("R"));
        Outline::build(&root, "😀x\n日本\nz\n");
        TextExport::Options options{.indent = 3};
        QCOMPARE(written(TextExport::exportView(out(), &root, options)),
                 QByteArray("R\r\n  ?x\r\n") + Zero + "  ??\r\n  z\r\n");
        options.codePage = QStringLiteral("windows-932");
        QCOMPARE(written(TextExport::exportView(out(), &root, options)),
                 QByteArray("R\r\n  ?x\r\n") + Zero + "  \x93\xfa\x96\x7b  z\r\n");
    }

    void groupedView()
    {
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        Document document;
        document.root()->setName(QStringLiteral("R"));
        Outline::build(document.root(), "c | cat=Work\n  b | cat=Home\n    a | cat=Work\n      d | prog=100\n");
        document.hideCompleted = true;
        document.viewMode = Document::ByCategory;
        document.viewOrder = 0;
        const TextExport::Options options{.indent = 1};
        QCOMPARE(written(TextExport::exportView(out(), document, options)),
                 "R\r\n\t[No Category]\r\n\t\td\r\n\tHome\r\n\t\tb\r\n\tWork\r\n\t\ta\r\n\t\tc\r\n");
        // The default view writes the tree, the item hidden by the filter too.
        document.viewMode = Document::DefaultView;
        QCOMPARE(written(TextExport::exportView(out(), document, options)),
                 "R\r\n\tc\r\n\t\tb\r\n\t\t\ta\r\n\t\t\t\td\r\n");
    }

    void notesAndLinks()
    {
        // The empty line after a note ends it; the pair in the last note leaves a zero.
        Sample sample;
        TextExport::Options options;
        QCOMPARE(written(TextExport::exportNotes(out(), sample.document.root(), options)),
                 "R:Alpha\r\nhello\r\nR:Alpha:Beta\r\n\r\nR:Alpha:Beta:Gamma\r\ntwo\r\nlines\r\nR:\xc7\xe9\r\nx?y" +
                     Zero + "\r\n");
        options = {.unicode = true, .separator = 4};
        QCOMPARE(written(TextExport::exportNotes(out(), sample.document.root(), options)),
                 "\xff\xfe" + le(u"R|Alpha\r\nhello\r\nR|Alpha|Beta\r\n\r\nR|Alpha|Beta|Gamma\r\ntwo\r\nlines\r\n"
                                 u"R|\u00c7\u00e9\r\nx\xd83d\xde00y\r\n"));
        // A dead item link leaves no line at all.
        QCOMPARE(written(TextExport::exportLinks(out(), sample.document.root(), {})),
                 "R:Alpha\r\nhttp://example.com\r\n\xc7\xe9\r\n\r\nR:Alpha:Beta\r\n(None)\r\n\r\n"
                 "R:Alpha:Beta:Gamma\r\n(None)\r\n\r\nR:\xc7\xe9\r\n/home/me/file.txt\r\n\r\n");

        TreeNode root(QStringLiteral("R"));
        Outline::build(&root, "a\nb\n");
        root.child(0)->setNote("{\\rtf1{\\fonttbl{\\f0 Arial;}}\\b bold\\b0\\par plain}");
        options = {.separator = 2, .noteType = 2};
        QCOMPARE(written(TextExport::exportNotes(out(), &root, options)), "R/a\r\nbold\r\nplain\r\nR/b\r\n\r\n");
        const QString missing = m_dir.filePath(QStringLiteral("no/such/dir/out.txt"));
        QVERIFY(!TextExport::exportNotes(missing, sample.document.root(), {}));
        QVERIFY(!TextExport::exportLinks(missing, sample.document.root(), {}));
        QFile::remove(out());
        options.codePage = QStringLiteral("no-such-page");
        QVERIFY(!TextExport::exportView(out(), sample.document.root(), options));
        QVERIFY(!QFile::exists(out()));
    }
};

QTEST_GUILESS_MAIN(TestTextExport)
#include "tst_textexport.moc"
