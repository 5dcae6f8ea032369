#include "support/exchangetest.h"
#include "support/qbxprocess.h"
#include "model/document.h"
#include "storage/documentfile.h"
#include "storage/settings.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

using namespace ExchangeTest;

class TestQbxExchange : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void exportsTakeOptionsOrSettings();
    void exportItemsAndBranch();
    void importText();
    void importDocumentConvertsNotes();
    void outlinesOutAndIn_data();
    void outlinesOutAndIn();
    void convertNotes();
    void failuresPrintTheMessage();

private:
    // The settings come from a store of the test's own.
    QbxRun call(const QStringList &arguments) { return qbx(arguments, {{}, {}, path(QStringLiteral("config")), {}}); }
    QString path(const QString &name) const { return m_dir->filePath(name); }
    // R
    //   a (done, note "hi")
    //     b
    //   c (done)
    QString writeSample(quint16 noteType = Document::PlainText);
    void writeSettings(const std::function<void(Settings &)> &change);

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestQbxExchange::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

QString TestQbxExchange::writeSample(quint16 noteType)
{
    Document document;
    document.noteType = noteType;
    document.root()->setName(QStringLiteral("R"));
    auto *a = new Item(QStringLiteral("a"));
    auto *b = new Item(QStringLiteral("b"));
    auto *c = new Item(QStringLiteral("c"));
    document.root()->appendChild(a);
    a->appendChild(b);
    document.root()->appendChild(c);
    a->storeProgress(100);
    c->storeProgress(100);
    if (noteType == Document::PlainText)
        a->setNote(note(u"hi"));
    else if (noteType == Document::RichText)
        a->setNote("{\\rtf1 {\\b hi}}");
    const QString file = path(QStringLiteral("doc.qbx"));
    if (!DocumentFile::save(document, file))
        qFatal("cannot write the sample");
    return file;
}

void TestQbxExchange::writeSettings(const std::function<void(Settings &)> &change)
{
    QSettings store(path(QStringLiteral("config/Quillbox/Quillbox.conf")), QSettings::IniFormat);
    Settings settings;
    change(settings);
    settings.save(store);
    store.sync();
}

void TestQbxExchange::exportsTakeOptionsOrSettings()
{
    const QString doc = writeSample();
    const QString out = path(QStringLiteral("out.txt"));

    // Defaults with no settings stored: one space, ":", the code page.
    QCOMPARE(call({"export", "view", doc, out}).status, 0);
    QCOMPARE(readFile(out), QByteArray("R\r\n a\r\n  b\r\n c\r\n"));

    writeSettings([](Settings &s) {
        s.expViewSep = 1;
        s.expOtherSep = 2;
        s.xmlEncode = 1;
    });
    QCOMPARE(call({"export", "view", doc, out}).status, 0);
    QCOMPARE(readFile(out), QByteArray("R\r\n\ta\r\n\t\tb\r\n\tc\r\n"));
    QCOMPARE(call({"export", "links", doc, out}).status, 0);
    QCOMPARE(readFile(out), QByteArray("R/a\r\n(None)\r\n\r\nR/a/b\r\n(None)\r\n\r\nR/c\r\n(None)\r\n\r\n"));
    QCOMPARE(call({"export", "xml", doc, out}).status, 0);
    QVERIFY(readFile(out).startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<ROOT Flags=\"2\""));

    // Options win over the settings.
    QCOMPARE(call({"export", "view", doc, out, "--indent", "0", "--unicode"}).status, 0);
    QCOMPARE(readFile(out), QByteArray("\xff\xfe") + le(u"R\r\na\r\nb\r\nc\r\n"));
    QCOMPARE(call({"export", "xml", doc, out, "--encoding", "2"}).status, 0);
    QVERIFY(readFile(out).startsWith(QByteArray("\xff\xfe") + le(u"<?xml version=\"1.0\" encoding=\"UTF-16\" ?>\r\n")));

    const QbxRun bad = call({"export", "view", doc, out, "--indent", "7"});
    QCOMPARE(bad.status, 2);
    QVERIFY(bad.err.contains("--indent"));
}

