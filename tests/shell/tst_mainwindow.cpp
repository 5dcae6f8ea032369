#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "platform/messages.h"
#include "shell/app/singleinstance.h"
#include "shell/document/quickentrybar.h"
#include "support/shellfixture.h"

#include <QComboBox>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QThread>
#include <QTreeWidget>

namespace {

QString write(const QString &path, const QStringList &names)
{
    Document doc;
    for (const QString &name : names)
        add(doc.root(), name);
    doc.path = path;
    return DocumentFile::save(doc) ? path : QString();
}

QStringList namesOnDisk(const QString &path, QByteArray *firstNote = nullptr)
{
    Document doc;
    if (DocumentFile::load(path, &doc) != DocumentFile::Loaded)
        return {QStringLiteral("<unreadable>")};
    QStringList names;
    doc.root()->forEachDescendant([&](Item *item) {
        names.append(item->name());
        if (firstNote && firstNote->isEmpty())
            *firstNote = item->note();
    });
    return names;
}

// The fixture's folder holds Alpha.qbx (one, two) and Beta.qbx (three).
struct Fixture : ShellFixture {
    QString alpha = write(dir.filePath(QStringLiteral("Alpha.qbx")), {"one", "two"});
    QString beta = write(dir.filePath(QStringLiteral("Beta.qbx")), {"three"});
    QString settingsFile = dir.filePath(QStringLiteral("settings.ini"));

    MainWindow *start(const QString &path)
    {
        MainWindow *w = restart(path);
        w->resize(800, 600);
        w->show();
        return w;
    }
    MainWindow *startActive(const QString &path)
    {
        MainWindow *w = start(path);
        QApplication::setActiveWindow(w);
        return QTest::qWaitForWindowActive(w) ? w : nullptr;
    }
};

// The second start, run beside the first instance's event loop.
class SecondStart : public QThread {
public:
    SecondStart(const QString &name, const QString &path) : m_name(name), m_path(path) {}
    bool handedOver = false;

protected:
    void run() override { handedOver = SingleInstance(m_name).handOver(m_path, 5000); }

private:
    QString m_name;
    QString m_path;
};

} // namespace

// The frame: starting, opening, saving and closing documents without losing data, its keys, and Undo.
class TestMainWindow : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void startAndCloseFollowDefFile();
    void createOpenAndSaveAs();
    void failuresLoseNothing();
    void saveOnDeactivation();
    void onlyAChangeIsWritten();
    void followsTheFile();
    void handOverFromASecondInstance();
    void keys();
    void commandsAreUndoneAsNamedSteps();
    void rowsFollowThePalette();
};

void TestMainWindow::startAndCloseFollowDefFile()
{
    // First start: no DefFile, the list shows the documents folder's files.
    Fixture f;
    MainWindow *w = f.start(QString());
    QVERIFY(!w->view() && !enabled(w, "actionSave") && enabled(w, "actionRefresh"));
    QCOMPARE(w->documentList()->topLevelItem(0)->text(0), QStringLiteral("Alpha"));
    QCOMPARE(w->windowTitle(), QStringLiteral("Quillbox"));

    // A command-line path opens and becomes DefFile; a first start hides the quick entry bar, showing it is saved.
    w = f.start(f.beta);
    QCOMPARE(w->windowTitle(), QStringLiteral("Beta - Quillbox"));
    QVERIFY(!w->view()->isQuickEntryVisible() && !enabled(w, "actionRefresh"));
    QVERIFY(run(w, "actionQuickEntryBar"));
    QCOMPARE(QSettings(f.settingsFile, QSettings::IniFormat).value("Flags").toUInt(), 7u);
    QVERIFY(w->close());

    // The next start opens DefFile with the bar; closing back to the list empties DefFile and selects the file.
    w = f.start(QString());
    QCOMPARE(w->view()->document()->path, f.beta);
    QVERIFY(w->view()->isQuickEntryVisible());
    QVERIFY(run(w, "actionCloseDocument"));
    QCOMPARE(w->documentList()->currentItem()->text(0), QStringLiteral("Beta"));
    QCOMPARE(QSettings(f.settingsFile, QSettings::IniFormat).value("DefFile").toString(), QString());
}

