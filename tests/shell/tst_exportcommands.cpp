#include "support/shellfixture.h"

#include "model/treewalker.h"
#include "notes/notetext.h"
#include "shell/dialogs/itemexportdialog.h"
#include "shell/dialogs/textexportdialog.h"
#include "shell/widgets/nodetree.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QRadioButton>

namespace {

QByteArray le(const QString &text)
{
    QByteArray bytes;
    for (QChar c : text) {
        bytes += char(c.unicode() & 0xFF);
        bytes += char(c.unicode() >> 8);
    }
    return bytes;
}

// "Name" per item, each followed by its children in brackets:
// "Pack[Boots] Map".
QString outline(const TreeNode *top)
{
    QString text;
    TreeWalker walker(top);
    int depth = 0;
    while (const Item *item = walker.next()) {
        for (; depth > walker.depth(); --depth)
            text += QLatin1Char(']');
        if (depth == walker.depth() && !text.isEmpty())
            text += QLatin1Char(' ');
        else if (depth < walker.depth() && depth > 0)
            text += QLatin1Char('[');
        depth = walker.depth();
        text += item->name();
    }
    for (; depth > 1; --depth)
        text += QLatin1Char(']');
    return text;
}

// Runs qbx on the fixture's folder, away from the settings of the person running the tests.
int runQbx(const ShellFixture &f, const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), f.dir.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("HOME"), f.dir.path());
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(QUILLBOX_BINARY_DIR "/qbx"), arguments);
    return process.waitForFinished(30000) ? process.exitCode() : -1;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

} // namespace

class TestExportCommands : public QObject {
    Q_OBJECT

private:
    // Trip > Pack (note "socks") > Boots; Trip > Book (a web link and a link
    // to Boots). Every item created 2024-01-01 00:00:00.
    std::unique_ptr<Document> sample()
    {
        auto document = std::make_unique<Document>();
        document->root()->setName(QStringLiteral("Trip"));
        const SystemTime newYear{2024, 1, 1, 1, 0, 0, 0, 0};
        Item *pack = add(document->root(), QStringLiteral("Pack"));
        pack->setNote(NoteText::toPlainNote(QStringLiteral("socks")));
        Item *boots = add(pack, QStringLiteral("Boots"));
        Item *book = add(document->root(), QStringLiteral("Book"));
        book->setLinks({QStringLiteral("http://x.example"), boots->linkText()});
        for (Item *item : {pack, boots, book})
            item->setCreated(newYear);
        return document;
    }

private Q_SLOTS:
    void textExports_data();
    void textExports();
    void failedWriteIsReported();
    void cancelWritesNothing();
    void exportsFollowTheView();
    void xmlFromTheMenuEqualsQbx();
    void importFileEqualsQbx();
    void itemsExport_data();
    void itemsExport();
};

void TestExportCommands::textExports_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("choice");
    QTest::addColumn<int>("fileType");
    QTest::addColumn<QString>("note");
    QTest::addColumn<QByteArray>("expected");

    const QString currentView =
        QStringLiteral("Data will be exported based on current view excluding all filtering options.");
    const QString defaultView =
        QStringLiteral("Data will be exported based on default view excluding any filtering options.");
    QTest::newRow("view, tab, text") << QByteArray("actionExportView") << 1 << 0 << currentView
                                     << QByteArray("Trip\r\n\tPack\r\n\t\tBoots\r\n\tBook\r\n");
    QTest::newRow("links, bar, unicode")
        << QByteArray("actionExportLinks") << 4 << 1 << defaultView
        << QByteArray("\xff\xfe") +
               le(QStringLiteral("Trip|Pack\r\n(None)\r\n\r\nTrip|Pack|Boots\r\n(None)\r\n\r\nTrip|Book\r\n"
                                 "http://x.example\r\nBoots\r\n\r\n"));
}

void TestExportCommands::textExports()
{
    QFETCH(QByteArray, command);
    QFETCH(int, choice);
    QFETCH(int, fileType);
    QFETCH(QString, note);
    QFETCH(QByteArray, expected);
    ShellFixture f;
    QVERIFY(f.open(sample()));
    const QString path = f.dir.filePath(QStringLiteral("out.txt"));
    f.prompts.fileNames.enqueue(path);
    f.prompts.fileTypes.enqueue(fileType);
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        QCOMPARE(child<QLabel>(d, "exportNote")->text(), note);
        screenshot(d, QString::fromLatin1(command));
        child<QComboBox>(d, "exportChoice")->setCurrentIndex(choice);
        press(d);
    });
    f.run(command.constData());
    QVERIFY(f.prompts.shown.isEmpty());
    QCOMPARE(readFile(path), expected);
    // The choice is the next export's default.
    const Settings &s = f.window->settings();
    QCOMPARE(int(command == "actionExportView" ? s.expViewSep : s.expOtherSep), choice);
}

