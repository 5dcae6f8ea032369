#include "storage/settings.h"
#include "support/exchangetest.h"
#include "support/outline.h"
#include "support/qbxprocess.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>

using namespace ExchangeTest;

class TestQbxExchange : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString &name) const { return m_dir->filePath(name); }
    // The settings come from a store of the test's own.
    QbxRun call(const QStringList &arguments)
    {
        return qbx(arguments, {{}, {}, {{"XDG_CONFIG_HOME", path("config")}}});
    }

    // R(a(b),c): a and c done, a with the note "hi" in the document's note type.
    QString writeSample(quint16 noteType = Document::PlainText)
    {
        Document document;
        document.noteType = noteType;
        document.root()->setName(QStringLiteral("R"));
        Outline::build(document.root(), "a | prog=100\n  b\nc | prog=100\n");
        document.root()->child(0)->setNote(noteType == Document::RichText ? QByteArray("{\\rtf1 {\\b hi}}")
                                                                          : note(u"hi"));
        DocumentFile::save(document, path(QStringLiteral("doc.qbx")));
        return path(QStringLiteral("doc.qbx"));
    }

    void writeSettings(const std::function<void(Settings &)> &change)
    {
        QSettings store(path(QStringLiteral("config/Quillbox/Quillbox.conf")), QSettings::IniFormat);
        Settings settings;
        change(settings);
        settings.save(store);
    }