void TestMainWindow::createOpenAndSaveAs()
{
    Fixture f;
    MainWindow *w = f.start(QString());
    const QString fresh = f.dir.filePath(QStringLiteral("Fresh.qbx"));
    // Cancelling the note type question creates nothing.
    f.prompts.fileNames << f.dir.filePath(QStringLiteral("Fresh")) << f.dir.filePath(QStringLiteral("Fresh"));
    QVERIFY(!w->createDocument());
    QVERIFY(!QFile::exists(fresh));
    f.prompts.noteTypes.enqueue(Document::RichText);
    QVERIFY(run(w, "actionNewDocument"));
    QCOMPARE(f.document()->noteType, quint16(Document::RichText));
    QCOMPARE(f.document()->path, fresh);
    QVERIFY(QFile::exists(fresh));

    w->view()->insertNewItem(new Item(QStringLiteral("New Item")), InsertPosition::Top);
    const QString copy = f.dir.filePath(QStringLiteral("Copy.qbx"));
    f.prompts.fileNames.enqueue(copy);
    QVERIFY(run(w, "actionSaveAs"));
    QVERIFY(w->windowTitle().startsWith(QStringLiteral("Copy - ")));
    QCOMPARE(namesOnDisk(copy), QStringList{"New Item"});

    // Open, and the recent list: newest first, ten at most, numbered 1 to 0.
    f.prompts.fileNames.enqueue(f.beta);
    QVERIFY(run(w, "actionOpen"));
    QCOMPARE(f.document()->path, f.beta);
    QVERIFY(w->openDocument(f.alpha));
    QCOMPARE(w->recentDocuments().mid(0, 3), (QStringList{f.alpha, f.beta, copy}));
    auto *recent = w->menuBar()->findChild<QMenu *>(QStringLiteral("menuOpenRecent"));
    Q_EMIT recent->aboutToShow();
    QCOMPARE(recent->actions().at(1)->text(), QStringLiteral("&2 Beta.qbx"));
    recent->actions().at(1)->trigger();
    QCOMPARE(f.document()->path, f.beta);
    QCOMPARE(w->recentDocuments().first(), f.beta);
    for (int i = 0; i < 12; ++i)
        w->addRecent(f.dir.filePath(QStringLiteral("n%1.qbx").arg(i)));
    QCOMPARE(w->recentDocuments().size(), 10);
    Q_EMIT recent->aboutToShow();
    QCOMPARE(recent->actions().at(9)->text(), QStringLiteral("&0 n2.qbx"));
}

void TestMainWindow::failuresLoseNothing()
{
    Fixture f;
    MainWindow *w = f.start(QString());
    // A file that does not load is reported and left as it was.
    const QByteArray bytes("\x27\x02\x00\x00garbage", 11);
    QFile broken(f.dir.filePath(QStringLiteral("Broken.qbx")));
    QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(bytes) == 11);
    broken.close();
    QVERIFY(!w->openDocument(broken.fileName()));
    QVERIFY(!w->view());
    QCOMPARE(f.shownTexts(), QStringList{Messages::LoadDamaged});
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Stop);
    QVERIFY(broken.open(QIODevice::ReadOnly));
    QCOMPARE(broken.readAll(), bytes);

    // A failed save names the file and keeps the document open.
    QVERIFY(w->openDocument(f.alpha));
    const QString gone = f.dir.filePath(QStringLiteral("no-such-folder/Alpha.qbx"));
    f.document()->path = gone;
    f.prompts.shown.clear();
    QVERIFY(run(w, "actionSave"));
    QCOMPARE(f.prompts.shown.size(), 1);
    QVERIFY(f.prompts.shown[0].text.contains(QDir::toNativeSeparators(gone)));
    // Closing asks: no Save As and no Discard keeps it open; Save As writes it elsewhere and closes.
    f.prompts.yesNo << false << false << true;
    QVERIFY(run(w, "actionCloseDocument"));
    QVERIFY(w->view());
    const QString elsewhere = f.dir.filePath(QStringLiteral("Elsewhere.qbx"));
    f.prompts.fileNames << elsewhere;
    QVERIFY(run(w, "actionCloseDocument"));
    QVERIFY(!w->view());
    QCOMPARE(namesOnDisk(elsewhere), (QStringList{"one", "two"}));
    QCOMPARE(w->recentDocuments().first(), elsewhere);
    // Discard lets it go without writing: quitting is always possible.
    QVERIFY(w->openDocument(elsewhere));
    f.document()->path = gone;
    f.prompts.yesNo << false << true;
    QVERIFY(run(w, "actionCloseDocument"));
    QVERIFY(!w->view());
    QVERIFY(!QFileInfo::exists(gone));
}

