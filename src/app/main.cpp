#include "model/document.h"
#include "platform/largeheap.h"
#include "rows/iconset.h"
#include "shell/app/mainwindow.h"
#include "shell/app/quitsignals.h"
#include "shell/app/singleinstance.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>

#include <cstdio>
#include <cstring>

namespace {
constexpr char Usage[] =
    "Usage: quillbox [OPTION] [FILE]...\n"
    "\n"
    "Quillbox, a hierarchical note-taking and task outliner.\n"
    "\n"
    "Opens FILE, a .qbx document, or else the document that was open when\n"
    "Quillbox last closed; further FILEs join the recent documents. When\n"
    "Quillbox is already running, FILE is handed to the running window,\n"
    "which comes forward, and this start ends.\n"
    "\n"
    "Options:\n"
    "  -h, --help     show this help and exit\n"
    "      --version  show the version and exit\n"
    "\n"
    "Qt's own options (-platform, -style, ...) are accepted as well.\n"
    "Run 'qbx --help' for the command-line companion.\n";

/// Answers --help and --version before anything else starts: no window, no
/// display needed, and nothing is handed to a running instance. Returns -1
/// when the start goes on.
int answerInformationOption(int argc, char *argv[])
{
    if (argc < 2)
        return -1;
    const char *option = argv[1];
    if (std::strcmp(option, "--help") == 0 || std::strcmp(option, "-h") == 0) {
        std::fputs(Usage, stdout);
        return 0;
    }
    if (std::strcmp(option, "--version") == 0) {
        std::fputs("quillbox " QUILLBOX_VERSION "\n", stdout);
        return 0;
    }
    return -1;
}
} // namespace

int main(int argc, char *argv[])
{
    if (const int code = answerInformationOption(argc, argv); code >= 0)
        return code;

    LargeHeap::enable(argv);
    QApplication app(argc, argv);
    Document::freeTreesInBackground();
    QApplication::setApplicationName(QStringLiteral("Quillbox"));
    QApplication::setOrganizationName(QStringLiteral("Quillbox"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLBOX_VERSION));
    // Ties the windows to the installed desktop entry (its name and icon).
    QApplication::setDesktopFileName(QStringLiteral("org.quillbox.Quillbox"));

    QStringList args = QApplication::arguments();
    // "--" ends the options, so that a document whose name starts with a
    // dash can still be opened.
    if (args.size() > 1 && args.at(1) == QLatin1String("--"))
        args.removeAt(1);
    else if (args.size() > 1 && args.at(1).startsWith(QLatin1Char('-'))) {
        std::fprintf(stderr, "quillbox: unknown option '%s'\n\n%s", qPrintable(args.at(1)), Usage);
        return 2;
    }
    // The desktop entry hands over several files at once (%F): the first
    // opens, the others wait among the recent documents.
    QStringList paths;
    for (qsizetype i = 1; i < args.size(); ++i)
        paths.append(QFileInfo(args.at(i)).absoluteFilePath());
    const QString path = paths.isEmpty() ? QString() : paths.first();

    SingleInstance instance;
    if (instance.handOver(path, 1500))
        return 0;
    instance.listen();

    QIcon icon;
    for (int size : {16, 24, 32, 48, 64, 128})
        icon.addPixmap(IconSet::instance().icon(17, size));
    QApplication::setWindowIcon(icon);

    MainWindow window;
    QuitSignals quitSignals;
    QObject::connect(&quitSignals, &QuitSignals::quitRequested, &window, &MainWindow::quitOnSignal);
    // The session's end (logout) saves as a quit signal does.
    QObject::connect(&app, &QGuiApplication::commitDataRequest, &window, [&window] { window.saveOnDeactivation(); });
    for (qsizetype i = paths.size() - 1; i > 0; --i)
        window.addRecent(paths.at(i));
    QObject::connect(&instance, &SingleInstance::pathReceived, &window, &MainWindow::handOver);
    QObject::connect(&instance, &SingleInstance::raiseRequested, &window, &MainWindow::bringForward);
    window.show();
    window.start(path);
    return app.exec();
}
