#include "exchange/textexport.h"
#include "support/exchangetest.h"
#include "model/document.h"
#include "platform/collation.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace ExchangeTest;

// R
//   Alpha         note "hello", links: a web address, an item link to Çé, a dead item link
//     Beta        no note, no links
//       Gamma     note "two\r\nlines"
//   Çé          note with a pair, link to a file
struct Sample {
    Document document;
    Item *alpha = new Item(QStringLiteral("Alpha"));
    Item *beta = new Item(QStringLiteral("Beta"));
    Item *gamma = new Item(QStringLiteral("Gamma"));
    Item *last = new Item(QString::fromUtf8("Çé"));
    Sample()
    {
        document.root()->setName(QStringLiteral("R"));
        document.root()->appendChild(alpha);
        alpha->appendChild(beta);
        beta->appendChild(gamma);
        document.root()->appendChild(last);
        auto *gone = new Item(QStringLiteral("gone"));
        const QString dead = gone->linkText();
        delete gone;
        alpha->setNote(note(u"hello"));
        alpha->setLinks({QStringLiteral("http://example.com"), last->linkText(), dead});
        gamma->setNote(note(u"two\r\nlines"));
        last->setNote(note(u"x\xd83d\xde00y"));
        last->setLinks({QStringLiteral("/home/me/file.txt")});
    }
};

const QByteArray Zero(1, '\0');

QString tempPath(QTemporaryDir &dir)
{
    return dir.filePath(QStringLiteral("out.txt"));
}

} // namespace

class TestTextExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void view_data();
    void view();
    void viewCodePageOneBytePerUnit();
    void groupedView();
    void notes_data();
    void notes();
    void notesOfRichDocuments();
    void links();
    void failures();
};

void TestTextExport::view_data()
{
    QTest::addColumn<int>("indent");
    QTest::addColumn<bool>("unicode");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("none") << 0 << false << QByteArray("R\r\nAlpha\r\nBeta\r\nGamma\r\n\xc7\xe9\r\n");
    QTest::newRow("2 spaces") << 3 << false
                              << QByteArray("R\r\n  Alpha\r\n    Beta\r\n      Gamma\r\n  \xc7\xe9\r\n");
    QTest::newRow("5 spaces") << 6 << false
                              << QByteArray("R\r\n     Alpha\r\n          Beta\r\n               Gamma\r\n     "
                                            "\xc7\xe9\r\n");
    QTest::newRow("tab, unicode")
        << 1 << true << QByteArray("\xff\xfe") + le(u"R\r\n\tAlpha\r\n\t\tBeta\r\n\t\t\tGamma\r\n\t\u00c7\u00e9\r\n");
}

void TestTextExport::view()
{
    QFETCH(int, indent);
    QFETCH(bool, unicode);
    QFETCH(QByteArray, bytes);
    Sample sample;
    QTemporaryDir dir;
    TextExport::Options options;
    options.indent = quint16(indent);
    options.unicode = unicode;
    QVERIFY(TextExport::exportView(tempPath(dir), sample.document.root(), options));
    QCOMPARE(readFile(tempPath(dir)), bytes);
}

void TestTextExport::viewCodePageOneBytePerUnit()
{
    // Each line is one piece: the pair becomes one "?", and the piece is
    // padded to its seven units with a zero after its CR LF. A double-byte
    // code page cuts the line instead, CR LF and all.
    TreeNode root(QStringLiteral("R"));
    root.appendChild(new Item(QString::fromUtf8("😀x")));
    root.appendChild(new Item(QString::fromUtf8("日本")));
    root.appendChild(new Item(QStringLiteral("z")));
    QTemporaryDir dir;
    TextExport::Options options;
    options.indent = 3;
    QVERIFY(TextExport::exportView(tempPath(dir), &root, options));
    QCOMPARE(readFile(tempPath(dir)), QByteArray("R\r\n  ?x\r\n") + Zero + "  ??\r\n  z\r\n");
    options.codePage = QStringLiteral("windows-932");
    QVERIFY(TextExport::exportView(tempPath(dir), &root, options));
    QCOMPARE(readFile(tempPath(dir)), QByteArray("R\r\n  ?x\r\n") + Zero + "  \x93\xfa\x96\x7b  z\r\n");
}