void TestExportCommands::failedWriteIsReported()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    const QString nowhere = f.dir.filePath(QStringLiteral("no/such/folder/out.txt"));
    // The XML export and the text exports report their failures each in their own place.
    f.prompts.fileNames << nowhere << nowhere;
    f.run("actionExportXml");
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d); });
    f.run("actionExportNotes");
    QCOMPARE(f.shownTexts().size(), 2);
    for (const QString &shown : f.shownTexts()) {
        QVERIFY(shown.startsWith(
            QStringLiteral("Export has failed. Please make sure you have enough storage space and try again.")));
        QVERIFY2(shown.endsWith(QStringLiteral("out.txt: folder missing")), qPrintable(shown));
    }
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Stop);
}

void TestExportCommands::cancelWritesNothing()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    const QString path = f.dir.filePath(QStringLiteral("out.txt"));
    f.prompts.fileNames.enqueue(path);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        child<QComboBox>(d, "exportChoice")->setCurrentIndex(5);
        press(d, QDialogButtonBox::Cancel);
    });
    f.run("actionExportLinks");
    // Cancelled at the options: no file was asked for, and the choice is not kept.
    QCOMPARE(f.prompts.fileNames.size(), 1);
    QCOMPARE(f.window->settings().expOtherSep, quint16(0));
    f.prompts.fileNames.clear();
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d); });
    f.run("actionExportLinks"); // cancelled at the file dialog
    f.run("actionExportXml");
    QVERIFY(!QFile::exists(path));
    QVERIFY(f.prompts.shown.isEmpty());
}

void TestExportCommands::exportsFollowTheView()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    QVERIFY(f.enabled("actionExportView") && f.enabled("actionImportFile"));
    f.document()->viewMode = Document::ByCategory;
    QVERIFY(!f.enabled("actionExportNotes") && !f.enabled("actionImportFile"));
    f.document()->viewMode = Document::DefaultView;
    // A document without items has nothing to export, but can import.
    while (f.document()->root()->hasChildren())
        Editing::deleteItem(*f.document(), f.at({0}), &f.view()->clip());
    QVERIFY(!f.enabled("actionExportLinks") && f.enabled("actionImportFile"));
}

void TestExportCommands::xmlFromTheMenuEqualsQbx()
{
    const QString qbx = QStringLiteral(QUILLBOX_BINARY_DIR "/qbx");
    QVERIFY2(QFile::exists(qbx), "build the qbx target first");
    ShellFixture f;
    QVERIFY(f.open(sample()));
    const QString fromMenu = f.dir.filePath(QStringLiteral("menu.out"));
    f.window->settings().xmlEncode = 1;
    f.prompts.fileNames.enqueue(fromMenu);
    f.run("actionExportXml");
    // qbx reads the document as saved (the open view keeps its top level open).
    f.run("actionSave");

    const QString fromQbx = f.dir.filePath(QStringLiteral("qbx.out"));
    QCOMPARE(runQbx(f, {QStringLiteral("export"), QStringLiteral("xml"), QStringLiteral("--encoding"),
                        QStringLiteral("1"), f.document()->path, fromQbx}),
             0);
    QCOMPARE(readFile(fromMenu), readFile(fromQbx));
    QVERIFY(readFile(fromMenu).size() > 40);
}

void TestExportCommands::importFileEqualsQbx()
{
    ShellFixture f;
    // The other document's notes are rich text; the target rolls its
    // progress up and orders its children by name.
    auto other = std::make_unique<Document>();
    other->noteType = Document::RichText;
    Item *apple = add(other->root(), QStringLiteral("Apple"));
    apple->setProgress(100);
    apple->setNote(QByteArray("{\\rtf1 ripe}"));
    other->path = f.dir.filePath(QStringLiteral("other.qbx"));
    QVERIFY(DocumentFile::save(*other));
    auto document = sample();
    Item *pack = document->root()->child(0);
    pack->setAutoProgress(true);
    pack->setSort(TreeNode::SortName);
    QVERIFY(f.open(std::move(document)));
    f.select(f.at({0}));
    f.run("actionSave");
    const QString copy = f.dir.filePath(QStringLiteral("copy.qbx"));
    QVERIFY(QFile::copy(f.document()->path, copy));

    f.prompts.fileNames.enqueue(other->path);
    f.run("actionImportFile");
    f.run("actionSave");
    QCOMPARE(f.at({0})->progress(), quint16(50));

    QCOMPARE(runQbx(f, {QStringLiteral("import"), QStringLiteral("doc"), copy, other->path, QStringLiteral("--into"),
                        QStringLiteral("1")}),
             0);
    QCOMPARE(readFile(copy), readFile(f.document()->path));
}