void TestMainWindow::saveOnDeactivation()
{
    Fixture f;
    MainWindow *w = f.startActive(f.alpha);
    QVERIFY(w);
    QLineEdit *entry = w->view()->quickEntryBar()->textBox()->lineEdit();
    QTest::keyClicks(entry, QStringLiteral("three"));
    QTest::keyClick(entry, Qt::Key_Return);
    QTest::keyClicks(w->view()->notePane()->plainEditor(), QStringLiteral("a note"));

    // A dialog of the window takes the activation: nothing is written.
    QDialog dialog(w);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    QTRY_VERIFY(!w->isActiveWindow());
    QCOMPARE(namesOnDisk(f.alpha), (QStringList{"one", "two"}));
    dialog.hide();
    QApplication::setActiveWindow(w);
    QTRY_VERIFY(w->isActiveWindow());

    // Another application takes it: the selection and the note are committed and saved.
    QApplication::setActiveWindow(nullptr);
    QTRY_VERIFY(!w->isActiveWindow());
    QByteArray note;
    QCOMPARE(namesOnDisk(f.alpha, &note), (QStringList{"one", "two", "three"}));
    QCOMPARE(NoteText::fromPlainNote(note), QStringLiteral("a note"));
    Document reread;
    QCOMPARE(DocumentFile::load(f.alpha, &reread), DocumentFile::Loaded);
    QCOMPARE(reread.current()->name(), QStringLiteral("three"));
}

void TestMainWindow::onlyAChangeIsWritten()
{
    Fixture f;
    MainWindow *w = f.start(f.alpha);
    w->setAutosaveDelay(50);
    const QDateTime old = QDateTime::currentDateTime().addDays(-3);
    auto age = [&] {
        QFile file(f.alpha);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(old, QFileDevice::FileModificationTime));
    };
    age();
    // Switching away with nothing changed leaves the file alone.
    w->saveOnDeactivation();
    QCOMPARE(QFileInfo(f.alpha).lastModified(), old);
    // A change is marked in the title and written a moment later.
    w->view()->treePane()->setCurrentRow(1);
    QVERIFY(run(w, "actionMoveDown"));
    QCOMPARE(w->windowTitle(), QStringLiteral("*Alpha - Quillbox"));
    QTRY_COMPARE(namesOnDisk(f.alpha), (QStringList{"two", "one"}));
    QTRY_COMPARE(w->windowTitle(), QStringLiteral("Alpha - Quillbox"));
    // Without the autosave it waits for a save.
    QVERIFY(run(w, "actionAutosave"));
    QVERIFY(!w->isAutosaveOn());
    age();
    QVERIFY(run(w, "actionMoveUp"));
    QTest::qWait(200);
    QCOMPARE(QFileInfo(f.alpha).lastModified(), old);
    w->saveOnDeactivation();
    QCOMPARE(namesOnDisk(f.alpha), (QStringList{"one", "two"}));
}

void TestMainWindow::followsTheFile()
{
    Fixture f;
    MainWindow *w = f.start(f.alpha);
    w->setAutosaveOn(false);
    auto shownNames = [&f] {
        QStringList out;
        f.document()->root()->forEachDescendant([&](Item *item) { out.append(item->name()); });
        return out;
    };
    // Our own save is no change from outside.
    w->view()->insertNewItem(new Item(QStringLiteral("three")), InsertPosition::Top);
    const Document *ours = f.document();
    QVERIFY(run(w, "actionSave"));
    QTest::qWait(600);
    QVERIFY(f.prompts.shown.isEmpty());
    QCOMPARE(f.document(), ours);

    // Unchanged here: another program's version is shown.
    QTest::qWait(20);
    write(f.alpha, {"theirs"});
    QTRY_COMPARE(shownNames(), QStringList{"theirs"});
    QVERIFY(f.prompts.shown.isEmpty());

    // Changed here: keeping ours writes it, theirs stays beside it.
    w->view()->insertNewItem(new Item(QStringLiteral("mine")), InsertPosition::Top);
    f.prompts.yesNo << false;
    QTest::qWait(20);
    write(f.alpha, {"theirs again"});
    QTRY_COMPARE(f.prompts.shown.size(), 1);
    QVERIFY(run(w, "actionSave"));
    QCOMPARE(namesOnDisk(f.alpha), (QStringList{"theirs", "mine"}));
    const QStringList conflicts = QDir(f.dir.path()).entryList({QStringLiteral("Alpha (conflict *).qbx")});
    QCOMPARE(conflicts.size(), 1);
    QCOMPARE(namesOnDisk(f.dir.filePath(conflicts.first())), QStringList{"theirs again"});
}

