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

} // namespace

class TestTextExport : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString out() const { return m_dir.filePath(QStringLiteral("out.txt")); }

private Q_SLOTS:
    void view()
    {
        const struct {
            quint16 indent;
            bool unicode;
            QByteArray bytes;
        } cases[] = {
            {0, false, "R\r\nAlpha\r\nBeta\r\nGamma\r\n\xc7\xe9\r\n"},
            {3, false, "R\r\n  Alpha\r\n    Beta\r\n      Gamma\r\n  \xc7\xe9\r\n"},
            {6, false, "R\r\n     Alpha\r\n          Beta\r\n               Gamma\r\n     \xc7\xe9\r\n"},
            {1, true, "\xff\xfe" + le(u"R\r\n\tAlpha\r\n\t\tBeta\r\n\t\t\tGamma\r\n\t\u00c7\u00e9\r\n")},
        };
        for (const auto &c : cases) {
            Sample sample;
            TextExport::Options options;
            options.indent = c.indent;
            options.unicode = c.unicode;
            QVERIFY(TextExport::exportView(out(), sample.document.root(), options));
            QCOMPARE(readFile(out()), c.bytes);
        }
    }

    void viewCodePageOneBytePerUnit()
    {
        // Each line is one piece: the pair becomes one "?", and the piece is
        // padded to its seven units with a zero after its CR LF. A double-byte
        // code page cuts the line instead, CR LF and all.
        TreeNode root(QStringLiteral("R"));
        root.appendChild(new Item(QString::fromUtf8("😀x")));
        root.appendChild(new Item(QString::fromUtf8("日本")));
        root.appendChild(new Item(QStringLiteral("z")));
        TextExport::Options options;
        options.indent = 3;
        QVERIFY(TextExport::exportView(out(), &root, options));
        QCOMPARE(readFile(out()), QByteArray("R\r\n  ?x\r\n") + Zero + "  ??\r\n  z\r\n");
        options.codePage = QStringLiteral("windows-932");
        QVERIFY(TextExport::exportView(out(), &root, options));
        QCOMPARE(readFile(out()), QByteArray("R\r\n  ?x\r\n") + Zero + "  \x93\xfa\x96\x7b  z\r\n");
    }

    void groupedView()
    {
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        // R / c (Work) / b (Home) / a (Work) / d (no category, completed and hidden by the filter)
        Document document;
        document.root()->setName(QStringLiteral("R"));
        TreeNode *parent = document.root();
        for (const char *name : {"c", "b", "a", "d"}) {
            auto *item = new Item(QString::fromLatin1(name));
            parent->appendChild(item);
            parent = item;
        }
        Item *c = document.root()->child(0);
        c->setCategory(QStringLiteral("Work"));
        c->child(0)->setCategory(QStringLiteral("Home"));
        c->child(0)->child(0)->setCategory(QStringLiteral("Work"));
        c->child(0)->child(0)->child(0)->storeProgress(100);
        document.hideCompleted = true;
        document.viewMode = Document::ByCategory;
        document.viewOrder = 0;
        TextExport::Options options;
        options.indent = 1;
        QVERIFY(TextExport::exportView(out(), document, options));
        QCOMPARE(readFile(out()), QByteArray("R\r\n\t[No Category]\r\n\t\td\r\n\tHome\r\n\t\tb\r\n\tWork\r\n\t\ta\r\n"
                                             "\t\tc\r\n"));
        // The default view writes the tree, the hidden item too.
        document.viewMode = Document::DefaultView;
        QVERIFY(TextExport::exportView(out(), document, options));
        QCOMPARE(readFile(out()), QByteArray("R\r\n\tc\r\n\t\tb\r\n\t\t\ta\r\n\t\t\t\td\r\n"));
    }

    void notesAndLinks()
    {
        // A note is written without a line break of its own: the empty line
        // that follows ends it. The pair in the last note leaves a zero.
        Sample sample;
        TextExport::Options options;
        QVERIFY(TextExport::exportNotes(out(), sample.document.root(), options));
        QCOMPARE(readFile(out()), QByteArray("R:Alpha\r\nhello\r\nR:Alpha:Beta\r\n\r\nR:Alpha:Beta:Gamma\r\ntwo\r\n"
                                             "lines\r\nR:\xc7\xe9\r\nx?y") +
                                      Zero + "\r\n");
        options.separator = 4;
        options.unicode = true;
        QVERIFY(TextExport::exportNotes(out(), sample.document.root(), options));
        QCOMPARE(readFile(out()), "\xff\xfe" + le(u"R|Alpha\r\nhello\r\nR|Alpha|Beta\r\n\r\nR|Alpha|Beta|Gamma\r\n"
                                                  u"two\r\nlines\r\nR|\u00c7\u00e9\r\nx\xd83d\xde00y\r\n"));
        // A dead item link leaves no line at all.
        QVERIFY(TextExport::exportLinks(out(), sample.document.root(), {}));
        QCOMPARE(readFile(out()),
                 QByteArray("R:Alpha\r\nhttp://example.com\r\n\xc7\xe9\r\n\r\nR:Alpha:Beta\r\n(None)\r\n\r\n"
                            "R:Alpha:Beta:Gamma\r\n(None)\r\n\r\nR:\xc7\xe9\r\n/home/me/file.txt\r\n\r\n"));

        TreeNode root(QStringLiteral("R"));
        root.appendChild(new Item(QStringLiteral("a")));
        root.child(0)->setNote("{\\rtf1{\\fonttbl{\\f0 Arial;}}\\b bold\\b0\\par plain}");
        root.appendChild(new Item(QStringLiteral("b")));
        options = {};
        options.noteType = 2;
        options.separator = 2;
        QVERIFY(TextExport::exportNotes(out(), &root, options));
        QCOMPARE(readFile(out()), QByteArray("R/a\r\nbold\r\nplain\r\nR/b\r\n\r\n"));
    }

    void failures()
    {
        Sample sample;
        QFile::remove(out());
        const QString missing = m_dir.filePath(QStringLiteral("no/such/dir/out.txt"));
        QVERIFY(!TextExport::exportNotes(missing, sample.document.root(), {}));
        QVERIFY(!TextExport::exportLinks(missing, sample.document.root(), {}));
        TextExport::Options unknown;
        unknown.codePage = QStringLiteral("no-such-page");
        QVERIFY(!TextExport::exportView(out(), sample.document.root(), unknown));
        QVERIFY(!QFile::exists(out()));
    }
};

QTEST_GUILESS_MAIN(TestTextExport)
#include "tst_textexport.moc"
