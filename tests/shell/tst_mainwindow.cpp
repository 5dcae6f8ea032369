#include "model/document.h"
#include "model/item.h"
#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "platform/messages.h"
#include "shell/app/mainwindow.h"
#include "shell/app/singleinstance.h"
#include "shell/document/documentview.h"
#include "shell/document/quickentrybar.h"
#include "shell/document/treepane.h"
#include "storage/documentfile.h"
#include "support/scriptedprompts.h"
#include "support/shellfixture.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QPalette>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTreeWidget>

namespace {

QString writeDocument(const QString &path, const QStringList &names)
{
    Document doc;
    for (const QString &name : names)
        doc.root()->appendChild(new Item(name));
    doc.path = path;
    if (!DocumentFile::save(doc))
        qFatal("cannot write %s", qPrintable(path));
    return path;
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

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void startAndCloseFollowDefFile();
    void loadFailureShowsItsMessage();
    void createAndSaveAs();
    void saveFailureKeepsTheDocumentOpen();
    void saveOnDeactivation();
    void handOverFromASecondInstance();
    void openAndRecentDocuments();
    void menusFollowTheState();
    void ctrlASelectsAllInTextAndIsAboutElsewhere();
    void onlyAChangeIsWritten();
    void treeKeys();
    void followsTheFile();
    void rowsFollowThePalette();

private:
    MainWindow *makeWindow();
    QString docPath(const QString &name) const { return m_dir->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<MainWindow> m_window;
};

void TestMainWindow::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_prompts = std::make_unique<ScriptedPrompts>();
    writeDocument(docPath(QStringLiteral("Alpha.qbx")), {QStringLiteral("one"), QStringLiteral("two")});
    writeDocument(docPath(QStringLiteral("Beta.qbx")), {QStringLiteral("three")});
}

void TestMainWindow::cleanup()
{
    m_window.reset();
    m_prompts.reset();
    m_dir.reset();
}

MainWindow *TestMainWindow::makeWindow()
{
    ShellEnvironment env;
    env.documentsFolder = m_dir->path();
    env.settingsFile = docPath(QStringLiteral("settings.ini"));
    env.prompts = m_prompts.get();
    m_window = std::make_unique<MainWindow>(env);
    m_window->resize(800, 600);
    m_window->show();
    return m_window.get();
}

void TestMainWindow::startAndCloseFollowDefFile()
{
    // First start: no DefFile, the list shows the documents folder's files.
    MainWindow *w = makeWindow();
    w->start(QString());
    QVERIFY(!w->view());
    QCOMPARE(w->documentList()->topLevelItemCount(), 2);
    QCOMPARE(w->documentList()->topLevelItem(0)->text(0), QStringLiteral("Alpha"));
    QCOMPARE(w->windowTitle(), QStringLiteral("Quillbox"));

    // A command-line path opens and becomes DefFile, which exiting keeps.
    w = makeWindow();
    w->start(docPath(QStringLiteral("Beta.qbx")));
    QCOMPARE(w->view()->document()->path, docPath(QStringLiteral("Beta.qbx")));
    QCOMPARE(w->windowTitle(), QStringLiteral("Beta - Quillbox"));
    // A first start hides the quick entry bar; showing it is saved at once (Flags bit 2).
    QVERIFY(!w->view()->isQuickEntryVisible());
    run(w, "actionQuickEntryBar");
    QCOMPARE(QSettings(docPath(QStringLiteral("settings.ini")), QSettings::IniFormat).value("Flags").toUInt(), 7u);
    QVERIFY(w->close());

    // The next start opens DefFile with the bar; closing back to the list empties DefFile and selects the
    // closed file.
    w = makeWindow();
    w->start(QString());
    QCOMPARE(w->view()->document()->path, docPath(QStringLiteral("Beta.qbx")));
    QVERIFY(w->view()->isQuickEntryVisible());
    run(w, "actionCloseDocument");
    QVERIFY(!w->view());
    QCOMPARE(w->documentList()->currentItem()->text(0), QStringLiteral("Beta"));
    QSettings store(docPath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    Settings settings;
    settings.load(store);
    QCOMPARE(settings.defFile, QString());
}

void TestMainWindow::loadFailureShowsItsMessage()
{
    // Which message goes with which failure is the file format's (and the qbx suite's) check.
    const QByteArray bytes("\x27\x02\x00\x00garbage", 11);
    const QString path = docPath(QStringLiteral("Broken.qbx"));
    QFile broken(path);
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write(bytes);
    broken.close();
    MainWindow *w = makeWindow();
    w->start(QString());
    QVERIFY(!w->openDocument(path));
    QVERIFY(!w->view());
    QCOMPARE(m_prompts->shown.size(), 1);
    QCOMPARE(m_prompts->shown.first().icon, Prompts::Icon::Stop);
    QCOMPARE(m_prompts->shown.first().text, QString::fromLatin1(Messages::LoadDamaged));
    // The file on disk is left as it was.
    QVERIFY(broken.open(QIODevice::ReadOnly));
    QCOMPARE(broken.readAll(), bytes);
}

void TestMainWindow::createAndSaveAs()
{
    MainWindow *w = makeWindow();
    w->start(QString());
    // Cancelling the note type question creates nothing.
    m_prompts->fileNames.enqueue(docPath(QStringLiteral("Fresh")));
    QVERIFY(!w->createDocument());
    QVERIFY(!QFile::exists(docPath(QStringLiteral("Fresh.qbx"))));

    m_prompts->fileNames.enqueue(docPath(QStringLiteral("Fresh")));
    m_prompts->noteTypes.enqueue(Document::RichText);
    run(w, "actionNewDocument");
    QVERIFY(w->view());
    QCOMPARE(w->view()->document()->noteType, quint16(Document::RichText));
    QCOMPARE(w->view()->document()->path, docPath(QStringLiteral("Fresh.qbx")));
    QVERIFY(QFile::exists(docPath(QStringLiteral("Fresh.qbx"))));

    w->view()->insertNewItem(new Item(QStringLiteral("New Item")), InsertPosition::Top);
    m_prompts->fileNames.enqueue(docPath(QStringLiteral("Copy.qbx")));
    run(w, "actionSaveAs");
    QCOMPARE(w->view()->document()->path, docPath(QStringLiteral("Copy.qbx")));
    QVERIFY(w->windowTitle().startsWith(QStringLiteral("Copy - ")));
    QCOMPARE(namesOnDisk(docPath(QStringLiteral("Copy.qbx"))), QStringList({QStringLiteral("New Item")}));
}

void TestMainWindow::saveFailureKeepsTheDocumentOpen()
{
    MainWindow *w = makeWindow();
    w->start(docPath(QStringLiteral("Alpha.qbx")));
    const QString gone = docPath(QStringLiteral("no-such-folder/Alpha.qbx"));
    w->view()->document()->path = gone;
    run(w, "actionSave");
    QCOMPARE(m_prompts->shown.size(), 1);
    QCOMPARE(m_prompts->shown.first().icon, Prompts::Icon::Stop);
    QVERIFY(m_prompts->shown.first().text.contains(QDir::toNativeSeparators(gone)));

    // Closing asks: no Save As and no Discard keeps the document open.
    m_prompts->yesNo.clear();
    m_prompts->yesNo << false << false;
    run(w, "actionCloseDocument");
    QVERIFY(w->view());
    // Save As writes it elsewhere and closes it.
    const QString elsewhere = docPath(QStringLiteral("Elsewhere.qbx"));
    m_prompts->yesNo.clear();
    m_prompts->yesNo << true;
    m_prompts->fileNames.clear();
    m_prompts->fileNames << elsewhere;
    run(w, "actionCloseDocument");
    QVERIFY(!w->view());
    QCOMPARE(namesOnDisk(elsewhere), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    QCOMPARE(w->recentDocuments().first(), elsewhere);

    // Discard lets it go without writing: quitting is always possible.
    QVERIFY(w->openDocument(elsewhere));
    w->view()->document()->path = gone;
    m_prompts->yesNo.clear();
    m_prompts->yesNo << false << true;
    run(w, "actionCloseDocument");
    QVERIFY(!w->view());
    QVERIFY(!QFileInfo::exists(gone));
}

void TestMainWindow::saveOnDeactivation()
{
    MainWindow *w = makeWindow();
    const QString path = docPath(QStringLiteral("Alpha.qbx"));
    w->start(path);
    QApplication::setActiveWindow(w);
    QVERIFY(QTest::qWaitForWindowActive(w));
    DocumentView *view = w->view();
    QLineEdit *entry = view->quickEntryBar()->textBox()->lineEdit();
    QTest::keyClicks(entry, QStringLiteral("three"));
    QTest::keyClick(entry, Qt::Key_Return);
    QTest::keyClicks(view->notePane()->plainEditor(), QStringLiteral("a note"));

    // A dialog of the window takes the activation: nothing is written.
    QDialog dialog(w);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    QTRY_VERIFY(!w->isActiveWindow());
    QCOMPARE(namesOnDisk(path), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    dialog.hide();
    QApplication::setActiveWindow(w);
    QTRY_VERIFY(w->isActiveWindow());

    // Another application takes it: the selection and the note are committed and saved.
    QApplication::setActiveWindow(nullptr);
    QTRY_VERIFY(!w->isActiveWindow());
    QByteArray note;
    QCOMPARE(namesOnDisk(path, &note),
             QStringList({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")}));
    QCOMPARE(NoteText::fromPlainNote(note), QStringLiteral("a note"));
    Document reread;
    QCOMPARE(DocumentFile::load(path, &reread), DocumentFile::Loaded);
    QCOMPARE(reread.current()->name(), QStringLiteral("three"));
}

namespace {
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

void TestMainWindow::handOverFromASecondInstance()
{
    const QString name = QStringLiteral("quillbox-test-%1").arg(QCoreApplication::applicationPid());
    SingleInstance first(name);
    QVERIFY(first.listen());
    MainWindow *w = makeWindow();
    connect(&first, &SingleInstance::pathReceived, w, &MainWindow::handOver);
    QSignalSpy raised(&first, &SingleInstance::raiseRequested);
    w->start(docPath(QStringLiteral("Alpha.qbx")));
    w->view()->quickEntryBar()->setText(QStringLiteral("added before"));
    w->view()->quickEntryBar()->add();

    SecondStart second(name, docPath(QStringLiteral("Beta.qbx")));
    second.start();
    QTRY_VERIFY(second.isFinished());
    QVERIFY(second.handedOver);
    QTRY_COMPARE(w->view()->document()->path, docPath(QStringLiteral("Beta.qbx")));
    // The first document was saved before it was closed.
    QCOMPARE(namesOnDisk(docPath(QStringLiteral("Alpha.qbx"))),
             QStringList({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("added before")}));

    // Without a path the first instance only comes forward.
    SecondStart bare(name, QString());
    bare.start();
    QTRY_VERIFY(bare.isFinished());
    QVERIFY(bare.handedOver);
    QTRY_COMPARE(raised.count(), 1);
    QCOMPARE(w->view()->document()->path, docPath(QStringLiteral("Beta.qbx")));

    // A path that does not open leaves the open document open.
    m_prompts->shown.clear();
    w->handOver(docPath(QStringLiteral("missing.qbx")));
    QCOMPARE(m_prompts->shown.size(), 1);
    QCOMPARE(w->view()->document()->path, docPath(QStringLiteral("Beta.qbx")));

    // Nobody listening: the start goes on as the first instance.
    QVERIFY(!SingleInstance(name + QStringLiteral("-none")).handOver(QStringLiteral("x"), 500));
}

void TestMainWindow::openAndRecentDocuments()
{
    MainWindow *w = makeWindow();
    w->start(QString());
    const QString alpha = docPath(QStringLiteral("Alpha.qbx"));
    const QString beta = docPath(QStringLiteral("Beta.qbx"));
    m_prompts->fileNames.clear();
    m_prompts->fileNames << beta;
    QVERIFY(run(w, "actionOpen"));
    QCOMPARE(w->view()->document()->path, beta);
    QVERIFY(w->openDocument(alpha));
    QCOMPARE(w->recentDocuments(), QStringList({alpha, beta}));
    auto *recent = w->menuBar()->findChild<QMenu *>(QStringLiteral("menuOpenRecent"));
    QVERIFY(recent);
    Q_EMIT recent->aboutToShow();
    QCOMPARE(recent->actions().size(), 2);
    QCOMPARE(recent->actions().at(1)->text(), QStringLiteral("&2 Beta.qbx"));
    recent->actions().at(1)->trigger();
    QCOMPARE(w->view()->document()->path, beta);
    QCOMPARE(w->recentDocuments(), QStringList({beta, alpha}));
    for (int i = 0; i < 12; ++i)
        w->addRecent(docPath(QStringLiteral("n%1.qbx").arg(i)));
    QCOMPARE(w->recentDocuments().size(), 10);
    QCOMPARE(w->recentDocuments().first(), docPath(QStringLiteral("n11.qbx")));
    Q_EMIT recent->aboutToShow();
    QCOMPARE(recent->actions().at(9)->text(), QStringLiteral("&0 n2.qbx"));
}

void TestMainWindow::menusFollowTheState()
{
    MainWindow *w = makeWindow();
    w->start(QString());
    // The list: New, Refresh, About; nothing of a document.
    QVERIFY(enabled(w, "actionRefresh"));
    QVERIFY(!enabled(w, "actionSave"));

    QVERIFY(w->openDocument(docPath(QStringLiteral("Alpha.qbx"))));
    QVERIFY(enabled(w, "actionSave"));
    QVERIFY(!enabled(w, "actionRefresh"));
    QVERIFY(command(w, "actionDefaultView")->isChecked());
    QVERIFY(command(w, "actionNoteWindow")->isChecked());
    run(w, "actionShowStatistics");
    QVERIFY(command(w, "actionShowStatistics")->isChecked());
}

void TestMainWindow::ctrlASelectsAllInTextAndIsAboutElsewhere()
{
    MainWindow *w = makeWindow();
    w->start(docPath(QStringLiteral("Alpha.qbx")));
    QApplication::setActiveWindow(w);
    QVERIFY(QTest::qWaitForWindowActive(w));
    w->view()->treePane()->setCurrentRow(1);
    QPlainTextEdit *editor = w->view()->notePane()->plainEditor();
    editor->setFocus();
    QTest::keyClicks(editor, QStringLiteral("text"));
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(m_prompts->aboutShown, 0);
    QCOMPARE(editor->textCursor().selectedText(), QStringLiteral("text"));
    QLineEdit *entry = w->view()->quickEntryBar()->textBox()->lineEdit();
    entry->setFocus();
    QTest::keyClicks(entry, QStringLiteral("abc"));
    QTest::keyClick(entry, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(entry->selectedText(), QStringLiteral("abc"));
    QCOMPARE(m_prompts->aboutShown, 0);
    w->view()->treePane()->setFocus();
    QTest::keyClick(w->view()->treePane(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(m_prompts->aboutShown, 1);
}

void TestMainWindow::onlyAChangeIsWritten()
{
    MainWindow *w = makeWindow();
    const QString path = docPath(QStringLiteral("Alpha.qbx"));
    w->start(path);
    w->setAutosaveDelay(50);
    const QDateTime old = QDateTime::currentDateTime().addDays(-3);
    auto age = [&path, &old] {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(old, QFileDevice::FileModificationTime));
    };
    age();
    // Switching away with nothing changed leaves the file alone.
    w->saveOnDeactivation();
    QCOMPARE(QFileInfo(path).lastModified(), old);
    QCOMPARE(w->windowTitle(), QStringLiteral("Alpha - Quillbox"));

    // A change is marked in the title and written a moment later.
    w->view()->treePane()->setCurrentRow(1);
    QVERIFY(run(w, "actionMoveDown"));
    QCOMPARE(w->windowTitle(), QStringLiteral("*Alpha - Quillbox"));
    QTRY_COMPARE(namesOnDisk(path), QStringList({QStringLiteral("two"), QStringLiteral("one")}));
    QTRY_COMPARE(w->windowTitle(), QStringLiteral("Alpha - Quillbox"));

    // Without the autosave it waits for a save.
    QVERIFY(run(w, "actionAutosave"));
    QVERIFY(!w->isAutosaveOn());
    age();
    QVERIFY(run(w, "actionMoveUp"));
    QTest::qWait(200);
    QCOMPARE(QFileInfo(path).lastModified(), old);
    w->saveOnDeactivation();
    QCOMPARE(namesOnDisk(path), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
}

void TestMainWindow::treeKeys()
{
    MainWindow *w = makeWindow();
    w->start(docPath(QStringLiteral("Alpha.qbx")));
    w->setAutosaveOn(false);
    QApplication::setActiveWindow(w);
    QVERIFY(QTest::qWaitForWindowActive(w));
    TreePane *tree = w->view()->treePane();
    Document *doc = w->view()->document();
    tree->setFocus();
    auto names = [doc] {
        QStringList out;
        doc->root()->forEachDescendant([&](Item *item) {
            out.append(QString(item->level() > 1 ? "." : "") + item->name());
        });
        return out;
    };
    TreeNode *two = doc->root()->child(1);
    w->view()->refresh(two);
    QTest::keyClick(tree, Qt::Key_Tab);
    QCOMPARE(names(), QStringList({"one", ".two"}));
    w->view()->refresh(two);
    QTest::keyClick(tree, Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(names(), QStringList({"one", "two"}));
    QTest::keyClick(tree, Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(names(), QStringList({"two", "one"}));
    QTest::keyClick(tree, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(names(), QStringList({"one", "two"}));
    tree->setCurrentRow(1);
    QTest::keyClick(tree, Qt::Key_End);
    QCOMPARE(tree->currentNode(), doc->root()->child(1));
    tree->setCurrentRow(0);
    QTest::keyClick(tree, Qt::Key_PageDown);
    QCOMPARE(tree->currentNode(), doc->root()->child(1));

    // Insert adds a child and names it in place; Enter in the editor ends
    // the rename and adds nothing.
    QTest::keyClick(tree, Qt::Key_Insert);
    QWidget *editor = QApplication::focusWidget();
    QVERIFY(qobject_cast<QLineEdit *>(editor));
    QTest::keyClicks(editor, QStringLiteral("kid"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(names(), QStringList({"one", "two", ".kid"}));
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Return);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("next"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCOMPARE(names(), QStringList({"one", "two", ".kid", ".next"}));
    QVERIFY(w->windowTitle().startsWith(QLatin1Char('*')));
    // Left folds the open item it is on.
    tree->setFocus();
    w->view()->refresh(two);
    QTest::keyClick(tree, Qt::Key_Left);
    QVERIFY(!two->asItem()->isExpanded());
}

void TestMainWindow::followsTheFile()
{
    MainWindow *w = makeWindow();
    const QString path = docPath(QStringLiteral("Alpha.qbx"));
    w->start(path);
    w->setAutosaveOn(false);
    auto shownNames = [w] {
        QStringList out;
        w->view()->document()->root()->forEachDescendant([&](Item *item) { out.append(item->name()); });
        return out;
    };
    // Our own save is no change from outside.
    w->view()->insertNewItem(new Item(QStringLiteral("three")), InsertPosition::Top);
    const Document *ours = w->view()->document();
    QVERIFY(run(w, "actionSave"));
    QTest::qWait(600);
    QVERIFY(m_prompts->shown.isEmpty());
    QCOMPARE(w->view()->document(), ours); // not read again

    // Unchanged here: another program's version is shown.
    QTest::qWait(20);
    writeDocument(path, {QStringLiteral("theirs")});
    QTRY_COMPARE(shownNames(), QStringList({QStringLiteral("theirs")}));
    QVERIFY(m_prompts->shown.isEmpty());

    // Changed here: keeping ours writes it, theirs stays beside it.
    w->view()->insertNewItem(new Item(QStringLiteral("mine")), InsertPosition::Top);
    m_prompts->yesNo.clear();
    m_prompts->yesNo << false;
    QTest::qWait(20);
    writeDocument(path, {QStringLiteral("theirs again")});
    QTRY_COMPARE(m_prompts->shown.size(), 1);
    QCOMPARE(shownNames(), QStringList({QStringLiteral("theirs"), QStringLiteral("mine")}));
    QVERIFY(run(w, "actionSave"));
    QCOMPARE(namesOnDisk(path), QStringList({QStringLiteral("theirs"), QStringLiteral("mine")}));
    const QStringList conflicts = QDir(m_dir->path()).entryList({QStringLiteral("Alpha (conflict *).qbx")});
    QCOMPARE(conflicts.size(), 1);
    QCOMPARE(namesOnDisk(docPath(conflicts.first())), QStringList({QStringLiteral("theirs again")}));
}

void TestMainWindow::rowsFollowThePalette()
{
    const QColor base(0x2a, 0x2a, 0x2e);
    const QColor text(0xee, 0xee, 0xee);
    MainWindow *w = makeWindow();
    w->start(docPath(QStringLiteral("Alpha.qbx")));
    // The desktop switches to dark colours while the document is open.
    QPalette palette = w->palette();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Base, base);
        palette.setColor(group, QPalette::AlternateBase, base);
        palette.setColor(group, QPalette::Window, base.darker(110));
        palette.setColor(group, QPalette::Text, text);
        palette.setColor(group, QPalette::WindowText, text);
    }
    w->setPalette(palette);
    TreePane *tree = w->view()->treePane();
    tree->setCurrentRow(0);
    QTest::qWait(50);
    const QImage image = tree->viewport()->grab().toImage();
    screenshot(w, QStringLiteral("window-dark"));
    const qreal dpr = image.devicePixelRatio();
    // An unselected item's row: its text is in the palette's ink on its base.
    const QRect textRect = tree->rowGeometry(2).textRect();
    int ink = 0;
    int background = 0;
    for (int y = textRect.top(); y <= textRect.bottom(); ++y) {
        for (int x = textRect.left(); x <= textRect.right(); ++x) {
            const QColor c = image.pixelColor(int(x * dpr), int(y * dpr));
            auto distance = [&c](const QColor &to) {
                return std::abs(c.red() - to.red()) + std::abs(c.green() - to.green()) +
                       std::abs(c.blue() - to.blue());
            };
            ink += distance(text) < distance(base);
            background += c == base;
        }
    }
    QVERIFY2(ink > 5, qPrintable(QString::number(ink)));
    QVERIFY(background > textRect.width() * textRect.height() / 2);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
