#include "support/shellfixture.h"

#include "model/treewalker.h"
#include "notes/notetext.h"
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"
#include "shell/dialogs/convertnotesdialog.h"
#include "storage/password.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QRadioButton>
#include <QTreeWidget>
#include <QUrl>

class TestFileCommands : public QObject {
    Q_OBJECT

private:
    // Home > Kitchen (note "paint"), Garden
    static std::unique_ptr<Document> sample(quint16 noteType = Document::PlainText)
    {
        auto document = std::make_unique<Document>();
        document->noteType = noteType;
        document->root()->setName(QStringLiteral("Home"));
        Item *kitchen = add(document->root(), QStringLiteral("Kitchen"));
        kitchen->setNote(NoteText::fromText(QStringLiteral("paint"), noteType));
        add(document->root(), QStringLiteral("Garden"));
        return document;
    }

    // Writes a document of two items to import: Tools > Saw (note "sharp"), Drill.
    static QString writeImport(const QString &path, const QString &password)
    {
        Document document;
        const quint16 noteType = Document::PlainText;
        Item *tools = add(document.root(), QStringLiteral("Tools"));
        add(tools, QStringLiteral("Saw"))->setNote(NoteText::fromText(QStringLiteral("sharp"), noteType));
        add(document.root(), QStringLiteral("Drill"));
        if (!password.isEmpty())
            document.passwordHash = Password::digest(password);
        document.path = path;
        return DocumentFile::save(document) ? path : QString();
    }

    static QStringList names(const TreeNode *node)
    {
        QStringList list;
        for (const Item *item : node->children())
            list.append(item->name());
        return list;
    }

private Q_SLOTS:
    void importFile_data();
    void importFile();
    void convertNotes_data();
    void convertNotes();
    void fileProperties();
    void helpOpensTheContents();
    void importTextMakesANewDocument_data();
    void importTextMakesANewDocument();
};

void TestFileCommands::importFile_data()
{
    // Which files load is the file format's rule; the messages of the refusals are checked only here.
    QTest::addColumn<QString>("file"); // "protected", "old version" or "damaged"
    QTest::addColumn<QStringList>("passwords");
    QTest::addColumn<QStringList>("gardenChildren");
    QTest::addColumn<QStringList>("messages");

    const QStringList imported = {QStringLiteral("Tools"), QStringLiteral("Drill")};
    QTest::newRow("protected, right password")
        << QStringLiteral("protected") << QStringList{QStringLiteral("nope"), QStringLiteral("key")} << imported
        << QStringList();
    QTest::newRow("older version")
        << QStringLiteral("old version") << QStringList() << QStringList()
        << QStringList{QStringLiteral("Only Quillbox files from the current version can be imported. Please open the "
                                      "file and save it and then try import again.")};
    QTest::newRow("damaged") << QStringLiteral("damaged") << QStringList() << QStringList()
                             << QStringList{QStringLiteral("Unable to load file. The file may be corrupted.")};
}

void TestFileCommands::importFile()
{
    QFETCH(QString, file);
    QFETCH(QStringList, passwords);
    QFETCH(QStringList, gardenChildren);
    QFETCH(QStringList, messages);
    ShellFixture f;
    QVERIFY(f.open(sample()));
    const QString path = f.dir.filePath(QStringLiteral("import.qbx"));
    QVERIFY(!writeImport(path, file == QLatin1String("protected") ? QStringLiteral("key") : QString()).isEmpty());
    if (file != QLatin1String("protected")) {
        QFile patch(path);
        QVERIFY(patch.open(QIODevice::ReadWrite));
        if (file == QLatin1String("old version"))
            patch.write(QByteArray("\x26\x02\x00\x00", 4)); // 550
        else
            patch.resize(patch.size() - 3);
    }
    Item *garden = f.at({1});
    f.select(garden);
    f.prompts.passwords.append(passwords);
    f.prompts.fileNames.enqueue(path);
    f.run("actionImportFile");
    for (QString &m : messages)
        m += QStringLiteral("\n\n") + QDir::toNativeSeparators(path); // the box names the file
    QCOMPARE(f.shownTexts(), messages);
    for (const auto &shown : std::as_const(f.prompts.shown))
        QCOMPARE(shown.icon, Prompts::Icon::Stop);
    QCOMPARE(names(garden), gardenChildren);
    QCOMPARE(names(f.document()->root()), (QStringList{QStringLiteral("Kitchen"), QStringLiteral("Garden")}));
    if (!gardenChildren.isEmpty()) {
        QCOMPARE(f.prompts.passwordAttempts, int(passwords.size()));
        const Item *saw = garden->child(0)->child(0);
        QCOMPARE(saw->name(), QStringLiteral("Saw"));
        QCOMPARE(NoteText::plainText(saw->note(), Document::PlainText), QStringLiteral("sharp"));
        QVERIFY(garden->isExpanded());
    }
}

