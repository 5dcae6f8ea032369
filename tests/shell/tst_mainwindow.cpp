#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "shell/app/singleinstance.h"
#include "shell/document/quickentrybar.h"
#include "support/shellfixture.h"

#include <QFileInfo>
#include <QMenuBar>
#include <QSettings>
#include <QSignalSpy>
#include <QThread>

namespace {

QString write(const QString &path, const QStringList &names)
{
    Document doc;
    for (const QString &name : names)
        add(doc.root(), name);
    doc.path = path;
    return DocumentFile::save(doc) ? path : QString();
}

// The names of the items on disk, and the first note found.
QStringList onDisk(const QString &path, QByteArray *note = nullptr)
{
    Document doc;
    QStringList names;
    if (DocumentFile::load(path, &doc) == DocumentFile::Loaded)
        doc.root()->forEachDescendant([&](Item *item) {
            names.append(item->name());
            if (note && note->isEmpty())
                *note = item->note();
        });
    return names;
}

// The fixture's folder holds Alpha.qbx (one, two) and Beta.qbx (three); the window is shown.
struct Fixture : ShellFixture {
    QString alpha = write(dir.filePath(QStringLiteral("Alpha.qbx")), {"one", "two"});
    QString beta = write(dir.filePath(QStringLiteral("Beta.qbx")), {"three"});

    MainWindow *start(const QString &path, bool active = false)
    {
        MainWindow *w = restart(path);
        w->resize(800, 600);
        w->show();
        if (active)
            QApplication::setActiveWindow(w);
        return !active || QTest::qWaitForWindowActive(w) ? w : nullptr;
    }
    QVariant stored(const char *key) const
    {
        return QSettings(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat).value(key);
    }
};

} // namespace

