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

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProcess>
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
    void quickEntryBarChoiceIsSavedAtOnce();
    void loadFailuresShowTheirMessage_data();
    void loadFailuresShowTheirMessage();
    void createAndSaveAs();
    void saveFailureKeepsTheDocumentOpen();
    void saveOnDeactivation();
    void handOverFromASecondInstance();
    void secondProcessHandsOverAndExits();
    void menusFollowTheState();
    void ctrlAOpensTheAboutBox();

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
    QVERIFY(w->close());

    // The next start opens DefFile; closing back to the list empties it and selects the closed file.
    w = makeWindow();
    w->start(QString());
    QCOMPARE(w->view()->document()->path, docPath(QStringLiteral("Beta.qbx")));
    run(w, "actionCloseDocument");
    QVERIFY(!w->view());
    QCOMPARE(w->documentList()->currentItem()->text(0), QStringLiteral("Beta"));
    QSettings store(docPath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    Settings settings;
    settings.load(store);
    QCOMPARE(settings.defFile, QString());
}

void TestMainWindow::quickEntryBarChoiceIsSavedAtOnce()
{
    // A first start has Flags bits 0 and 1 only: the bar is hidden.
    MainWindow *w = makeWindow();
    w->start(docPath(QStringLiteral("Alpha.qbx")));
    QVERIFY(!w->view()->isQuickEntryVisible());
    run(w, "actionQuickEntryBar");
    QVERIFY(w->view()->isQuickEntryVisible());
    QSettings store(docPath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    QCOMPARE(store.value(QStringLiteral("Flags")).toUInt(), 7u);

    // The next start shows it again.
    w = makeWindow();
    w->start(docPath(QStringLiteral("Alpha.qbx")));
    QVERIFY(w->view()->isQuickEntryVisible());
}

void TestMainWindow::loadFailuresShowTheirMessage_data()
{
    QTest::addColumn<QByteArray>("bytes"); // empty: no file at all
    QTest::addColumn<QString>("message");
    QTest::newRow("missing") << QByteArray() << QStringLiteral("File '%1' does not exist.");
    QTest::newRow("damaged") << QByteArray("\x27\x02\x00\x00garbage", 11) << QString::fromLatin1(Messages::LoadDamaged);
    QTest::newRow("newer version") << QByteArray("\x58\x02\x00\x00", 4)
                                   << QString::fromLatin1(Messages::LoadUnsupportedVersion);
}

void TestMainWindow::loadFailuresShowTheirMessage()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    const QString path = docPath(QStringLiteral("Broken.qbx"));
    if (!bytes.isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    MainWindow *w = makeWindow();
    w->start(QString());
    QVERIFY(!w->openDocument(path));
    QVERIFY(!w->view());
    QCOMPARE(m_prompts->shown.size(), 1);
    QCOMPARE(m_prompts->shown.first().icon, Prompts::Icon::Stop);
    QCOMPARE(m_prompts->shown.first().text, message.arg(path));
    // The file on disk is left as it was.
    if (!bytes.isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), bytes);
    }
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

    // In the view, "New" adds an item instead, through the new-item dialog.
    m_prompts->dialogs.enqueue([](QDialog *d) {
        QTest::keyClicks(d->findChild<QLineEdit *>(QStringLiteral("name")), QStringLiteral("New Item"));
        d->accept();
    });
    run(w, "actionNew");
    QCOMPARE(w->view()->document()->root()->childCount(), 1);

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
    w->view()->document()->path = docPath(QStringLiteral("no-such-folder/Alpha.qbx"));
    run(w, "actionSave");
    QCOMPARE(m_prompts->shown.size(), 1);
    QCOMPARE(m_prompts->shown.first().icon, Prompts::Icon::Stop);
    QCOMPARE(m_prompts->shown.first().text, QString::fromLatin1(Messages::SaveFailed));
    // Closing cannot lose the document either: it stays open.
    run(w, "actionCloseDocument");
    QVERIFY(w->view());
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

    // Nobody listening: the start goes on as the first instance.
    QVERIFY(!SingleInstance(name + QStringLiteral("-none")).handOver(QStringLiteral("x"), 500));
}

void TestMainWindow::secondProcessHandsOverAndExits()
{
    const QString app = QStringLiteral(QUILLBOX_BINARY_DIR "/quillbox");
    if (!QFile::exists(app))
        QSKIP("the application is not built");
    const QString home = m_dir->filePath(QStringLiteral("home"));
    QVERIFY(QDir().mkpath(home));
    SingleInstance first(SingleInstance::nameForHome(QDir(home).absolutePath()));
    QVERIFY(first.listen());
    QSignalSpy received(&first, &SingleInstance::pathReceived);
    QProcess second;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home);
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    second.setProcessEnvironment(env);
    second.start(app, {docPath(QStringLiteral("Beta.qbx"))});
    QVERIFY(second.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(second.state() == QProcess::NotRunning, 20000);
    if (second.state() != QProcess::NotRunning)
        second.kill();
    QCOMPARE(second.exitStatus(), QProcess::NormalExit);
    QCOMPARE(second.exitCode(), 0);
    QCOMPARE(received.count(), 1);
    QCOMPARE(received.first().first().toString(), docPath(QStringLiteral("Beta.qbx")));
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
    QVERIFY(!enabled(w, "actionRecordingToolbar"));

    // A grouped view: radio mark moves, the move menu greys.
    w->view()->treePane()->setCurrentRow(2);
    QVERIFY(enabled(w, "actionMoveUp"));
    run(w, "actionByPriority");
    QVERIFY(command(w, "actionByPriority")->isChecked());
    QVERIFY(!command(w, "actionDefaultView")->isChecked());
    for (const char *name : {"actionMoveUp", "actionMoveDown", "actionUpALevel", "actionDownALevel"})
        QVERIFY(!enabled(w, name));

    run(w, "actionShowStatistics");
    QVERIFY(command(w, "actionShowStatistics")->isChecked());
}

void TestMainWindow::ctrlAOpensTheAboutBox()
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
    QCOMPARE(m_prompts->aboutShown, 1);
    QVERIFY(!editor->textCursor().hasSelection());
    QTest::keyClick(w->view()->treePane(), Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(namesOnDisk(docPath(QStringLiteral("Alpha.qbx"))),
             QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    QByteArray note;
    namesOnDisk(docPath(QStringLiteral("Alpha.qbx")), &note);
    QCOMPARE(NoteText::fromPlainNote(note), QStringLiteral("text"));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
