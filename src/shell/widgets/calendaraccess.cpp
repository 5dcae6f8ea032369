#include "shell/widgets/calendaraccess.h"

#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/settings.h"
#include "views/categorylist.h"

#include <QDateTime>
#include <QEventLoop>
#include <QHash>
#include <QTimer>
#include <qt6keychain/keychain.h>

namespace {

const QString KeyringService = QStringLiteral("Quillbox");
/// How long a keyring may take to answer before it counts as absent.
constexpr int KeyringTimeout = 10000;

enum class Keyring { Found, Missing, Unavailable };

/// This run's passwords, by keyring key; and whether the keyring answered.
QHash<QString, QString> &remembered()
{
    static QHash<QString, QString> passwords;
    return passwords;
}
bool keyringAbsent = false;

/// The store that last failed to give its categories, and when.
QString unreachableStore;
QDateTime unreachableSince;

QString keyFor(const QString &location, const QString &user)
{
    return user + QLatin1Char('@') + location;
}

/// Runs a keyring job to its end, or until the keyring is given up on.
QKeychain::Error runJob(QKeychain::Job *job)
{
    // The job deletes itself when done, which may be after we stop waiting.
    auto result = std::make_shared<QKeychain::Error>(QKeychain::OtherError);
    QEventLoop loop;
    QObject::connect(job, &QKeychain::Job::finished, &loop, [result, &loop](QKeychain::Job *done) {
        *result = done->error();
        loop.quit();
    });
    QTimer::singleShot(KeyringTimeout, &loop, &QEventLoop::quit);
    job->setInsecureFallback(false);
    job->start();
    loop.exec();
    return *result;
}

Keyring readKeyring(const QString &key, QString *password)
{
    if (keyringAbsent)
        return Keyring::Unavailable;
    auto *job = new QKeychain::ReadPasswordJob(KeyringService);
    job->setKey(key);
    auto text = std::make_shared<QString>();
    QObject::connect(job, &QKeychain::Job::finished, job,
                     [text](QKeychain::Job *done) { *text = static_cast<QKeychain::ReadPasswordJob *>(done)->textData(); });
    switch (runJob(job)) {
    case QKeychain::NoError:
        *password = *text;
        return Keyring::Found;
    case QKeychain::EntryNotFound:
        return Keyring::Missing;
    default:
        keyringAbsent = true;
        return Keyring::Unavailable;
    }
}

void writeKeyring(const QString &key, const QString &password)
{
    if (keyringAbsent)
        return;
    QKeychain::Job *job;
    if (password.isEmpty()) {
        job = new QKeychain::DeletePasswordJob(KeyringService);
    } else {
        auto *write = new QKeychain::WritePasswordJob(KeyringService);
        write->setTextData(password);
        job = write;
    }
    job->setKey(key);
    const QKeychain::Error error = runJob(job);
    if (error != QKeychain::NoError && error != QKeychain::EntryNotFound)
        keyringAbsent = true;
}

/// The password kept for a collection: this run's copy, else the keyring's;
/// with prompts, asked when neither has one. False when asked and cancelled
/// or, without prompts, when none is known.
bool passwordFor(const QString &location, const QString &user, Prompts *prompts, QWidget *parent, QString *password)
{
    const QString key = keyFor(location, user);
    if (auto it = remembered().constFind(key); it != remembered().constEnd()) {
        *password = *it;
        return true;
    }
    Keyring keyring;
    {
        WaitCursor wait;
        keyring = readKeyring(key, password);
    }
    if (keyring == Keyring::Found) {
        remembered().insert(key, *password);
        return true;
    }
    if (!prompts)
        return false;
    const QString prompt = user.isEmpty()
                               ? QStringLiteral("The password for the calendar at %1:").arg(location)
                               : QStringLiteral("The password of %1 for the calendar at %2:").arg(user, location);
    if (!prompts->askSecret(parent, prompt, password))
        return false;
    // A keyring that lacks the entry takes it; without a keyring the
    // password lasts only for this run.
    if (keyring == Keyring::Missing)
        writeKeyring(key, *password);
    remembered().insert(key, *password);
    return true;
}

} // namespace

namespace CalendarAccess {

std::unique_ptr<CalendarStore> open(const QString &location, const QString &user, Prompts *prompts, QWidget *parent)
{
    if (!CalendarStore::isCalDavAddress(location))
        return CalendarStore::open(location);
    QString password;
    if (!passwordFor(location, user, prompts, parent, &password) && prompts)
        return nullptr;
    return CalendarStore::open(location, user, password);
}

void keepPassword(const QString &location, const QString &user, const QString &password)
{
    const QString key = keyFor(location, user);
    writeKeyring(key, password);
    if (password.isEmpty())
        remembered().remove(key);
    else
        remembered().insert(key, password);
}

void forgetPassword(const QString &location, const QString &user)
{
    remembered().remove(keyFor(location, user));
}

QStringList categories(const Document &document, const Settings &settings)
{
    const bool useStore = settings.testFlag(Settings::CalendarCategories);
    if (!useStore)
        return CategoryList::fill(document, false, {});
    const QString location = settings.calendarStore;
    if (location == unreachableStore && unreachableSince.secsTo(QDateTime::currentDateTimeUtc()) < 60)
        return CategoryList::fill(document, false, {});

    // A chooser never asks for a password: without one the server refuses
    // and the document's categories stand alone.
    std::unique_ptr<CalendarStore> store = open(location, settings.calendarUser, nullptr, nullptr);
    store->setTimeout(CategoryTimeout);
    QStringList fromStore;
    QString error;
    {
        WaitCursor wait;
        if (!store->categories(&fromStore, &error)) {
            // Only a server is worth not waiting for again.
            if (CalendarStore::isCalDavAddress(location))
                unreachableStore = location;
            unreachableSince = QDateTime::currentDateTimeUtc();
            fromStore.clear();
        } else {
            unreachableStore.clear();
        }
    }
    return CategoryList::fill(document, true, fromStore);
}

} // namespace CalendarAccess