void TestMainWindow::handOverFromASecondInstance()
{
    Fixture f;
    const QString name = QStringLiteral("quillbox-test-%1").arg(QCoreApplication::applicationPid());
    SingleInstance first(name);
    QVERIFY(first.listen());
    MainWindow *w = f.start(f.alpha);
    connect(&first, &SingleInstance::pathReceived, w, &MainWindow::handOver);
    QSignalSpy raised(&first, &SingleInstance::raiseRequested);
    w->view()->quickEntryBar()->setText(QStringLiteral("added before"));
    w->view()->quickEntryBar()->add();

    // The first document is saved before the handed path replaces it; without a path the window only comes forward.
    for (const QString &path : {f.beta, QString()}) {
        SecondStart second(name, path);
        second.start();
        QTRY_VERIFY(second.isFinished());
        QVERIFY(second.handedOver);
        QTRY_COMPARE(f.document()->path, f.beta);
    }
    QCOMPARE(namesOnDisk(f.alpha), (QStringList{"one", "two", "added before"}));
    QTRY_COMPARE(raised.count(), 1);
    // A path that does not open leaves the open document open.
    w->handOver(f.dir.filePath(QStringLiteral("missing.qbx")));
    QCOMPARE(f.prompts.shown.size(), 1);
    QCOMPARE(f.document()->path, f.beta);
    // Nobody listening: the start goes on as the first instance.
    QVERIFY(!SingleInstance(name + QStringLiteral("-none")).handOver(QStringLiteral("x"), 500));
}

void TestMainWindow::keys()
{
    Fixture f;
    MainWindow *w = f.startActive(f.alpha);
    QVERIFY(w);
    w->setAutosaveOn(false);
    TreePane *tree = w->view()->treePane();
    auto names = [&f] {
        QStringList out;
        f.document()->root()->forEachDescendant(
            [&](Item *item) { out.append(QString(item->level() - 1, '.') + item->name()); });
        return out;
    };
    TreeNode *two = f.at({1});
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        QStringList after;
    } moves[] = {{Qt::Key_Tab, {}, {"one", ".two"}},
                 {Qt::Key_Backtab, Qt::ShiftModifier, {"one", "two"}},
                 {Qt::Key_Up, Qt::ControlModifier, {"two", "one"}},
                 {Qt::Key_Down, Qt::ControlModifier, {"one", "two"}}};
    tree->setFocus();
    for (const auto &move : moves) {
        w->view()->refresh(two);
        QTest::keyClick(tree, move.key, move.modifiers);
        QCOMPARE(names(), move.after);
    }
    for (Qt::Key key : {Qt::Key_End, Qt::Key_PageDown}) {
        tree->setCurrentRow(0);
        QTest::keyClick(tree, key);
        QCOMPARE(tree->currentNode(), two);
    }
    // Insert adds a child and names it in place; Enter in the editor ends the rename, on the tree it adds a sibling.
    QTest::keyClick(tree, Qt::Key_Insert);
    QVERIFY(qobject_cast<QLineEdit *>(QApplication::focusWidget()));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("kid"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Return);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("next"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCOMPARE(names(), (QStringList{"one", "two", ".kid", ".next"}));
    // Left folds the open item it is on.
    tree->setFocus();
    w->view()->refresh(two);
    QTest::keyClick(tree, Qt::Key_Left);
    QVERIFY(!two->asItem()->isExpanded());

    // Ctrl+A selects all in a text box and shows About elsewhere.
    QPlainTextEdit *editor = w->view()->notePane()->plainEditor();
    QLineEdit *entry = w->view()->quickEntryBar()->textBox()->lineEdit();
    for (QWidget *box : {static_cast<QWidget *>(editor), static_cast<QWidget *>(entry)}) {
        box->setFocus();
        QTest::keyClicks(box, QStringLiteral("abc"));
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    }
    QCOMPARE(editor->textCursor().selectedText(), QStringLiteral("abc"));
    QCOMPARE(entry->selectedText(), QStringLiteral("abc"));
    QCOMPARE(f.prompts.aboutShown, 0);
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(f.prompts.aboutShown, 1);
}