void TestQbxExchange::exportItemsAndBranch()
{
    const QString doc = writeSample();
    const QString part = path(QStringLiteral("part.qbx"));
    // Picked items, deleted afterwards: the document file is saved.
    QbxRun run = call({"export", "items", doc, part, "--choice", "3", "--select", "2,3", "--delete"});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.out, QByteArray("2 item(s) exported.\n"));
    Document left;
    QCOMPARE(DocumentFile::load(doc, &left), DocumentFile::Loaded);
    QCOMPARE(describe(left.root()), QStringLiteral("R(a)"));

    // Nothing matches now that c is gone and a is not picked.
    QFile::remove(part);
    run = call({"export", "items", doc, part, "--choice", "3", "--select", "0"});
    QCOMPARE(run.status, 3);
    QCOMPARE(run.err, QByteArray("There are no items that matched the export criteria. No file is created.\n"));
    QVERIFY(!QFile::exists(part));

    const QString branch = path(QStringLiteral("branch.qbx"));
    QCOMPARE(call({"export", "branch", doc, "1", branch}).status, 0);
    Document branchDoc;
    QCOMPARE(DocumentFile::load(branch, &branchDoc), DocumentFile::Loaded);
    QCOMPARE(describe(branchDoc.root()), QStringLiteral("a"));
    QCOMPARE(call({"export", "branch", doc, "9", branch}).status, 2);
}

void TestQbxExchange::importText()
{
    const QString text = path(QStringLiteral("plan.txt"));
    QFile file(text);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Plan\r\n\tOne\r\n\t\tTwo\r\n");
    file.close();

    writeSettings([](Settings &s) { s.textImport = 0x00020007; });
    QbxRun run = call({"import", "text", text});
    QCOMPARE(run.status, 0);
    const QString doc = path(QStringLiteral("plan.qbx"));
    QCOMPARE(run.out, doc.toUtf8() + "\n");
    Document back;
    QCOMPARE(DocumentFile::load(doc, &back), DocumentFile::Loaded);
    QCOMPARE(back.noteType, quint16(2));
    QCOMPARE(describe(back.root()), QStringLiteral("Plan(One(Two))"));
    QCOMPARE(back.root()->child(0)->image(), quint16(7));

    // An existing document is kept unless --force.
    run = call({"import", "text", text, "--note-type", "plain", "--icon", "12"});
    QCOMPARE(run.status, 3);
    run = call({"import", "text", text, "--note-type", "plain", "--icon", "12", "--force"});
    QCOMPARE(run.status, 0);
    Document again;
    QCOMPARE(DocumentFile::load(doc, &again), DocumentFile::Loaded);
    QCOMPARE(again.root()->child(0)->image(), quint16(12));

    // UTF-8 without a byte-order mark when the options say so, unless the
    // command line says otherwise.
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("Caf\xc3\xa9\r\n");
    file.close();
    writeSettings([](Settings &s) { s.setFlag(Settings::Utf8TextImport, true); });
    QCOMPARE(call({"import", "text", text, "--force"}).status, 0);
    QCOMPARE(DocumentFile::load(doc, &again), DocumentFile::Loaded);
    QCOMPARE(again.root()->name(), QStringLiteral("Caf\u00e9"));
    QCOMPARE(call({"import", "text", text, "--force", "--encoding", "ansi"}).status, 0);
    QCOMPARE(DocumentFile::load(doc, &again), DocumentFile::Loaded);
    QCOMPARE(again.root()->name(), QStringLiteral("Caf\u00c3\u00a9"));

    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("Plan\r\nNo indent\r\n");
    file.close();
    QFile::remove(doc);
    run = call({"import", "text", text});
    QCOMPARE(run.status, 3);
    QCOMPARE(run.err, QByteArray("The format of the import text file is invalid. Please correct the file and try "
                                 "again. (line 2)\n"));
    QVERIFY(!QFile::exists(doc));
}

void TestQbxExchange::outlinesOutAndIn_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("extension");
    QTest::newRow("opml") << "opml" << "opml";
    QTest::newRow("markdown") << "markdown" << "md";
}