void TestExportCommands::itemsExport_data()
{
    QTest::addColumn<int>("choice");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QStringList>("picked");
    QTest::addColumn<bool>("deleteAfter");
    QTest::addColumn<QString>("written");   // the new file's items; empty: no file
    QTest::addColumn<QString>("rootName");  // the new file's root
    QTest::addColumn<QString>("remaining"); // the open document afterwards
    QTest::addColumn<QString>("message");

    const QString all = QStringLiteral("Pack[Boots Socks] Book[Map]");
    QTest::newRow("with hierarchy, deleted")
        << 1 << QString() << QStringList() << true << QStringLiteral("Pack[Boots] Book[Map]") << QStringLiteral("Trip")
        << QStringLiteral("Pack[Socks] Book")
        << QStringLiteral("4 item(s) exported. 1 exported item(s) stayed in the document because they hold items that "
                          "were not exported.");
    QTest::newRow("selected branch, deleted")
        << 2 << QStringLiteral("Book") << QStringList() << true << QStringLiteral("Map") << QStringLiteral("Book")
        << QStringLiteral("Pack[Boots Socks]") << QStringLiteral("2 item(s) exported.");
    QTest::newRow("picked items") << 3 << QString() << QStringList{QStringLiteral("Socks"), QStringLiteral("Map")}
                                  << false << QStringLiteral("Socks Map") << QStringLiteral("Trip") << all
                                  << QStringLiteral("2 item(s) exported.");
    QTest::newRow("nothing picked") << 3 << QString() << QStringList() << true << QString() << QString() << all
                                    << QStringLiteral("There are no items that matched the export criteria. No file "
                                                      "is created.");
}

void TestExportCommands::itemsExport()
{
    QFETCH(int, choice);
    QFETCH(QString, selected);
    QFETCH(QStringList, picked);
    QFETCH(bool, deleteAfter);
    QFETCH(QString, written);
    QFETCH(QString, rootName);
    QFETCH(QString, remaining);
    QFETCH(QString, message);

    ShellFixture f;
    auto document = std::make_unique<Document>();
    document->root()->setName(QStringLiteral("Trip"));
    Item *pack = add(document->root(), QStringLiteral("Pack"));
    add(pack, QStringLiteral("Boots"))->storeProgress(100);
    add(pack, QStringLiteral("Socks"));
    pack->storeProgress(100);
    Item *book = add(document->root(), QStringLiteral("Book"));
    add(book, QStringLiteral("Map"))->storeProgress(100);
    QVERIFY(f.open(std::move(document)));
    if (!selected.isEmpty())
        f.select(f.at({1}));
    const QString path = f.dir.filePath(QStringLiteral("items.qbx"));
    f.prompts.fileNames.enqueue(path);
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        auto *dialog = qobject_cast<ItemExportDialog *>(d);
        // "Delete after export" starts from the option, which is off.
        QVERIFY(!child<QCheckBox>(d, "deleteAfterExport")->isChecked());
        QVERIFY(!dialog->tree()->isEnabled());
        clickButton(d->findChild<QRadioButton *>(QStringLiteral("choice%1").arg(choice)));
        QCOMPARE(dialog->tree()->isEnabled(), choice == 3);
        for (const QString &name : picked) {
            Item *item = name == QLatin1String("Socks") ? f.at({0, 1}) : f.at({1, 0});
            dialog->tree()->rowFor(item)->setCheckState(0, Qt::Checked);
        }
        if (choice == 3)
            screenshot(d, QStringLiteral("item-export"));
        child<QCheckBox>(d, "deleteAfterExport")->setChecked(deleteAfter);
        press(d);
    });
    f.run("actionExportItems");
    QCOMPARE(f.shownTexts(), QStringList{message});
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Information);
    QCOMPARE(outline(f.document()->root()), remaining);
    if (written.isEmpty()) {
        QVERIFY(!QFile::exists(path));
        return;
    }
    Document exported;
    QCOMPARE(DocumentFile::load(path, &exported), DocumentFile::Loaded);
    QCOMPARE(exported.root()->name(), rootName);
    QCOMPARE(outline(exported.root()), written);
}

QTEST_MAIN(TestExportCommands)
#include "tst_exportcommands.moc"