void TestFileCommands::convertNotes_data()
{
    QTest::addColumn<quint16>("from");
    QTest::addColumn<quint16>("to");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<bool>("yes");
    QTest::addColumn<bool>("converted");
    QTest::addColumn<QStringList>("messages");

    const QString done = QStringLiteral("Note conversion completed.");
    const QString ask = QStringLiteral("Converting notes to a different format may cause data loss. Are you sure?");
    QTest::newRow("from plain text, no question")
        << quint16(0) << quint16(2) << true << true << true << QStringList{done};
    QTest::newRow("from rich text, yes") << quint16(2) << quint16(0) << true << true << true << QStringList{ask, done};
    QTest::newRow("from rich ink, no") << quint16(1) << quint16(2) << true << false << false << QStringList{ask};
    QTest::newRow("cancelled") << quint16(0) << quint16(1) << false << true << false << QStringList();
}

void TestFileCommands::convertNotes()
{
    QFETCH(quint16, from);
    QFETCH(quint16, to);
    QFETCH(bool, ok);
    QFETCH(bool, yes);
    QFETCH(bool, converted);
    QFETCH(QStringList, messages);
    ShellFixture f;
    QVERIFY(f.open(sample(from)));
    const QString path = f.document()->path;
    f.prompts.yesNo.enqueue(yes);
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        QCOMPARE(child<QLabel>(d, "convertFile")->text(), QDir::toNativeSeparators(path));
        if (from == 0)
            screenshot(d, QStringLiteral("convert-notes"));
        clickButton(child<QRadioButton>(d, QStringLiteral("target%1").arg(to).toLatin1().constData()));
        press(d, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    });
    f.run("actionConvertNotes");
    QCOMPARE(f.shownTexts(), messages);
    if (messages.size() == 2)
        QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Exclamation); // No is the safe default
    if (!converted) {
        QCOMPARE(f.document()->noteType, from);
        return;
    }
    // A conversion saves the document and closes it back to the list.
    QVERIFY(!f.view());
    QCOMPARE(f.prompts.shown.last().icon, Prompts::Icon::Information);
    Document reloaded;
    QCOMPARE(DocumentFile::load(path, &reloaded), DocumentFile::Loaded);
    QCOMPARE(reloaded.noteType, to);
    const QByteArray note = reloaded.root()->child(0)->note();
    QCOMPARE(NoteText::plainText(note, to), QStringLiteral("paint"));
    if (to == Document::RichText)
        QVERIFY(RtfReader::looksLikeRtf(note));
}

void TestFileCommands::fileProperties()
{
    ShellFixture f;
    QVERIFY(f.open(sample(Document::RichInk), QStringLiteral("house.qbx")));
    f.at({1})->setProgress(100);
    f.at({0})->setLinks({QStringLiteral("http://a.example")});
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        screenshot(d, QStringLiteral("file-properties"));
        QCOMPARE(child<QLabel>(d, "fileName")->text(), QStringLiteral("house"));
        QCOMPARE(child<QLabel>(d, "noteType")->text(), QStringLiteral("Rich Ink"));
        QCOMPARE(child<QLabel>(d, "location")->text(), QDir::toNativeSeparators(f.dir.path()));
        QVERIFY(!child<QLabel>(d, "modified")->text().isEmpty());
        QCOMPARE(child<QLabel>(d, "protection")->text(), QStringLiteral("Not protected"));
        QCOMPARE(child<QLabel>(d, "items")->text(), QStringLiteral("2 (1 completed)"));
        QCOMPARE(child<QLabel>(d, "notes")->text(), QStringLiteral("1"));
        QCOMPARE(child<QLabel>(d, "links")->text(), QStringLiteral("1"));
        press(d);
    });
    f.run("actionFileProperties");
    QCOMPARE(f.prompts.dialogsRun, QStringList{QStringLiteral("fileProperties")});
}

void TestFileCommands::helpOpensTheContents()
{
    ShellFixture f;
    QAction *help = f.window->findChild<QAction *>(QStringLiteral("actionHelp"));
    QVERIFY(help);
    QCOMPARE(help->shortcut(), QKeySequence(Qt::Key_F1));
    // Without a browser the person is told where the page is.
    f.prompts.urlsOpen = false;
    help->trigger();
    QCOMPARE(f.shownTexts().size(), 1);
    QVERIFY(f.shownTexts().first().contains(QStringLiteral("Quillbox.htm")));
    f.prompts.urlsOpen = true;
    f.prompts.opened.clear();
    help->trigger();
    QCOMPARE(f.shownTexts().size(), 1);
    QCOMPARE(f.prompts.opened.size(), 1);
    const QUrl url = f.prompts.opened[0];
    QCOMPARE(url.fragment(), QStringLiteral("Main_Contents"));
    QCOMPARE(QFileInfo(url.toLocalFile()).fileName(), QStringLiteral("Quillbox.htm"));
    QFile page(url.toLocalFile());
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QByteArray html = page.readAll();
    QVERIFY(html.contains("id=\"Main_Contents\""));
    // Every place the page links to within itself exists.
    qsizetype at = 0;
    int links = 0;
    while ((at = html.indexOf("href=\"#", at)) >= 0) {
        at += 7;
        const QByteArray anchor = html.mid(at, html.indexOf('"', at) - at);
        QVERIFY2(html.contains("id=\"" + anchor + "\""), anchor.constData());
        ++links;
    }
    QVERIFY(links > 10);
}

