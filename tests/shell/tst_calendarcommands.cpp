#include "support/icalobject.h"
#include "support/shellfixture.h"

#include "platform/messages.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTabWidget>

// "Task..." and "Appointment..." reach the calendar store the settings name,
// and the category choosers offer the store's categories.
class TestCalendarCommands : public QObject {
    Q_OBJECT

private:
    /// "Trip" with the children "Book", "Pack" (holding "Socks") and "Go".
    static bool openTrip(ShellFixture &f)
    {
        auto document = std::make_unique<Document>();
        Item *trip = add(document->root(), QStringLiteral("Trip"));
        add(trip, QStringLiteral("Book"));
        add(add(trip, QStringLiteral("Pack")), QStringLiteral("Socks"));
        add(trip, QStringLiteral("Go"));
        if (!f.open(std::move(document)))
            return false;
        f.select(f.at({0}));
        return true;
    }

    /// The objects of a folder store, ordered by summary.
    static QList<IcalObject> objects(const QString &folder)
    {
        QList<IcalObject> found;
        const auto files = QDir(folder).entryInfoList({QStringLiteral("*.ics")}, QDir::Files);
        for (const QFileInfo &info : files) {
            QFile file(info.filePath());
            if (file.open(QIODevice::ReadOnly))
                found.append(IcalObject::parse(file.readAll()));
        }
        std::sort(found.begin(), found.end(), [](const auto &a, const auto &b) { return a.summary < b.summary; });
        return found;
    }

private Q_SLOTS:
    void createsForTheItemOrEachChild_data();
    void createsForTheItemOrEachChild();
    void unusableStoreIsReportedOnceAndOffersTheOptions();
    void choosersOfferTheStoreCategories();
};

void TestCalendarCommands::createsForTheItemOrEachChild_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QList<int>>("path");
    QTest::addColumn<bool>("eachChild");
    QTest::addColumn<QString>("question");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("summaries");

    const QString task = QString::fromLatin1(Messages::AskTaskForEachChild);
    const QString appointment = QString::fromLatin1(Messages::AskAppointmentForEachChild);
    const QStringList children{QStringLiteral("Book"), QStringLiteral("Go"), QStringLiteral("Pack")};
    QTest::newRow("task, each child") << "actionCreateTask" << QList<int>{0} << true << task << "VTODO" << children;
    QTest::newRow("appointment, item alone") << "actionCreateAppointment" << QList<int>{0} << false << appointment
                                             << "VEVENT" << QStringList{QStringLiteral("Trip")};
    // Without children nothing is asked.
    QTest::newRow("task, no children") << "actionCreateTask" << QList<int>{0, 0} << true << QString() << "VTODO"
                                       << QStringList{QStringLiteral("Book")};
}

void TestCalendarCommands::createsForTheItemOrEachChild()
{
    QFETCH(QString, command);
    QFETCH(QList<int>, path);
    QFETCH(bool, eachChild);
    QFETCH(QString, question);
    QFETCH(QString, kind);
    QFETCH(QStringList, summaries);

    ShellFixture f;
    const QString folder = f.dir.filePath(QStringLiteral("calendar"));
    f.window->settings().calendarStore = folder;
    QVERIFY(openTrip(f));
    Item *target = f.document()->root()->child(path[0]);
    if (path.size() > 1)
        target = target->child(path[1]);
    f.select(target);
    f.prompts.yesNo.enqueue(eachChild);
    QVERIFY(f.run(command.toLatin1().constData()));

    const QList<IcalObject> created = objects(folder);
    QStringList names;
    for (const IcalObject &object : created) {
        QCOMPARE(object.kind, kind);
        names.append(object.summary);
    }
    QCOMPARE(names, summaries);
    QStringList shown;
    if (!question.isEmpty())
        shown.append(question);
    shown.append(QStringLiteral("%1 object(s) created in the calendar.").arg(summaries.size()));
    QCOMPARE(f.shownTexts(), shown);
    // The document keeps its shape.
    QCOMPARE(f.at({0})->childCount(), 3);
    QCOMPARE(f.at({0, 1})->childCount(), 1);
}

void TestCalendarCommands::unusableStoreIsReportedOnceAndOffersTheOptions()
{
    ShellFixture f;
    // A folder cannot be made below a plain file.
    QFile blocker(f.dir.filePath(QStringLiteral("blocker")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    f.window->settings().calendarStore = f.dir.filePath(QStringLiteral("blocker/calendar"));
    QVERIFY(openTrip(f));

    // Yes to each child, No to the options: one report for the three.
    f.prompts.yesNo << true << false;
    QVERIFY(f.run("actionCreateTask"));
    QCOMPARE(f.prompts.shown.size(), 2);
    QVERIFY(f.prompts.shown[1].text.startsWith(QStringLiteral("The calendar cannot be used: ")));
    QVERIFY(f.prompts.shown[1].text.contains(QStringLiteral("blocker/calendar")));
    QVERIFY(f.prompts.dialogsRun.isEmpty());

    // Yes to the options: they open on the Calendar page, and the folder
    // chosen there takes the next objects.
    const QString folder = f.dir.filePath(QStringLiteral("calendar"));
    f.prompts.yesNo << false << true;
    f.prompts.dialogs.enqueue([folder](QDialog *d) {
        auto *pages = child<QTabWidget>(d, "pages");
        QCOMPARE(pages->tabText(pages->currentIndex()), QStringLiteral("Calendar"));
        child<QLineEdit>(d, "calendarStore")->setText(folder);
        press(d);
    });
    QVERIFY(f.run("actionCreateAppointment"));
    QCOMPARE(f.prompts.dialogsRun, QStringList{QStringLiteral("optionsDialog")});
    QCOMPARE(f.window->settings().calendarStore, folder);
    QVERIFY(objects(folder).isEmpty());

    f.prompts.yesNo << false;
    QVERIFY(f.run("actionCreateAppointment"));
    QCOMPARE(objects(folder).size(), 1);
}

void TestCalendarCommands::choosersOfferTheStoreCategories()
{
    // Which categories are offered is the category list's rule; the option and the store reach it.
    ShellFixture f;
    const QString folder = f.dir.filePath(QStringLiteral("calendar"));
    QVERIFY(QDir().mkpath(folder));
    QFile ics(QDir(folder).filePath(QStringLiteral("a.ics")));
    QVERIFY(ics.open(QIODevice::WriteOnly));
    ics.write("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Test//EN\r\nBEGIN:VTODO\r\nUID:a\r\n"
              "DTSTAMP:20240101T000000Z\r\nSUMMARY:Milk\r\nCATEGORIES:Errands,Home\r\nEND:VTODO\r\n"
              "END:VCALENDAR\r\n");
    ics.close();
    f.window->settings().calendarStore = folder;
    f.window->settings().setFlag(Settings::CalendarCategories, true);
    auto document = std::make_unique<Document>();
    add(document->root(), QStringLiteral("One"))->setCategory(QStringLiteral("Home"));
    document->collectCategory(QStringLiteral("Home"));
    QVERIFY(f.open(std::move(document)));

    QStringList shown;
    f.prompts.dialogs.enqueue([&shown](QDialog *d) {
        auto *box = child<QComboBox>(d, "findCategory");
        for (int i = 0; i < box->count(); ++i)
            shown.append(box->itemText(i));
    });
    QVERIFY(f.run("actionFindItem"));
    QCOMPARE(shown, (QStringList{QStringLiteral("[Any]"), QStringLiteral("Errands"), QStringLiteral("Home")}));
}

QTEST_MAIN(TestCalendarCommands)
#include "tst_calendarcommands.moc"