private Q_SLOTS:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }

    void exportsTakeOptionsOrSettings()
    {
        const QString doc = writeSample();
        const QString out = path(QStringLiteral("out.txt"));
        // Defaults with no settings stored: one space, ":", the code page.
        QVERIFY(call({"export", "view", doc, out}).status == 0 && readFile(out) == "R\r\n a\r\n  b\r\n c\r\n");
        writeSettings([](Settings &s) {
            s.expViewSep = 1;
            s.expOtherSep = 2;
            s.xmlEncode = 1;
        });
        const std::tuple<QStringList, QByteArray> cases[] = {
            {{"view"}, "R\r\n\ta\r\n\t\tb\r\n\tc\r\n"},
            {{"links"}, "R/a\r\n(None)\r\n\r\nR/a/b\r\n(None)\r\n\r\nR/c\r\n(None)\r\n\r\n"},
            {{"xml"}, "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<ROOT Flags=\"2\""},
            {{"view", "--indent", "0", "--unicode"}, "\xff\xfe" + le(u"R\r\na\r\nb\r\nc\r\n")},
            {{"xml", "--encoding", "2"}, "\xff\xfe" + le(u"<?xml version=\"1.0\" encoding=\"UTF-16\" ?>\r\n")},
        };
        for (const auto &[arguments, start] : cases) {
            QCOMPARE(call(QStringList{"export", arguments[0], doc, out} + arguments.mid(1)).status, 0);
            QCOMPARE(readFile(out).left(start.size()), start);
        }
        const QbxRun bad = call({"export", "view", doc, out, "--indent", "7"});
        QVERIFY2(bad.status == 2 && bad.err.contains("--indent"), bad.err.constData());
    }

    void exportItemsAndBranch()
    {
        const QString doc = writeSample();
        const QString part = path(QStringLiteral("part.qbx"));
        // Picked items, deleted afterwards: the document file is saved.
        QCOMPARE(call({"export", "items", doc, part, "--choice", "3", "--select", "2,3", "--delete"}),
                 printed("2 item(s) exported.\n"));
        QCOMPARE(describeFile(doc), QStringLiteral("R(a)"));
        // Nothing matches now that c is gone and a is not picked.
        QFile::remove(part);
        QCOMPARE(call({"export", "items", doc, part, "--choice", "3", "--select", "0"}),
                 refused(3, "There are no items that matched the export criteria. No file is created.\n"));
        QVERIFY(!QFile::exists(part));
        QCOMPARE(call({"export", "branch", doc, "1", part}).status, 0);
        QCOMPARE(describeFile(part), QStringLiteral("a"));
        QCOMPARE(call({"export", "branch", doc, "9", part}).status, 2);
    }

    void importText()
    {
        const QString text = writeBytes(path(QStringLiteral("plan.txt")), "Plan\r\n\tOne\r\n\t\tTwo\r\n");
        const QString doc = path(QStringLiteral("plan.qbx"));
        writeSettings([](Settings &s) { s.textImport = 0x00020007; });
        QCOMPARE(call({"import", "text", text}), printed(doc.toUtf8() + "\n"));
        Document back;
        QCOMPARE(describeFile(doc, &back), QStringLiteral("Plan(One(Two))"));
        QCOMPARE(std::pair(back.noteType, back.root()->child(0)->image()), std::pair(quint16(2), quint16(7)));
        // An existing document is kept unless --force.
        QCOMPARE(call({"import", "text", text, "--note-type", "plain", "--icon", "12"}).status, 3);
        QCOMPARE(call({"import", "text", text, "--note-type", "plain", "--icon", "12", "--force"}).status, 0);
        QCOMPARE(describeFile(doc, &back), QStringLiteral("Plan(One(Two))"));
        QCOMPARE(std::pair(back.noteType, back.root()->child(0)->image()), std::pair(quint16(0), quint16(12)));
        // UTF-8 without a byte-order mark when the options say so, unless the command line says otherwise.
        writeBytes(text, "Caf\xc3\xa9\r\n");
        writeSettings([](Settings &s) { s.setFlag(Settings::Utf8TextImport, true); });
        QCOMPARE(call({"import", "text", text, "--force"}).status, 0);
        QCOMPARE(describeFile(doc), QStringLiteral("Caf\u00e9"));
        QCOMPARE(call({"import", "text", text, "--force", "--encoding", "ansi"}).status, 0);
        QCOMPARE(describeFile(doc), QStringLiteral("Caf\u00c3\u00a9"));

        writeBytes(text, "Plan\r\nNo indent\r\n");
        QFile::remove(doc);
        QCOMPARE(call({"import", "text", text}),
                 refused(3, "The format of the import text file is invalid. Please correct the file and try again. "
                            "(line 2)\n"));
        QVERIFY(!QFile::exists(doc));
    }

    void outlinesOutAndIn()
    {
        for (const QString kind : {"opml", "markdown"}) {
            init();
            const QString doc = writeSample();
            const QString outline = path(kind == QLatin1String("opml") ? "out.opml" : "out.md");
            QCOMPARE(call({"export", kind, doc, outline}).status, 0);
            // A new document beside the outline...
            QCOMPARE(call({"import", kind, outline}), printed(path(QStringLiteral("out.qbx")).toUtf8() + "\n"));
            QCOMPARE(describeFile(path(QStringLiteral("out.qbx"))), QStringLiteral("R(a(b),c)"));
            QCOMPARE(call({"import", kind, outline}).status, 3);
            // ...or its items under an item of a document; a missing file changes nothing.
            QCOMPARE(call({"import", kind, doc, path(QStringLiteral("missing"))}).status, 4);
            QCOMPARE(call({"import", kind, doc, outline, "--into", "3"}).status, 0);
            QCOMPARE(describeFile(doc), QStringLiteral("R(a(b),c(a(b),c))"));
        }
    }

    void notesAreConverted()
    {
        // An imported document's rich-text note joins as a plain-text note.
        const QString other = path(QStringLiteral("other.qbx"));
        QVERIFY(QFile::rename(writeSample(Document::RichText), other));
        const QString doc = writeSample(Document::PlainText);
        QCOMPARE(call({"import", "doc", doc, other, "--into", "3"}).status, 0);
        Document back;
        QCOMPARE(describeFile(doc, &back), QStringLiteral("R(a(b),c(a(b),c))"));
        QCOMPARE(back.root()->child(1)->child(0)->note(), note(u"hi"));
        QCOMPARE(call({"convert-notes", doc, "--to", "rich"}), printed("Note conversion completed.\n"));
        QCOMPARE(describeFile(doc, &back), QStringLiteral("R(a(b),c(a(b),c))"));
        QCOMPARE(back.noteType, quint16(2));
        QCOMPARE(call({"convert-notes", doc, "--to", "5"}).status, 2);
    }

    void failuresPrintTheMessage()
    {
        // The fixed storage-space message only when the disk is full; always the file and the reason.
        const QString doc = writeSample();
        const QString missing = path(QStringLiteral("no/such/dir/out"));
        QCOMPARE(call({"export", "notes", doc, missing}),
                 refused(5, "qbx: " + QFile::encodeName(missing) + ": folder missing\n"));
        // A file size limit fails the writes as a full disk does.
        const QString out = path(QStringLiteral("full.xml"));
        QProcess process;
        process.setChildProcessModifier([] {
            const rlimit limit{100, 100};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            ::signal(SIGXFSZ, SIG_IGN);
        });
        startQbx(process, {"export", "xml", doc, out});
        const QByteArray full = "Export has failed. Please make sure you have enough storage space and try again.\n";
        QCOMPARE(finishQbx(process), refused(5, full + "qbx: " + QFile::encodeName(out) + ": disk full\n"));
        QVERIFY(!QFile::exists(out));
        QCOMPARE(QDir(m_dir->path()).entryList({QStringLiteral("*.part")}, QDir::Files | QDir::Hidden), QStringList());
    }
};

QBX_SUITE(TestQbxExchange)
#include "qbxexchange.moc"
