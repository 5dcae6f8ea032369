#include "shell/document/remindercontroller.h"

#include "platform/clock.h"
#include "shell/widgets/desktopnotification.h"
#include "shell/widgets/reminderbubble.h"
#include "storage/settings.h"
#include "support/fakealarm.h"
#include "support/outline.h"
#include "support/scriptedprompts.h"

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#ifdef QUILLBOX_HAVE_DBUS
#include <QDBusConnection>
#endif

namespace {

// A controller over a document built from an outline, at 2024-03-05 09:00, with no bus for its notification.
struct Fixture {
    Fixture(const char *outline, const QString &sound)
    {
        Clock::setFixed(QDateTime(QDate(2024, 3, 5), QTime(9, 0)));
        settings.sound = sound;
        Outline::build(document.root(), outline);
        auto owned = std::make_unique<FakeAlarm>();
        alarm = owned.get();
#ifdef QUILLBOX_HAVE_DBUS
        auto notification = std::make_unique<DesktopNotification>(
            QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent"), QStringLiteral("none")));
#else
        auto notification = std::make_unique<DesktopNotification>();
#endif
        controller = std::make_unique<ReminderController>(&document, settings, prompts, &window, std::move(owned),
                                                          std::move(notification));
    }
    ~Fixture()
    {
        Clock::reset();
    }
    Item *item(const char *name)
    {
        return Outline::find(document.root(), QString::fromLatin1(name));
    }

    Document document;
    Settings settings;
    ScriptedPrompts prompts;
    QWidget window;
    FakeAlarm *alarm = nullptr;
    std::unique_ptr<ReminderController> controller;
};

} // namespace

// What a due reminder shows and what its commands reach; when a reminder is due is the reminders' own suite.
class TestReminderController : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<Item *>(); }

    void dueReminderRingsAndDismissAllEndsIt()
    {
        QTemporaryDir dir;
        const QString bell = dir.filePath(QStringLiteral("bell.wav"));
        QFile(bell).open(QIODevice::WriteOnly);
        // b before a in the list: a, already past, is the candidate and shows at once.
        Fixture f("b | rem=2024-03-06T08:00\na | rem=2024-03-05T08:00 col=5\n", bell);
        QTRY_VERIFY(f.controller->bubble() && f.controller->bubble()->isVisible());
        ReminderBubble *bubble = f.controller->bubble();
        QCOMPARE(bubble->findChild<QLabel *>(QStringLiteral("title"))->text(), QStringLiteral("Quillbox Reminder"));
        // Colour 5 of the item table is pure red.
        QVERIFY(bubble->html().startsWith(QStringLiteral("<html><body><b><font color=\"#FF0000\">a</font></b><br />")));
        QCOMPARE(f.controller->lastSound(), bell);
        QVERIFY(bubble->lifetime().isActive() && bubble->lifetime().interval() == 3600 * 1000);
        auto *dismissAll = bubble->findChild<QPushButton *>(QStringLiteral("cmd1990"));
        QCOMPARE(dismissAll->text(), QStringLiteral("Dismiss All"));
        dismissAll->click();
        QVERIFY(!bubble->isVisible());
        QCOMPARE(f.item("a")->reminderTime().second, quint16(0));
        QCOMPARE(f.item("b")->reminderTime().second, quint16(1));
        QCOMPARE(f.alarm->armedAt, QDateTime(QDate(2024, 3, 6), QTime(8, 0, 1)));
    }

    void manyRemindersLeadToTheList()
    {
        Fixture f("a | rem=2024-03-05T07:00\nb | rem=2024-03-05T08:00 due=2024-03-09\nc | rem=2024-03-05T08:30\n"
                  "d | rem0=2024-03-05T08:30\n",
                  QStringLiteral("(None)"));
        QSignalSpy select(f.controller.get(), &ReminderController::selectItemRequested);
        QTRY_VERIFY(f.controller->bubble() && f.controller->bubble()->isVisible());
        QVERIFY(f.controller->lastSound().isEmpty());
        QVERIFY(!f.controller->bubble()->findChild<QPushButton *>(QStringLiteral("cmd1990")));
        // The bubble's link opens the list; Go To selects the item.
        QStringList names;
        f.prompts.dialogs.enqueue([&names](QDialog *dialog) {
            auto *list = dialog->findChild<QTreeWidget *>(QStringLiteral("reminderList"));
            for (int i = 0; i < list->topLevelItemCount(); ++i)
                names.append(list->topLevelItem(i)->text(0));
            list->setCurrentItem(list->topLevelItem(1));
            dialog->findChild<QPushButton *>(QStringLiteral("goTo"))->click();
        });
        Q_EMIT f.controller->bubble()->findChild<QLabel *>(QStringLiteral("body"))->linkActivated("cmd:1991");
        QCOMPARE(names, QStringList({"a", "b", "c"}));
        QCOMPARE(select.value(0).value(0).value<Item *>(), f.item("b"));
    }
};

QTEST_MAIN(TestReminderController)
#include "tst_remindercontroller.moc"