void TestFileCommands::importTextMakesANewDocument_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("existing");
    QTest::addColumn<QList<bool>>("answers");
    QTest::addColumn<QString>("outline"); // empty: no document opened
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("source"); // the file's name; the new document's is its base name

    const QString txt = QStringLiteral("shopping.list.txt");
    const QString replace = QStringLiteral("'%1' already exists. Do you want to replace it?");
    QTest::newRow("outline") << QByteArray("Groceries\r\n Fruit\r\n  Apples\r\n Bread\r\n") << false << QList<bool>()
                             << QStringLiteral("Groceries: Fruit Apples Bread") << QStringList() << txt;
    QTest::newRow("replacing a document, yes") << QByteArray("Groceries\r\n\tBread\r\n") << true << QList<bool>{true}
                                               << QStringLiteral("Groceries: Bread") << QStringList{replace} << txt;
    QTest::newRow("replacing a document, no") << QByteArray("Groceries\r\n\tBread\r\n") << true << QList<bool>{false}
                                              << QString() << QStringList{replace} << txt;
    QTest::newRow("format error")
        << QByteArray("Groceries\r\nFruit\r\n") << false << QList<bool>() << QString()
        << QStringList{QStringLiteral("The format of the import text file is invalid. Please correct the file and try "
                                      "again. (line 2)\n\n%2")}
        << txt;
    QTest::newRow("unreadable") << QByteArray("\xff\xfe\x00\x00", 4) << false << QList<bool>() << QString()
                                << QStringList{QStringLiteral("Unable to load file. Please try again with a smaller "
                                                              "file.\n\n%2")}
                                << txt;
    // The file's suffix chooses the reader; each reader's rules are its own suite's.
    QTest::newRow("OPML") << QByteArray("<opml version=\"2.0\"><head><title>Groceries</title></head><body>"
                                        "<outline text=\"Bread\"/></body></opml>")
                          << false << QList<bool>() << QStringLiteral("Groceries: Bread") << QStringList()
                          << QStringLiteral("shopping.opml");
    QTest::newRow("OPML, not an outline")
        << QByteArray("<html/>") << false << QList<bool>() << QString()
        << QStringList{QStringLiteral("The file is not an outline this program can read. Please correct the file and "
                                      "try again.\nthe file is not an OPML outline\n\n%2")}
        << QStringLiteral("shopping.opml");
    QTest::newRow("Markdown") << QByteArray("# Groceries\n\n- Bread\n") << false << QList<bool>()
                              << QStringLiteral("Groceries: Bread") << QStringList() << QStringLiteral("shopping.md");
}

void TestFileCommands::importTextMakesANewDocument()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, existing);
    QFETCH(QList<bool>, answers);
    QFETCH(QString, outline);
    QFETCH(QStringList, messages);
    QFETCH(QString, source);
    ShellFixture f;
    f.window->settings().textImport = 0x00020007; // rich text notes, icon 7
    source = f.dir.filePath(source);
    const QString target = f.dir.filePath(QFileInfo(source).completeBaseName() + QStringLiteral(".qbx"));
    QFile file(source);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    if (existing) {
        Document old;
        add(old.root(), QStringLiteral("Old"));
        old.path = target;
        QVERIFY(DocumentFile::save(old));
    }
    f.window->updateActions();
    QVERIFY(f.command("actionImportText")->isEnabled());
    f.prompts.fileNames.enqueue(source);
    f.prompts.noteTypes.enqueue(Document::RichText);
    f.prompts.yesNo.append(answers);
    f.run("actionImportText");

    QStringList expected = messages;
    for (QString &m : expected)
        m.replace(QLatin1String("%1"), QDir::toNativeSeparators(target))
            .replace(QLatin1String("%2"), QDir::toNativeSeparators(source));
    QCOMPARE(f.shownTexts(), expected);
    QCOMPARE(f.prompts.noteTypesOffered, QList<int>{2}); // the option's note type comes first
    if (outline.isEmpty()) {
        QVERIFY(!f.view());
        Document onDisk;
        if (existing) {
            QCOMPARE(DocumentFile::load(target, &onDisk), DocumentFile::Loaded);
            QCOMPARE(onDisk.root()->child(0)->name(), QStringLiteral("Old"));
        } else {
            QVERIFY(!QFile::exists(target));
        }
        return;
    }
    QVERIFY(f.view());
    QCOMPARE(f.document()->path, target);
    QCOMPARE(f.document()->noteType, quint16(Document::RichText));
    QStringList names;
    TreeWalker walker(f.document()->root());
    while (const Item *item = walker.next()) {
        names.append(item->name());
        QCOMPARE(item->image(), quint16(7));
    }
    QCOMPARE(f.document()->root()->name() + QStringLiteral(": ") + names.join(QLatin1Char(' ')), outline);
    QVERIFY(!f.command("actionImportText")->isEnabled());
}

QTEST_MAIN(TestFileCommands)
#include "tst_filecommands.moc"
