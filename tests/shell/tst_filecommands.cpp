#include "support/icalobject.h"
#include "support/shellfixture.h"

#include "model/treewalker.h"
#include "notes/notetext.h"
#include "platform/messages.h"
#include "shell/dialogs/itemexportdialog.h"
#include "shell/widgets/nodetree.h"
#include "storage/password.h"

#include <QProcess>

namespace {

// Trip > Pack (note "paint", Boots), Book (links to the web and to Boots).
std::unique_ptr<Document> sample(quint16 noteType = Document::PlainText)
{
    auto document = std::make_unique<Document>();
    document->noteType = noteType;
    document->root()->setName(QStringLiteral("Trip"));
    Item *pack = add(document->root(), QStringLiteral("Pack"));
    pack->setNote(NoteText::fromText(QStringLiteral("paint"), noteType));
    Item *boots = add(pack, QStringLiteral("Boots"));
    add(document->root(), QStringLiteral("Book"))->setLinks({QStringLiteral("http://x.example"), boots->linkText()});
    return document;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Every item below the top, as "name" or "parent/name".
QString outline(const TreeNode *top)
{
    QStringList names;
    TreeWalker walker(top);
    while (const Item *item = walker.next())
        names.append(walker.depth() > 1 ? item->parent()->name() + QLatin1Char('/') + item->name() : item->name());
    return names.join(QLatin1Char(' '));
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

} // namespace

// The File menu's commands on documents and files: import, export, note conversion, properties, the calendar.
class TestFileCommands : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void importFile()
    {
        // Which files load is the file format's rule; the messages of the refusals are checked only here.
        const std::pair<QByteArray, QString> rows[] = {
            {QByteArray("\x27\x02", 2), QString()}, // the first bytes written over the file; empty: three cut off
            {QByteArray(), QStringLiteral("Unable to load file. The file may be corrupted.")},
            {QByteArray("\x26\x02", 2), QStringLiteral("Only Quillbox files from the current version can be imported. "
                                                       "Please open the file and save it and then try import again.")}};
        for (const auto &[patch, message] : rows) {
            ShellFixture f;
            QVERIFY(f.open(sample()));
            Document other;
            add(add(other.root(), QStringLiteral("Tools")), QStringLiteral("Saw"));
            other.passwordHash = Password::digest(QStringLiteral("key"));
            other.path = f.dir.filePath(QStringLiteral("import.qbx"));
            QVERIFY(DocumentFile::save(other));
            const QByteArray bytes = readFile(other.path);
            QVERIFY(writeFile(other.path, patch.isEmpty() ? bytes.chopped(3) : patch + bytes.mid(2)));
            f.select(f.at({1}));
            f.prompts.passwords << QStringLiteral("nope") << QStringLiteral("key");
            f.prompts.fileNames << other.path;
            QVERIFY(f.run("actionImportFile"));
            QCOMPARE(f.shownTexts().join(QString()),
                     message.isEmpty() ? QString() : message + "\n\n" + QDir::toNativeSeparators(other.path));
            QCOMPARE(outline(f.at({1})), message.isEmpty() ? QStringLiteral("Tools Tools/Saw") : QString());
        }
    }

    void importAndXmlExportEqualQbx()
    {
        // The desktop and qbx share the import and the XML export: the same files give the same bytes. The imported
        // notes are rich text; the target rolls its progress up and orders its children by name.
        ShellFixture f;
        Document other;
        other.noteType = Document::RichText;
        Item *apple = add(other.root(), QStringLiteral("Apple"));
        apple->setProgress(100);
        apple->setNote(QByteArray("{\\rtf1 ripe}"));
        other.path = f.dir.filePath(QStringLiteral("other.qbx"));
        QVERIFY(DocumentFile::save(other));
        auto document = sample();
        document->root()->child(0)->setAutoProgress(true);
        document->root()->child(0)->setSort(TreeNode::SortName);
        QVERIFY(f.open(std::move(document)));
        const QString copy = f.dir.filePath(QStringLiteral("copy.qbx")), xml = f.dir.filePath(QStringLiteral("x.xml"));
        f.select(f.at({0}));
        f.run("actionSave"); // qbx reads the document as saved, with the top level the view keeps open
        QVERIFY(QFile::copy(f.document()->path, copy));
        f.window->settings().xmlEncode = 1;
        f.prompts.fileNames << other.path << xml;
        QSignalSpy edited(f.view(), &DocumentView::itemsEdited); // the reminders learn of the items that arrived
        QVERIFY(f.run("actionImportFile") && f.run("actionSave") && f.run("actionExportXml"));
        QCOMPARE(edited.count(), 1);
        QCOMPARE(edited.at(0).at(0).value<ItemHost::Edit>(), ItemHost::Edit::ItemsAdded);
        QCOMPARE(f.at({0})->progress(), quint16(50));
        QCOMPARE(runQbx(f, {"import", "doc", copy, other.path, "--into", "1"}), 0);
        QCOMPARE(runQbx(f, {"export", "xml", "--encoding", "1", copy, f.dir.filePath(QStringLiteral("qbx.xml"))}), 0);
        QCOMPARE(readFile(copy), readFile(f.document()->path));
        QCOMPARE(readFile(f.dir.filePath(QStringLiteral("qbx.xml"))), readFile(xml));
        QVERIFY(readFile(xml).contains("Apple"));
    }

    void convertNotes()
    {
        // A conversion asks from formatted notes only, then saves the document and closes it back to the list.
        const QString ask = QString::fromLatin1(Messages::AskConvertNotes);
        const QString done = QStringLiteral("Note conversion completed.");
        const struct {
            quint16 from, to;
            bool ok, yes;
            QStringList messages;
        } rows[] = {{0, 2, true, true, {done}},
                    {2, 0, true, true, {ask, done}},
                    {1, 2, true, false, {ask}},
                    {0, 1, false, true, {}}};
        for (const auto &row : rows) {
            ShellFixture f;
            QVERIFY(f.open(sample(row.from)));
            const QString path = f.document()->path;
            f.prompts.yesNo.enqueue(row.yes);
            f.prompts.dialogs.enqueue([&](QDialog *d) {
                clickButton(child<QRadioButton>(d, QStringLiteral("target%1").arg(row.to).toLatin1().constData()));
                press(d, row.ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
            });
            QVERIFY(f.run("actionConvertNotes"));
            QCOMPARE(f.shownTexts(), row.messages);
            Document reloaded;
            QCOMPARE(DocumentFile::load(path, &reloaded), DocumentFile::Loaded);
            QCOMPARE(reloaded.noteType, row.messages.contains(done) ? row.to : row.from);
            QCOMPARE(NoteText::plainText(reloaded.root()->child(0)->note(), reloaded.noteType),
                     QStringLiteral("paint"));
            QCOMPARE(f.view() == nullptr, row.messages.contains(done));
        }
    }

    void importTextMakesANewDocument()
    {
        // The file's suffix chooses the reader; each reader's rules are its own suite's.
        const QString replace = QString::fromLatin1(Messages::AskReplaceDocument);
        const struct {
            const char *source;
            QByteArray text;
            bool existing;
            QString outline; // empty: no document opened
            QStringList messages;
        } rows[] = {
            {"list.txt", "Groceries\r\n Fruit\r\n  Apples\r\n Bread\r\n", false, "Fruit Fruit/Apples Bread", {}},
            {"list.txt", "Groceries\r\n\tBread\r\n", true, "Bread", {replace}},
            {"list.txt", "Groceries\r\n\tBread\r\n", true, "", {replace}},
            {"list.txt",
             "Groceries\r\nFruit\r\n",
             false,
             "",
             {"The format of the import text file is invalid. Please correct the file and try again. (line 2)\n\n%2"}},
            {"list.opml", "<opml version=\"2.0\"><body><outline text=\"Bread\"/></body></opml>", false, "Bread", {}},
        };
        for (const auto &row : rows) {
            ShellFixture f;
            f.window->settings().textImport = 0x00020007; // rich text notes, icon 7
            const QString source = f.dir.filePath(QString::fromLatin1(row.source));
            const QString target = f.dir.filePath(QStringLiteral("list.qbx"));
            Document old;
            old.path = target;
            QVERIFY(writeFile(source, row.text) && (!row.existing || DocumentFile::save(old)));
            f.prompts.fileNames << source;
            f.prompts.noteTypes << Document::RichText;
            f.prompts.yesNo << !row.outline.isEmpty();
            QVERIFY(f.run("actionImportText"));
            QStringList expected = row.messages;
            for (QString &m : expected)
                m.replace(QLatin1String("%1"), QDir::toNativeSeparators(target))
                    .replace(QLatin1String("%2"), QDir::toNativeSeparators(source));
            QCOMPARE(f.shownTexts(), expected);
            QCOMPARE(f.prompts.noteTypesOffered, QList<int>{2}); // the option's note type comes first
            QCOMPARE(QFile::exists(target), row.existing || !row.outline.isEmpty());
            QCOMPARE(f.view() ? outline(f.document()->root()) : QString(), row.outline);
            QVERIFY(!f.view() || (f.document()->noteType == Document::RichText && f.at({0})->image() == 7));
        }
    }

    void exports()
    {
        ShellFixture f;
        QVERIFY(f.open(sample()));
        // The options dialog's choice is the next export's default; cancelled there, no file is asked for.
        const QString path = f.dir.filePath(QStringLiteral("out.txt"));
        const QString nowhere = f.dir.filePath(QStringLiteral("no/such/folder/out.txt"));
        f.prompts.fileNames << path << nowhere << nowhere;
        f.prompts.dialogs.enqueue([](QDialog *d) {
            child<QComboBox>(d, "exportChoice")->setCurrentIndex(1);
            press(d);
        });
        f.prompts.dialogs.enqueue([](QDialog *d) { child<QComboBox>(d, "exportChoice")->setCurrentIndex(5); });
        QVERIFY(f.run("actionExportView") && f.run("actionExportLinks"));
        QCOMPARE(readFile(path), QByteArray("Trip\r\n\tPack\r\n\t\tBoots\r\n\tBook\r\n"));
        QCOMPARE(f.window->settings().expViewSep, quint16(1));
        QCOMPARE(f.window->settings().expOtherSep, quint16(0));
        // The XML export and the text exports report their failures each in their own place.
        f.prompts.dialogs.enqueue([](QDialog *d) { press(d); });
        QVERIFY(f.run("actionExportXml") && f.run("actionExportNotes"));
        QCOMPARE(f.shownTexts().size(), 2);
        for (const QString &shown : f.shownTexts())
            QVERIFY2(
                shown.startsWith(QStringLiteral("Export has failed. Please make sure you have enough storage space "
                                                "and try again.")) &&
                    shown.endsWith(QStringLiteral("out.txt: folder missing")),
                qPrintable(shown));

        // Items: the completed ones with their hierarchy, deleted afterwards where nothing else holds them.
        QVERIFY(f.open("Pack | prog=100\n  Boots | prog=100\n  Socks\nBook\n", QStringLiteral("items-from.qbx")));
        f.prompts.shown.clear();
        f.prompts.fileNames << f.dir.filePath(QStringLiteral("items.qbx"));
        f.prompts.dialogs.enqueue([](QDialog *d) {
            QVERIFY(!child<QCheckBox>(d, "deleteAfterExport")->isChecked()); // the option, off
            clickButton(child<QRadioButton>(d, "choice1"));
            QVERIFY(!qobject_cast<ItemExportDialog *>(d)->tree()->isEnabled());
            child<QCheckBox>(d, "deleteAfterExport")->setChecked(true);
            press(d);
        });
        QVERIFY(f.run("actionExportItems"));
        QCOMPARE(f.shownTexts(), QStringList{"2 item(s) exported. 1 exported item(s) stayed in the document because "
                                             "they hold items that were not exported."});
        QCOMPARE(outline(f.document()->root()), QStringLiteral("Pack Pack/Socks Book"));
        Document exported;
        QCOMPARE(DocumentFile::load(f.dir.filePath(QStringLiteral("items.qbx")), &exported), DocumentFile::Loaded);
        QCOMPARE(outline(exported.root()), QStringLiteral("Pack Pack/Boots"));
    }

    void calendarObjects()
    {
        // Task and Appointment reach the calendar folder the settings name, for the item or for each child.
        ShellFixture f;
        const QString folder = f.dir.filePath(QStringLiteral("calendar"));
        f.window->settings().calendarStore = f.dir.filePath(QStringLiteral("test.qbx/calendar")); // not a folder
        QVERIFY(f.open(sample()));
        f.select(f.at({0}));
        // An unusable store is reported once for all the children and offers the options, on the Calendar page.
        f.prompts.yesNo << true << false << false << true << true << false;
        QVERIFY(f.run("actionCreateTask"));
        QCOMPARE(f.prompts.shown.value(1).text.left(29), QStringLiteral("The calendar cannot be used: "));
        f.prompts.dialogs.enqueue([folder](QDialog *d) {
            auto *pages = child<QTabWidget>(d, "pages");
            QCOMPARE(pages->tabText(pages->currentIndex()), QStringLiteral("Calendar"));
            child<QLineEdit>(d, "calendarStore")->setText(folder);
            press(d);
        });
        QVERIFY(f.run("actionCreateAppointment"));
        f.prompts.shown.clear();
        QVERIFY(f.run("actionCreateTask") && f.run("actionCreateAppointment"));
        QStringList created;
        for (const QFileInfo &info : QDir(folder).entryInfoList({QStringLiteral("*.ics")}, QDir::Files))
            created << IcalObject::parse(readFile(info.filePath())).kind +
                           IcalObject::parse(readFile(info.filePath())).summary;
        created.sort();
        QCOMPARE(created, (QStringList{"VEVENTPack", "VTODOBoots"}));
        QCOMPARE(f.shownTexts(),
                 (QStringList{Messages::AskTaskForEachChild, "1 object(s) created in the calendar.",
                              Messages::AskAppointmentForEachChild, "1 object(s) created in the calendar."}));
    }
};

QTEST_MAIN(TestFileCommands)
#include "tst_filecommands.moc"