void TestTextExport::groupedView()
{
    Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    // R
    //   c (Work)
    //     b (Home)
    //       a (Work)
    //         d (no category, completed and hidden by the filter)
    Document document;
    document.root()->setName(QStringLiteral("R"));
    auto *c = new Item(QStringLiteral("c"));
    auto *b = new Item(QStringLiteral("b"));
    auto *a = new Item(QStringLiteral("a"));
    auto *d = new Item(QStringLiteral("d"));
    document.root()->appendChild(c);
    c->appendChild(b);
    b->appendChild(a);
    a->appendChild(d);
    c->setCategory(QStringLiteral("Work"));
    b->setCategory(QStringLiteral("Home"));
    a->setCategory(QStringLiteral("Work"));
    d->storeProgress(100);
    document.hideCompleted = true;
    document.viewMode = Document::ByCategory;
    document.viewOrder = 0;

    QTemporaryDir dir;
    TextExport::Options options;
    options.indent = 1;
    QVERIFY(TextExport::exportView(tempPath(dir), document, options));
    QCOMPARE(readFile(tempPath(dir)),
             QByteArray("R\r\n\t[No Category]\r\n\t\td\r\n\tHome\r\n\t\tb\r\n\tWork\r\n\t\ta\r\n\t\tc\r\n"));
    // The default view writes the tree, the hidden item too.
    document.viewMode = Document::DefaultView;
    QVERIFY(TextExport::exportView(tempPath(dir), document, options));
    QCOMPARE(readFile(tempPath(dir)), QByteArray("R\r\n\tc\r\n\t\tb\r\n\t\t\ta\r\n\t\t\t\td\r\n"));
}

void TestTextExport::notes_data()
{
    QTest::addColumn<int>("separator");
    QTest::addColumn<bool>("unicode");
    QTest::addColumn<QByteArray>("bytes");
    // A note is written without a line break of its own: the empty line
    // that follows ends it. The pair in the last note leaves a zero.
    QTest::newRow("colon") << 0 << false
                           << QByteArray(
                                  "R:Alpha\r\nhello\r\nR:Alpha:Beta\r\n\r\nR:Alpha:Beta:Gamma\r\ntwo\r\nlines\r\n"
                                  "R:\xc7\xe9\r\nx?y") +
                                  Zero + "\r\n";
    QTest::newRow("bar, unicode") << 4 << true
                                  << QByteArray("\xff\xfe") +
                                         le(u"R|Alpha\r\nhello\r\nR|Alpha|Beta\r\n\r\nR|Alpha|Beta|Gamma\r\ntwo\r\n"
                                            u"lines\r\nR|\u00c7\u00e9\r\nx\xd83d\xde00y\r\n");
}

void TestTextExport::notes()
{
    QFETCH(int, separator);
    QFETCH(bool, unicode);
    QFETCH(QByteArray, bytes);
    Sample sample;
    QTemporaryDir dir;
    TextExport::Options options;
    options.separator = quint16(separator);
    options.unicode = unicode;
    QVERIFY(TextExport::exportNotes(tempPath(dir), sample.document.root(), options));
    QCOMPARE(readFile(tempPath(dir)), bytes);
}

void TestTextExport::notesOfRichDocuments()
{
    TreeNode root(QStringLiteral("R"));
    auto *item = new Item(QStringLiteral("a"));
    item->setNote("{\\rtf1{\\fonttbl{\\f0 Arial;}}\\b bold\\b0\\par plain}");
    root.appendChild(item);
    root.appendChild(new Item(QStringLiteral("b")));
    QTemporaryDir dir;
    TextExport::Options options;
    options.noteType = 2;
    options.separator = 2;
    QVERIFY(TextExport::exportNotes(tempPath(dir), &root, options));
    QCOMPARE(readFile(tempPath(dir)), QByteArray("R/a\r\nbold\r\nplain\r\nR/b\r\n\r\n"));
}

void TestTextExport::links()
{
    Sample sample;
    QTemporaryDir dir;
    QVERIFY(TextExport::exportLinks(tempPath(dir), sample.document.root(), {}));
    // A dead item link leaves no line at all.
    QCOMPARE(readFile(tempPath(dir)),
             QByteArray("R:Alpha\r\nhttp://example.com\r\n\xc7\xe9\r\n\r\nR:Alpha:Beta\r\n(None)\r\n\r\n"
                        "R:Alpha:Beta:Gamma\r\n(None)\r\n\r\nR:\xc7\xe9\r\n/home/me/file.txt\r\n\r\n"));
}

void TestTextExport::failures()
{
    Sample sample;
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("no/such/dir/out.txt"));
    QVERIFY(!TextExport::exportNotes(missing, sample.document.root(), {}));
    QVERIFY(!TextExport::exportLinks(missing, sample.document.root(), {}));
    TextExport::Options unknown;
    unknown.codePage = QStringLiteral("no-such-page");
    QVERIFY(!TextExport::exportView(tempPath(dir), sample.document.root(), unknown));
    QVERIFY(!QFile::exists(tempPath(dir)));
}

QTEST_GUILESS_MAIN(TestTextExport)
#include "tst_textexport.moc"