void TestQbxExchange::outlinesOutAndIn()
{
    QFETCH(QString, kind);
    QFETCH(QString, extension);
    const QString doc = writeSample();
    const QString outline = path(QStringLiteral("out.") + extension);
    QCOMPARE(call({"export", kind, doc, outline}).status, 0);

    // A new document beside the outline...
    QbxRun run = call({"import", kind, outline});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.out, path(QStringLiteral("out.qbx")).toUtf8() + "\n");
    Document made;
    QCOMPARE(DocumentFile::load(path(QStringLiteral("out.qbx")), &made), DocumentFile::Loaded);
    QCOMPARE(describe(made.root()), QStringLiteral("R(a(b),c)"));
    QCOMPARE(call({"import", kind, outline}).status, 3);

    // ...or its items under an item of a document; a missing file changes nothing.
    QCOMPARE(call({"import", kind, doc, path(QStringLiteral("missing"))}).status, 4);
    QCOMPARE(call({"import", kind, doc, outline, "--into", "3"}).status, 0);
    Document joined;
    QCOMPARE(DocumentFile::load(doc, &joined), DocumentFile::Loaded);
    QCOMPARE(describe(joined.root()), QStringLiteral("R(a(b),c(a(b),c))"));
    QVERIFY(joined.root()->child(1)->child(0)->isComplete());
}

void TestQbxExchange::importDocumentConvertsNotes()
{
    const QString other = writeSample(Document::RichText);
    const QString otherCopy = path(QStringLiteral("other.qbx"));
    QVERIFY(QFile::rename(other, otherCopy));
    const QString doc = writeSample(Document::PlainText);

    QCOMPARE(call({"import", "doc", doc, otherCopy, "--into", "3"}).status, 0);
    Document back;
    QCOMPARE(DocumentFile::load(doc, &back), DocumentFile::Loaded);
    const Item *c = back.root()->child(1);
    QCOMPARE(c->name(), QStringLiteral("c"));
    QCOMPARE(c->childCount(), 2);
    // The imported rich-text note is now a plain-text note.
    QCOMPARE(c->child(0)->note(), note(u"hi"));
}

void TestQbxExchange::convertNotes()
{
    const QString doc = writeSample(Document::PlainText);
    QbxRun run = call({"convert-notes", doc, "--to", "rich"});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.out, QByteArray("Note conversion completed.\n"));
    Document back;
    QCOMPARE(DocumentFile::load(doc, &back), DocumentFile::Loaded);
    QCOMPARE(back.noteType, quint16(2));
    QCOMPARE(
        back.root()->child(0)->note(),
        QByteArray("{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fnil Tahoma;}}\r\n\\pard hi\\par\r\n}"));
    QCOMPARE(call({"convert-notes", doc, "--to", "5"}).status, 2);
}

void TestQbxExchange::failuresPrintTheMessage()
{
    // The fixed storage-space message only when the disk is full; always the
    // file and the reason.
    const QString doc = writeSample();
    const QString missing = path(QStringLiteral("no/such/dir/out"));
    const QbxRun run = call({"export", "notes", doc, missing});
    QCOMPARE(run.status, 5);
    QCOMPARE(run.err, "qbx: " + QFile::encodeName(missing) + ": folder missing\n");
    const QbxRun items = call({"export", "items", doc, path(QStringLiteral(".")), "--choice", "0"});
    QCOMPARE(items.status, 5);
    QCOMPARE(items.err, "qbx: " + QFile::encodeName(m_dir->path()) + ": is a directory\n");

    // A file size limit fails the writes as a full disk does.
    const QString out = path(QStringLiteral("full.xml"));
    QProcess process;
    process.setChildProcessModifier([] {
        const rlimit limit{100, 100};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::signal(SIGXFSZ, SIG_IGN);
    });
    process.start(QStringLiteral(QUILLBOX_BINARY_DIR "/qbx"), {"export", "xml", doc, out});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 5);
    QCOMPARE(process.readAllStandardError(),
             "Export has failed. Please make sure you have enough storage space and try again.\nqbx: " +
                 QFile::encodeName(out) + ": disk full\n");
    QVERIFY(!QFile::exists(out));
    QCOMPARE(QDir(m_dir->path()).entryList({QStringLiteral("*.part")}, QDir::Files | QDir::Hidden), QStringList());
}

QBX_SUITE(TestQbxExchange)
#include "qbxexchange.moc"