// The frame: starting, opening, saving and closing documents without losing data, its keys, and Undo.
class TestMainWindow : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void documentsAndDefFile()
    {
        // First start: no DefFile, the list shows the documents folder's files.
        Fixture f;
        MainWindow *w = f.start(QString());
        QVERIFY(!w->view() && !f.enabled("actionSave"));
        QCOMPARE(w->documentList()->topLevelItem(0)->text(0), QStringLiteral("Alpha"));
        // New asks a name and a note type; cancelling the type creates nothing.
        const QString fresh = f.dir.filePath(QStringLiteral("Fresh"));
        f.prompts.fileNames << fresh << fresh << f.dir.filePath(QStringLiteral("Copy.qbx")) << f.beta;
        QVERIFY(f.run("actionNewDocument"));
        QVERIFY(!w->view() && !QFile::exists(fresh + QStringLiteral(".qbx")));
        f.prompts.noteTypes << Document::RichText;
        QVERIFY(f.run("actionNewDocument"));
        QCOMPARE(f.document()->noteType, quint16(Document::RichText));
        QVERIFY(QFile::exists(fresh + QStringLiteral(".qbx")));
        f.view()->insertNewItem(new Item(QStringLiteral("New Item")), InsertPosition::Top);
        QVERIFY(f.run("actionSaveAs"));
        QCOMPARE(onDisk(f.dir.filePath(QStringLiteral("Copy.qbx"))), QStringList{"New Item"});
        // The open document is DefFile at exit; a first start hides the quick entry bar, showing it is saved.
        QVERIFY(f.run("actionOpen"));
        QVERIFY(!w->view()->isQuickEntryVisible());
        QVERIFY(f.run("actionQuickEntryBar"));
        QCOMPARE(f.stored("Flags").toUInt(), 7u);
        QVERIFY(w->close());
        // The next start opens DefFile with the bar; closing back to the list empties DefFile and selects the file.
        w = f.start(QString());
        QCOMPARE(w->windowTitle(), QStringLiteral("Beta - Quillbox"));
        QVERIFY(w->view()->isQuickEntryVisible());
        QVERIFY(f.run("actionCloseDocument"));
        QCOMPARE(w->documentList()->currentItem()->text(0), QStringLiteral("Beta"));
        QCOMPARE(f.stored("DefFile").toString(), QString());
    }

    void failuresLoseNothing()
    {
        Fixture f;
        MainWindow *w = f.start(QString());
        // A file that does not load is reported as damaged and left as it was.
        const QByteArray bytes("\x27\x02\x00\x00garbage", 11);
        QFile broken(f.dir.filePath(QStringLiteral("Broken.qbx")));
        QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(bytes) == 11);
        broken.close();
        QVERIFY(!w->openDocument(broken.fileName()) && !w->view());
        QCOMPARE(f.shownTexts(), QStringList{"Unable to load file. The file may be corrupted."});
        QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Stop);
        QVERIFY(broken.open(QIODevice::ReadOnly));
        QCOMPARE(broken.readAll(), bytes);
        f.prompts.shown.clear();
        QVERIFY(w->openDocument(f.alpha));
        // A failed save names the file and keeps the document open.
        const QString gone = f.dir.filePath(QStringLiteral("no-such-folder/Alpha.qbx"));
        f.document()->path = gone;
        QVERIFY(f.run("actionSave"));
        QVERIFY(f.prompts.shown.value(0).text.contains(QDir::toNativeSeparators(gone)));
        // Closing asks: no Save As and no Discard keeps it open; Save As writes it elsewhere and closes.
        f.prompts.yesNo << false << false << true;
        QVERIFY(f.run("actionCloseDocument"));
        QVERIFY(w->view());
        const QString elsewhere = f.dir.filePath(QStringLiteral("Elsewhere.qbx"));
        f.prompts.fileNames << elsewhere;
        QVERIFY(f.run("actionCloseDocument"));
        QVERIFY(!w->view());
        QCOMPARE(onDisk(elsewhere), (QStringList{"one", "two"}));
        QCOMPARE(w->recentDocuments().first(), elsewhere);
        // Discard lets it go without writing: quitting is always possible.
        QVERIFY(w->openDocument(elsewhere));
        f.document()->path = gone;
        f.prompts.yesNo << false << true;
        QVERIFY(f.run("actionCloseDocument"));
        QVERIFY(!w->view() && !QFileInfo::exists(gone));
    }

    void handOverAndRecentDocuments()
    {
        // A second start hands its path over: ours is saved before that one replaces it; no path brings us forward.
        Fixture f;
        const QString name = QStringLiteral("quillbox-test-%1").arg(QCoreApplication::applicationPid());
        SingleInstance first(name);
        QVERIFY(first.listen());
        MainWindow *w = f.start(f.alpha);
        connect(&first, &SingleInstance::pathReceived, w, &MainWindow::handOver);
        QSignalSpy raised(&first, &SingleInstance::raiseRequested);
        w->view()->quickEntryBar()->setText(QStringLiteral("added before"));
        w->view()->quickEntryBar()->add();
        for (const QString &path : {f.beta, QString()}) {
            bool handedOver = false;
            std::unique_ptr<QThread> second(
                QThread::create([&] { handedOver = SingleInstance(name).handOver(path, 5000); }));
            second->start();
            QTRY_VERIFY(second->isFinished() && handedOver);
            QTRY_COMPARE(f.document()->path, f.beta);
        }
        QCOMPARE(onDisk(f.alpha), (QStringList{"one", "two", "added before"}));
        QTRY_COMPARE(raised.count(), 1);
        // The recent list: newest first, ten at most, numbered 1 to 0.
        QCOMPARE(w->recentDocuments(), (QStringList{f.beta, f.alpha}));
        auto *recent = w->menuBar()->findChild<QMenu *>(QStringLiteral("menuOpenRecent"));
        Q_EMIT recent->aboutToShow();
        QCOMPARE(recent->actions().at(1)->text(), QStringLiteral("&2 Alpha.qbx"));
        recent->actions().at(1)->trigger();
        QCOMPARE(f.document()->path, f.alpha);
        QCOMPARE(w->recentDocuments().first(), f.alpha);
        for (int i = 0; i < 12; ++i)
            w->addRecent(f.dir.filePath(QStringLiteral("n%1.qbx").arg(i)));
        QCOMPARE(w->recentDocuments().size(), 10);
        Q_EMIT recent->aboutToShow();
        QCOMPARE(recent->actions().at(9)->text(), QStringLiteral("&0 n2.qbx"));
    }

    void savedWhenAnotherProgramIsActivated()
    {
        Fixture f;
        MainWindow *w = f.start(f.alpha, true);
        QVERIFY(w);
        QLineEdit *entry = w->view()->quickEntryBar()->textBox()->lineEdit();
        QTest::keyClicks(entry, QStringLiteral("three"));
        QTest::keyClick(entry, Qt::Key_Return);
        QTest::keyClicks(w->view()->notePane()->plainEditor(), QStringLiteral("a note"));
        // Another application takes the activation: the selection and the note are committed and saved.
        QApplication::setActiveWindow(nullptr);
        QTRY_VERIFY(!w->isActiveWindow());
        QByteArray note;
        QCOMPARE(onDisk(f.alpha, &note), (QStringList{"one", "two", "three"}));
        QCOMPARE(NoteText::fromPlainNote(note), QStringLiteral("a note"));
        Document reread;
        QCOMPARE(DocumentFile::load(f.alpha, &reread), DocumentFile::Loaded);
        QCOMPARE(reread.current()->name(), QStringLiteral("three"));
    }

    void autosaveAndChangesFromOutside()
    {
        Fixture f;
        MainWindow *w = f.start(f.alpha);
        w->setAutosaveDelay(50);
        const QDateTime old = QDateTime::currentDateTime().addDays(-3);
        auto age = [&] {
            QFile file(f.alpha);
            QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(old, QFileDevice::FileModificationTime));
        };
        // Switching away with nothing changed leaves the file alone; a change is marked and written a moment later.
        age();
        w->saveOnDeactivation();
        QCOMPARE(QFileInfo(f.alpha).lastModified(), old);
        w->view()->treePane()->setCurrentRow(1);
        QVERIFY(f.run("actionMoveDown"));
        QCOMPARE(w->windowTitle(), QStringLiteral("*Alpha - Quillbox"));
        QTRY_COMPARE(onDisk(f.alpha), (QStringList{"two", "one"}));
        QTRY_COMPARE(w->windowTitle(), QStringLiteral("Alpha - Quillbox"));
        // Without the autosave it waits for a save; our own save is no change from outside.
        QVERIFY(f.run("actionAutosave"));
        age();
        QVERIFY(f.run("actionMoveUp"));
        QTest::qWait(200);
        QCOMPARE(QFileInfo(f.alpha).lastModified(), old);
        const Document *ours = f.document();
        w->saveOnDeactivation();
        QCOMPARE(onDisk(f.alpha), (QStringList{"one", "two"}));
        QTest::qWait(600);
        QCOMPARE(f.document(), ours);
        // Unchanged here: another program's version is shown. Changed here: keeping ours writes it, theirs stays
        // beside it.
        write(f.alpha, {"theirs"});
        QTRY_COMPARE(f.names(), QStringList{"theirs"});
        w->view()->insertNewItem(new Item(QStringLiteral("mine")), InsertPosition::Top);
        f.prompts.yesNo << false;
        QTest::qWait(20);
        write(f.alpha, {"theirs again"});
        QTRY_COMPARE(f.prompts.shown.size(), 1);
        QVERIFY(f.run("actionSave"));
        QCOMPARE(onDisk(f.alpha), (QStringList{"theirs", "mine"}));
        const QStringList conflicts = QDir(f.dir.path()).entryList({QStringLiteral("Alpha (conflict *).qbx")});
        QCOMPARE(onDisk(f.dir.filePath(conflicts.value(0))), QStringList{"theirs again"});
    }

    void keys()
    {
        Fixture f;
        MainWindow *w = f.start(f.alpha, true);
        QVERIFY(w);
        TreePane *tree = w->view()->treePane();
        Item *two = f.at({1});
        auto outline = [&f] {
            QStringList out;
            f.document()->root()->forEachDescendant(
                [&](Item *item) { out.append(QString(item->level() - 1, QLatin1Char('.')) + item->name()); });
            return out.join(QLatin1Char(' '));
        };
        const std::tuple<Qt::Key, Qt::KeyboardModifiers, const char *> moves[] = {
            {Qt::Key_Tab, {}, "one .two"},
            {Qt::Key_Backtab, Qt::ShiftModifier, "one two"},
            {Qt::Key_Up, Qt::ControlModifier, "two one"},
            {Qt::Key_Down, Qt::ControlModifier, "one two"},
            // Insert adds a child and names it in place; Enter ends the rename, and on the tree adds a sibling.
            {Qt::Key_Insert, {}, "one two .kid"},
            {Qt::Key_Return, {}, "one two .kid .kid"}};
        for (const auto &[key, modifiers, after] : moves) {
            tree->setFocus();
            w->view()->refresh(key == Qt::Key_Return ? two->child(0) : two);
            QTest::keyClick(tree, key, modifiers);
            if (key == Qt::Key_Insert || key == Qt::Key_Return) {
                QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("kid"));
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            }
            QCOMPARE(outline(), QString::fromLatin1(after));
        }
        // Ctrl+A shows About outside a text box; F1 is the help.
        QTest::keyClick(tree, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(f.prompts.aboutShown, 1);
        QCOMPARE(f.command("actionHelp")->shortcut(), QKeySequence(Qt::Key_F1));
    }

    void commandsAreUndoneAsNamedSteps()
    {
        // What a step restores is the edit step's own suite; here each command becomes one named step.
        Fixture f;
        f.start(f.alpha);
        QCOMPARE(f.command("actionUndo")->shortcut(), QKeySequence(QKeySequence::Undo));
        QVERIFY(f.command("actionRedo")->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_Y)));
        f.select(f.at({0}));
        QVERIFY(!f.enabled("actionUndo") && f.run("actionDeleteItem") && f.run("actionUndo"));
        QCOMPARE(f.current(), f.at({0}));
        QCOMPARE(f.command("actionRedo")->text(), QStringLiteral("Redo Delete Item"));
        QVERIFY(f.run("actionRedo"));
        QCOMPARE(f.names(), QStringList{"two"});
        // An item menu command and a note session; a save keeps the steps.
        f.select(f.at({0}));
        QVERIFY(f.run("actionPriority3"));
        QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Set Priority"));
        QTest::keyClicks(f.view()->notePane()->plainEditor(), QStringLiteral("typed"));
        f.select(f.document()->root());
        QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Edit Note"));
        QVERIFY(f.run("actionSave") && f.run("actionUndo") && f.run("actionUndo"));
        QVERIFY(f.at({0})->note().isEmpty() && f.view()->isModified());
        QCOMPARE(f.at({0})->priority(), quint16(10));
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
