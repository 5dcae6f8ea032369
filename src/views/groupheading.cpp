#include "views/groupheading.h"

GroupHeading::GroupHeading(const QString &text, quint16 icon, const Item *first)
    : m_text(text), m_values(std::make_unique<Item>()), m_icon(icon)
{
    m_values->setPriority(first->priority());
    m_values->setCategory(first->category());
    m_values->setDueDate(first->dueDate());
    m_values->storeProgress(first->progress());
}

GroupHeading::~GroupHeading() = default;

quint16 GroupHeading::progress() const
{
    if (m_items.empty())
        return 0;
    quint64 sum = 0;
    for (const Item *item : m_items)
        sum += item->progress();
    return quint16(sum / quint64(m_items.size()));
}

Progress::Statistics GroupHeading::statistics() const
{
    Progress::Statistics stats;
    for (const Item *item : m_items) {
        const quint16 p = item->progress();
        if (p == 0)
            ++stats.notStarted;
        else if (p == 100)
            ++stats.completed;
        else if (p < 100)
            ++stats.started;
    }
    return stats;
}
