#include "reminders/reminderservice.h"
#include "reminders/wallclockalarm.h"
#include "support/fakealarm.h"
#include "support/outline.h"

#include "model/editing.h"
#include "platform/clock.h"

#include <QSignalSpy>
#include <QTest>

namespace {
using Outline::at;

struct Fixture : Outline::Doc {
    Fixture(const char *outline, const char *now) : Outline::Doc(outline)
    {
        Clock::setFixed(at(now));
        auto owned = std::make_unique<FakeAlarm>();
        alarm = owned.get();
        service = std::make_unique<ReminderService>(this, std::move(owned));
    }
    static QStringList dueNames(const QSignalSpy &spy, int index)
    {
        const QList<Item *> items = spy.at(index).at(0).value<QList<Item *>>();
        return Outline::names(std::span<Item *const>(items.data(), size_t(items.size())));
    }
    FakeAlarm *alarm = nullptr;
    std::unique_ptr<ReminderService> service;
};

} // namespace

class TestReminderService : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { Clock::reset(); }
    void pastReminderShowsWithoutWaking()
    {
        Fixture f("a | rem=2024-03-05T08:00\n", "2024-03-05 09:00:00");
        QSignalSpy due(f.service.get(), &ReminderService::remindersDue);
        QVERIFY(!f.alarm->armed && due.isEmpty()); // never from inside the constructor
        QTRY_COMPARE(due.count(), 1);
        QCOMPARE(f.dueNames(due, 0), QStringList({"a"}));
    }

    void tenDayTimerMovesTheHorizon()
    {
        Fixture f("a | rem=2024-03-20T10:00\n", "2024-03-05 09:00:00");
        const QTimer &timer = f.service->tenDayTimer();
        QVERIFY(timer.isActive() && !f.alarm->armed);
        Clock::setFixed(at("2024-03-15 09:00:00"));
        QMetaObject::invokeMethod(const_cast<QTimer *>(&timer), "timeout");
        QVERIFY(f.alarm->armed);
        QCOMPARE(f.alarm->armedAt, at("2024-03-20 10:00:01"));
    }

    void editsDeletionsAndDismissals()
    {
        Fixture f("a | rem=2024-03-05T10:00\nb | rem=2024-03-05T10:30\nc\n", "2024-03-05 09:00:00");
        QSignalSpy due(f.service.get(), &ReminderService::remindersDue);
        QCOMPARE(f.alarm->armedAt, at("2024-03-05 10:30:01"));
        Item *c = f["c"];
        c->setReminderTime(ReminderManager::pendingAt(at("2024-03-05 09:30:00")));
        f.service->itemChanged(c);
        QCOMPARE(f.alarm->armedAt, at("2024-03-05 09:30:01"));

        Editing::deleteItem(f, c, nullptr);
        f.service->itemsRemoved();
        QCOMPARE(f.alarm->armedAt, at("2024-03-05 10:30:01"));

        Editing::deleteItem(f, f["a"], nullptr);
        Clock::setFixed(at("2024-03-05 10:30:01"));
        QVERIFY(f.alarm->fire());
        QCOMPARE(due.count(), 1);
        QCOMPARE(f.dueNames(due, 0), QStringList({"b"}));
        QVERIFY(!f.alarm->armed);
        QSignalSpy dismissed(f.service.get(), &ReminderService::remindersDismissed);
        f.service->dismissAll();
        QCOMPARE(dismissed.count(), 1);
        QVERIFY(f.service->manager().shown().empty());
    }

    void wallClockAlarm_data()
    {
        QTest::addColumn<bool>("polling");
        QTest::newRow("timerfd") << false;
        QTest::newRow("polling") << true;
    }
    void wallClockAlarm()
    {
        QFETCH(bool, polling);
        WallClockAlarm alarm(polling ? WallClockAlarm::Backend::Polling : WallClockAlarm::Backend::Best);
        QCOMPARE(alarm.usesTimerFd(), !polling);
        QSignalSpy fired(&alarm, &WakeAlarm::fired);

        alarm.arm(QDateTime::currentDateTime().addSecs(-5));
        QCOMPARE(fired.count(), 0); // a time past fires once control is back in the loop
        QTRY_COMPARE_WITH_TIMEOUT(fired.count(), 1, 2000);
        QVERIFY(!alarm.isArmed());

        alarm.arm(QDateTime::currentDateTime().addMSecs(300));
        alarm.disarm();
        QVERIFY(!alarm.isArmed());
        alarm.arm(QDateTime::currentDateTime().addMSecs(400));
        alarm.arm(QDateTime::currentDateTime().addSecs(3600));
        QTest::qWait(700);
        QCOMPARE(fired.count(), 1);

        const QDateTime target = QDateTime::currentDateTime().addMSecs(800);
        alarm.arm(target);
        QTRY_COMPARE_WITH_TIMEOUT(fired.count(), 2, 5000);
        QVERIFY(QDateTime::currentDateTime() >= target);
    }
};

QTEST_GUILESS_MAIN(TestReminderService)
#include "tst_reminderservice.moc"
