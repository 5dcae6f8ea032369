#include "reminders/remindermanager.h"

#include "model/document.h"
#include "model/item.h"
#include "model/treewalker.h"

#include <algorithm>
#include <optional>

namespace {

constexpr qint64 TicksPerSecond = 10'000'000; // file time counts 100 ns

std::optional<qint64> fileTimeOf(const SystemTime &time)
{
    qint64 ticks = 0;
    if (!time.toFileTime(&ticks))
        return std::nullopt;
    return ticks;
}

qint64 fileTimeOf(const QDateTime &time)
{
    SystemTime st = SystemTime::fromDateTime(time);
    qint64 ticks = 0;
    st.toFileTime(&ticks);
    return ticks;
}

// A reminder at or after this moment is never scheduled.
qint64 latestReminder()
{
    static const qint64 latest = *fileTimeOf(SystemTime{3999, 12, 0, 31, 23, 59, 0, 0});
    return latest;
}

} // namespace

ReminderManager::ReminderManager(const Document *document) : m_document(document) {}

bool ReminderManager::isPending(const SystemTime &reminder)
{
    return reminder.second == 1 && reminder.hasDate();
}

SystemTime ReminderManager::pendingAt(const QDateTime &time)
{
    SystemTime st = SystemTime::fromDateTime(time);
    st.second = 1;
    st.milliseconds = 0;
    return st;
}

void ReminderManager::load()
{
    m_list.clear();
    m_shown.clear();
    TreeWalker walker(m_document->root());
    while (Item *item = walker.next()) {
        const SystemTime reminder = item->reminderTime();
        if (isPending(reminder))
            m_list.push_back({item->handle(), reminder});
    }
}

bool ReminderManager::itemChanged(Item *item)
{
    if (!item || !m_document->liveItem(item->handle()))
        return false;
    const quint32 handle = item->handle();
    const SystemTime reminder = item->reminderTime();
    const auto it = std::find_if(m_list.begin(), m_list.end(), [handle](const Entry &e) { return e.handle == handle; });
    if (it != m_list.end() && it->reminder == reminder)
        return false;
    bool changed = forget(handle);
    if (isPending(reminder)) {
        m_list.push_back({handle, reminder});
        changed = true;
    }
    return changed;
}

bool ReminderManager::branchAdded(Item *top)
{
    if (!top)
        return false;
    bool changed = itemChanged(top);
    TreeWalker walker(top);
    while (Item *item = walker.next()) {
        if (isPending(item->reminderTime()))
            changed = itemChanged(item) || changed;
    }
    return changed;
}

bool ReminderManager::purge()
{
    const size_t before = m_list.size() + m_shown.size();
    std::erase_if(m_list, [this](const Entry &e) { return !resolve(e.handle); });
    std::erase_if(m_shown, [this](quint32 handle) { return !resolve(handle); });
    return m_list.size() + m_shown.size() != before;
}

void ReminderManager::dismiss(Item *item)
{
    if (!item)
        return;
    SystemTime reminder = item->reminderTime();
    if (isPending(reminder)) {
        reminder.second = 0;
        item->setReminderTime(reminder);
    }
    if (item->hasHandle())
        forget(item->handle());
}

ReminderManager::Wake ReminderManager::reschedule(const QDateTime &now)
{
    m_lastScheduled = now;
    const qint64 nowTicks = fileTimeOf(now);
    const qint64 horizon = nowTicks + HorizonSeconds * TicksPerSecond;
    std::optional<qint64> candidate;
    SystemTime candidateTime;
    for (const Entry &entry : m_list) {
        const Item *item = resolve(entry.handle);
        if (!item || isShown(entry.handle))
            continue;
        const SystemTime reminder = item->reminderTime();
        if (!isPending(reminder))
            continue;
        const std::optional<qint64> at = fileTimeOf(reminder);
        // No "earliest" test: each qualifying Item replaces the one before.
        if (at && *at < latestReminder() && *at < horizon) {
            candidate = at;
            candidateTime = reminder;
        }
    }
    if (!candidate)
        return {};
    // Whole seconds, truncated: a candidate less than a second ahead is due now.
    const qint64 delay = (*candidate - nowTicks) / TicksPerSecond;
    if (delay * 1000 <= 0)
        return {Wake::Now, now};
    return {Wake::At, candidateTime.toDateTime()};
}

std::vector<Item *> ReminderManager::checkDue(const QDateTime &now)
{
    SystemTime late = SystemTime::fromDateTime(now);
    late.second = 59; // a reminder for 10:00 is due from 10:00:00 on
    const std::optional<qint64> nowTicks = fileTimeOf(late);
    std::vector<Item *> due;
    if (!nowTicks)
        return due;
    for (const Entry &entry : m_list) {
        Item *item = resolve(entry.handle);
        if (!item || isShown(entry.handle))
            continue;
        const SystemTime reminder = item->reminderTime();
        if (!isPending(reminder))
            continue;
        const std::optional<qint64> at = fileTimeOf(reminder);
        if (at && *at < *nowTicks) {
            due.push_back(item);
            m_shown.push_back(entry.handle);
        }
    }
    return due;
}

void ReminderManager::dismissAll()
{
    for (quint32 handle : m_shown) {
        if (Item *item = resolve(handle)) {
            SystemTime reminder = item->reminderTime();
            reminder.second = 0;
            item->setReminderTime(reminder);
        }
    }
    m_shown.clear();
    std::erase_if(m_list, [this](const Entry &e) {
        const Item *item = resolve(e.handle);
        return !item || !isPending(item->reminderTime());
    });
}

std::vector<Item *> ReminderManager::reminders() const
{
    std::vector<Item *> items;
    for (const Entry &entry : m_list) {
        if (Item *item = resolve(entry.handle))
            items.push_back(item);
    }
    return items;
}

std::vector<Item *> ReminderManager::shown() const
{
    std::vector<Item *> items;
    for (quint32 handle : m_shown) {
        if (Item *item = resolve(handle))
            items.push_back(item);
    }
    return items;
}

Item *ReminderManager::resolve(quint32 handle) const
{
    return m_document->liveItem(handle);
}

bool ReminderManager::isShown(quint32 handle) const
{
    return std::find(m_shown.begin(), m_shown.end(), handle) != m_shown.end();
}

bool ReminderManager::forget(quint32 handle)
{
    const size_t before = m_list.size() + m_shown.size();
    std::erase_if(m_list, [handle](const Entry &e) { return e.handle == handle; });
    std::erase(m_shown, handle);
    return m_list.size() + m_shown.size() != before;
}
