#include "views/groupheading.h"

#include "views/grouporder.h"

GroupHeading::GroupHeading(const QString &text, quint16 icon, const Item *first)
    : m_text(text), m_values(std::make_unique<Item>()), m_icon(icon)
{
    m_values->setPriority(first->priority());
    m_values->setCategory(first->category());
    m_values->setDueDate(first->dueDate());
    m_values->storeProgress(first->progress());
}

GroupHeading::~GroupHeading() = default;

const std::vector<Item *> &GroupHeading::items() const
{
    if (!m_ordered) {
        GroupOrder::sort(m_items, m_orderKey, m_ascending);
        m_ordered = true;
    }
    return m_items;
}

void GroupHeading::setOrder(quint16 key, bool ascending)
{
    m_orderKey = key;
    m_ascending = ascending;
    m_ordered = false;
}

quint16 GroupHeading::progress() const
{
    return Progress::mean(m_items);
}

Progress::Statistics GroupHeading::statistics() const
{
    return Progress::statistics(m_items);
}
