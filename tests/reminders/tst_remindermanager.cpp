#include "reminders/remindermanager.h"
#include "reminders/remindertimeline.h"
#include "support/outline.h"

#include "model/editing.h"

#include <QTest>

namespace {
using Outline::at;

struct Fixture : Outline::Doc {
    explicit Fixture(const char *outline) : Outline::Doc(outline) { manager.load(); }
    ReminderManager manager{this};
};

QString describe(const ReminderManager::Wake &wake)
{
    return wake.kind == ReminderManager::Wake::At    ? wake.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))
           : wake.kind == ReminderManager::Wake::Now ? QStringLiteral("now")
                                                     : QStringLiteral("none");
}

QString describe(const std::vector<ReminderTimeline::Bubble> &bubbles)
{
    QStringList out;
    for (const ReminderTimeline::Bubble &bubble : bubbles)
        out.append(bubble.wake.toString(QStringLiteral("MM-dd HH:mm ")) + Outline::names(bubble.items).join(u','));
    return out.join(QStringLiteral("; "));
}

} // namespace

class TestReminderManager : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void reschedule()
    {
        Fixture pending("a | rem=2024-03-05T10:00\n  b | rem0=2024-03-01T09:00\n  c | rem=2024-03-01T09:00\nd\n"
                        "e | rem=2024-02-01T08:00\n");
        QCOMPARE(Outline::names(pending.manager.reminders()), QStringList({"a", "c", "e"})); // in tree order

        const struct {
            const char *outline, *now, *wake;
        } cases[] = {
            {"a | rem0=2024-03-05T10:00\nb", "2024-03-05 09:00:00", "none"},
            // The last qualifying item in list order wins, not the earliest.
            {"a | rem=2024-03-05T10:00\nb | rem=2024-03-07T12:00\nc | rem=2024-03-06T08:00", "2024-03-05 09:00:00",
             "2024-03-06 08:00:01"},
            {"a | rem=2024-03-05T10:00\nb | rem=2024-03-01T12:00", "2024-03-05 09:00:00", "now"},
            {"a | rem=2024-03-05T10:00", "2024-03-05 10:00:00.200", "now"}, // under a second ahead
            {"a | rem=2024-03-05T10:00", "2024-03-05 10:00:00", "2024-03-05 10:00:01"},
            {"a | rem=2024-03-15T09:00", "2024-03-05 09:00:00", "none"}, // beyond the ten-day horizon
            {"a | rem=2024-03-15T08:59", "2024-03-05 09:00:00", "2024-03-15 08:59:01"},
            {"a | rem=2024-03-06T10:00\nb | rem=2024-04-01T10:00", "2024-03-05 09:00:00", "2024-03-06 10:00:01"},
            {"a | rem=3999-12-31T23:59", "3999-12-31 20:00:00", "none"}, // the last minute of 3999 never wakes
            {"a | rem=3999-12-31T23:58", "3999-12-31 20:00:00", "3999-12-31 23:58:01"},
        };
        for (const auto &c : cases) {
            Fixture f(c.outline);
            QCOMPARE(describe(f.manager.reschedule(at(c.now))), QLatin1String(c.wake));
        }
    }

    void checkDue()
    {
        // a at 10:00, b at 10:01, c dismissed at 09:00; now counts as second 59.
        const struct {
            const char *now;
            QStringList due;
        } cases[] = {{"2024-03-05 09:59:59", {}},
                     {"2024-03-05 10:00:00", {"a"}},
                     {"2024-03-05 10:01:00", {"b", "a"}},
                     {"2024-03-06 00:00:00", {"b", "a"}}};
        for (const auto &c : cases) {
            Fixture f("b | rem=2024-03-05T10:01\nc | rem0=2024-03-05T09:00\na | rem=2024-03-05T10:00\n");
            QCOMPARE(Outline::names(f.manager.checkDue(at(c.now))), c.due);
            QCOMPARE(Outline::names(f.manager.shown()), c.due);
        }
    }

    void shownItemsWaitForDismissAll()
    {
        Fixture f("a | rem=2024-03-05T10:00\nb | rem=2024-03-05T11:00\nc | rem=2024-03-06T10:00\n");
        QCOMPARE(Outline::names(f.manager.checkDue(at("2024-03-05 10:30:00"))), QStringList({"a"}));
        QVERIFY(f.manager.checkDue(at("2024-03-05 10:45:00")).empty());
        // A shown item is no candidate either: c is the last one left.
        QCOMPARE(describe(f.manager.reschedule(at("2024-03-05 10:45:00"))), QStringLiteral("2024-03-06 10:00:01"));
        QCOMPARE(Outline::names(f.manager.checkDue(at("2024-03-05 11:00:00"))), QStringList({"b"}));

        f.manager.dismissAll(); // the shown ones only, their time kept and their seconds field 0
        QCOMPARE(Outline::names(f.manager.reminders()), QStringList({"c"}));
        QCOMPARE(f["a"]->reminderTime(), Outline::date(QStringLiteral("2024-03-05T10:00")));
        QCOMPARE(f["c"]->reminderTime().second, quint16(1));
        QVERIFY(f.manager.shown().empty() && f.manager.checkDue(at("2024-03-05 12:00:00")).empty());
    }

    void editsJoinAtTheEnd()
    {
        Fixture f("a | rem=2024-03-05T10:00\nb\nc | rem=2024-03-05T11:00\n");
        Item *a = f["a"], *b = f["b"];
        a->setReminderTime(a->reminderTime());
        QVERIFY(!f.manager.itemChanged(a));
        b->setReminderTime(ReminderManager::pendingAt(at("2024-03-05 09:00:42")));
        QCOMPARE(b->reminderTime().toDateTime(), at("2024-03-05 09:00:01"));
        QVERIFY(f.manager.itemChanged(b));
        QCOMPARE(Outline::names(f.manager.reminders()), QStringList({"a", "c", "b"}));

        // A shown item whose reminder is moved is a new reminder: it can show again.
        QCOMPARE(Outline::names(f.manager.checkDue(at("2024-03-05 10:00:00"))), QStringList({"a", "b"}));
        a->setReminderTime(ReminderManager::pendingAt(at("2024-03-05 12:00:00")));
        QVERIFY(f.manager.itemChanged(a));
        QCOMPARE(Outline::names(f.manager.reminders()), QStringList({"c", "b", "a"}));
        QCOMPARE(Outline::names(f.manager.shown()), QStringList({"b"}));
        QCOMPARE(Outline::names(f.manager.checkDue(at("2024-03-05 12:00:00"))), QStringList({"c", "a"}));

        b->setReminderTime({});
        QVERIFY(f.manager.itemChanged(b));
        QCOMPARE(Outline::names(f.manager.reminders()), QStringList({"c", "a"}));
        QCOMPARE(Outline::names(f.manager.shown()), QStringList({"c", "a"}));

        // A pasted branch joins top first, in tree order.
        auto *top = new Item(QStringLiteral("t"));
        Outline::build(top, "u | rem=2024-03-08T10:00\nv | rem0=2024-03-08T10:00\nw | rem=2024-03-07T10:00\n");
        top->setReminderTime(ReminderManager::pendingAt(at("2024-03-09 10:00:00")));
        f.root()->appendChild(top);
        QVERIFY(f.manager.branchAdded(top) && !f.manager.branchAdded(nullptr));
        QCOMPARE(Outline::names(f.manager.reminders()), QStringList({"c", "a", "t", "u", "w"}));
    }

    void deletedItemsLeaveAtOnce()
    {
        Fixture f("a | rem=2024-03-05T10:00\n  a1 | rem=2024-03-05T10:30\nb | rem=2024-03-05T09:00\n"
                  "c | rem=2024-03-05T11:00\n");
        QCOMPARE(Outline::names(f.manager.checkDue(at("2024-03-05 09:00:00"))), QStringList({"b"}));
        Editing::deleteItem(f, f["a"], nullptr);
        Editing::deleteItem(f, f["b"], nullptr);
        // Nothing told the manager yet: the dead entries are skipped all the same.
        QCOMPARE(Outline::names(f.manager.reminders()), QStringList({"c"}));
        QCOMPARE(describe(f.manager.reschedule(at("2024-03-05 09:30:00"))), QStringLiteral("2024-03-05 11:00:01"));
        QCOMPARE(Outline::names(f.manager.checkDue(at("2024-03-05 12:00:00"))), QStringList({"c"}));
        QVERIFY(f.manager.purge() && !f.manager.purge());

        Fixture g("x | rem=2024-03-05T10:00\n");
        std::unique_ptr<Item> taken(g.root()->takeChild(0));
        QVERIFY(g.manager.checkDue(at("2024-03-05 12:00:00")).empty());
    }

    void timeline()
    {
        // Opened at 2024-03-01 09:00:00, run until the given time.
        const struct {
            const char *outline, *until, *bubbles;
        } cases[] = {
            {"a | rem=2024-03-01T10:00", "2024-03-02 00:00:00", "03-01 10:00 a"},
            {"a | rem=2024-02-01T10:00", "2024-03-02 00:00:00", "03-01 09:00 a"}, // already past: at once
            {"a | rem=2024-03-01T10:00", "2024-03-01 10:00:00", ""},
            // Out of reach until the timer moves the horizon on (03-11 09:00), then woken on time.
            {"a | rem=2024-03-16T10:00", "2024-04-01 00:00:00", "03-16 10:00 a"},
            // b is last in the list, so a (an hour earlier) waits for it; c comes after both and gets its own bubble.
            {"a | rem=2024-03-01T10:00\nc | rem=2024-03-01T13:00\nb | rem=2024-03-01T11:00", "2024-03-02 00:00:00",
             "03-01 11:00 a,b; 03-01 13:00 c"},
            {"a | rem=2024-03-01T10:00\nb | rem=2024-03-01T09:30", "2024-04-30 00:00:00",
             "03-01 09:30 b; 03-01 10:00 a"},
        };
        for (const auto &c : cases) {
            Fixture f(c.outline);
            QCOMPARE(describe(ReminderTimeline::run(f.manager, at("2024-03-01 09:00:00"), at(c.until))),
                     QLatin1String(c.bubbles));
        }
    }
};

QTEST_GUILESS_MAIN(TestReminderManager)
#include "tst_remindermanager.moc"
