#pragma once

#include <QFile>
#include <QMap>
#include <QProcess>
#include <QStringList>
#include <QTest>
#include <functional>
#include <vector>

// qbx of this build in a fixed locale, with the settings of the test's own store when one is named.
struct QbxRun {
    int status = -1;
    QByteArray out;
    QByteArray err;
    QString text() const { return QString::fromUtf8(out); }
    QString error() const { return QString::fromUtf8(err); }
    bool operator==(const QbxRun &other) const = default;
};

// The runs a test expects: what a command prints, or why it refused.
inline const auto printed = [](const QByteArray &out, int status = 0) { return QbxRun{status, out, {}}; };
inline const auto refused = [](int status, const QByteArray &err) { return QbxRun{status, {}, err}; };

inline char *toString(const QbxRun &run)
{
    return QTest::toString(
        QStringLiteral("status %1, out \"%2\", error \"%3\"").arg(run.status).arg(run.text(), run.error()));
}

struct QbxOptions {
    QByteArray input;
    QString standardOutputFile;
    QMap<QString, QString> environment;
};

inline const QString QbxProgram = QStringLiteral(QUILLBOX_BINARY_DIR "/qbx");

inline void startQbx(QProcess &process, const QStringList &arguments, const QbxOptions &options = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("en_US.UTF-8"));
    environment.insert(QStringLiteral("LANG"), QStringLiteral("en_US.UTF-8"));
    for (auto it = options.environment.begin(); it != options.environment.end(); ++it)
        environment.insert(it.key(), it.value());
    process.setProcessEnvironment(environment);
    if (!options.standardOutputFile.isEmpty())
        process.setStandardOutputFile(options.standardOutputFile);
    process.start(QbxProgram, arguments);
    if (process.waitForStarted()) {
        process.write(options.input);
        process.closeWriteChannel();
    }
}

inline QbxRun finishQbx(QProcess &process)
{
    QbxRun run;
    if (!process.waitForFinished(120000))
        return run;
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

inline QbxRun qbx(const QStringList &arguments, const QbxOptions &options = {})
{
    QProcess process;
    startQbx(process, arguments, options);
    return finishQbx(process);
}

inline QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

inline QString writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

// The qbx suites are one program: each suite's file registers its class, and the runner runs them in turn.
namespace QbxSuites {
using Make = std::function<QObject *()>;
inline std::vector<Make> &all()
{
    static std::vector<Make> suites;
    return suites;
}
struct Add {
    explicit Add(Make make) { all().push_back(std::move(make)); }
};
} // namespace QbxSuites

#define QBX_SUITE(Class) static const QbxSuites::Add add##Class([]() -> QObject * { return new Class; });