void TestMainWindow::commandsAreUndoneAsNamedSteps()
{
    // What a step restores is the edit step's own suite; here each command becomes one named step.
    ShellFixture f;
    auto doc = std::make_unique<Document>();
    add(add(doc->root(), QStringLiteral("A")), QStringLiteral("A1"));
    add(doc->root(), QStringLiteral("B"));
    QVERIFY(f.open(std::move(doc)));
    QVERIFY(!f.enabled("actionUndo") && !f.enabled("actionRedo"));
    QCOMPARE(f.command("actionUndo")->shortcut(), QKeySequence(QKeySequence::Undo));
    QVERIFY(f.command("actionRedo")->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_Y)));
    f.select(f.at({0}));
    QVERIFY(f.run("actionDeleteItem"));
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Delete Item"));
    QVERIFY(f.run("actionUndo"));
    QCOMPARE(f.at({0, 0})->name(), QStringLiteral("A1"));
    QCOMPARE(f.current(), f.at({0}));
    QCOMPARE(f.command("actionRedo")->text(), QStringLiteral("Redo Delete Item"));
    QVERIFY(f.run("actionRedo"));
    QCOMPARE(f.document()->root()->childCount(), 1);
    QVERIFY(!f.enabled("actionRedo"));

    // An item menu command, a rename in place and a note session; a save keeps the steps.
    f.select(f.at({0}));
    QVERIFY(f.run("actionPriority3"));
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Set Priority"));
    Q_EMIT f.view()->treePane()->renameCommitted(f.at({0}), QStringLiteral("Renamed"));
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Rename"));
    QPlainTextEdit *editor = f.view()->notePane()->plainEditor();
    QTest::keyClicks(editor, QStringLiteral("typed"));
    QTest::keyClicks(editor, QStringLiteral(" more"));
    f.select(f.document()->root());
    QVERIFY(!f.at({0})->note().isEmpty());
    QCOMPARE(f.command("actionUndo")->text(), QStringLiteral("Undo Edit Note"));
    QVERIFY(f.run("actionSave"));
    QVERIFY(f.run("actionUndo"));
    QVERIFY(f.at({0})->note().isEmpty());
    QCOMPARE(f.current(), f.at({0}));
    QVERIFY(f.view()->notePane()->plainText().isEmpty());
    QVERIFY(f.run("actionUndo"));
    QCOMPARE(f.at({0})->name(), QStringLiteral("B"));
    QVERIFY(f.run("actionUndo"));
    QCOMPARE(f.at({0})->priority(), quint16(10));
    QVERIFY(f.view()->isModified());
}

void TestMainWindow::rowsFollowThePalette()
{
    // The desktop switches to dark colours while the document is open.
    const QColor base(0x2a, 0x2a, 0x2e);
    const QColor text(0xee, 0xee, 0xee);
    Fixture f;
    MainWindow *w = f.start(f.alpha);
    QPalette palette = w->palette();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        for (QPalette::ColorRole role : {QPalette::Base, QPalette::AlternateBase, QPalette::Window})
            palette.setColor(group, role, base);
        palette.setColor(group, QPalette::Text, text);
        palette.setColor(group, QPalette::WindowText, text);
    }
    w->setPalette(palette);
    TreePane *tree = w->view()->treePane();
    tree->setCurrentRow(0);
    QTest::qWait(50);
    const QImage image = tree->viewport()->grab().toImage();
    const qreal dpr = image.devicePixelRatio();
    // An unselected item's row: its text is in the palette's ink on its base.
    const QRect textRect = tree->rowGeometry(2).textRect();
    int ink = 0;
    int background = 0;
    for (int y = textRect.top(); y <= textRect.bottom(); ++y) {
        for (int x = textRect.left(); x <= textRect.right(); ++x) {
            const QColor c = image.pixelColor(int(x * dpr), int(y * dpr));
            ink += qAbs(c.lightness() - text.lightness()) < qAbs(c.lightness() - base.lightness());
            background += c == base;
        }
    }
    QVERIFY2(ink > 5, qPrintable(QString::number(ink)));
    QVERIFY(background > textRect.width() * textRect.height() / 2);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
