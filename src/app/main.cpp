#include "platform/largeheap.h"
#include "rows/iconset.h"
#include "shell/app/mainwindow.h"
#include "shell/app/singleinstance.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>

int main(int argc, char *argv[])
{
    LargeHeap::enable(argv);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillbox"));
    QApplication::setOrganizationName(QStringLiteral("Quillbox"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLBOX_VERSION));

    const QStringList args = QApplication::arguments();
    const QString path = args.size() > 1 ? QFileInfo(args.at(1)).absoluteFilePath() : QString();

    SingleInstance instance;
    if (instance.handOver(path, 1500))
        return 0;
    instance.listen();

    QIcon icon;
    for (int size : {16, 24, 32, 48, 64, 128})
        icon.addPixmap(IconSet::instance().icon(17, size));
    QApplication::setWindowIcon(icon);

    MainWindow window;
    QObject::connect(&instance, &SingleInstance::pathReceived, &window, &MainWindow::handOver);
    QObject::connect(&instance, &SingleInstance::raiseRequested, &window, &MainWindow::bringForward);
    window.show();
    window.start(path);
    return app.exec();
}
