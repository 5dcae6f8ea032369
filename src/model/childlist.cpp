#include "model/childlist.h"

#include <algorithm>
#include <cstring>
#include <new>

void ChildList::reserve(qsizetype capacity)
{
    auto *block = static_cast<Header *>(::operator new(sizeof(Header) + size_t(capacity) * sizeof(Item *)));
    const qsizetype count = size();
    block->size = quint32(count);
    block->capacity = quint32(capacity);
    if (count)
        std::memcpy(reinterpret_cast<Item **>(block + 1), items(), size_t(count) * sizeof(Item *));
    release();
    m_block = block;
}

void ChildList::release()
{
    ::operator delete(m_block);
    m_block = nullptr;
}

void ChildList::insert(qsizetype position, Item *item)
{
    const qsizetype count = size();
    if (!m_block || count == qsizetype(m_block->capacity))
        reserve(count < 4 ? 4 : count * 2);
    Item **list = items();
    std::move_backward(list + position, list + count, list + count + 1);
    list[position] = item;
    ++m_block->size;
}

void ChildList::erase(qsizetype position)
{
    Item **list = items();
    std::move(list + position + 1, list + size(), list + position);
    if (--m_block->size == 0)
        release();
}

void ChildList::assign(const std::vector<Item *> &items)
{
    if (items.empty()) {
        release();
        return;
    }
    if (!m_block || m_block->capacity < items.size()) {
        release();
        reserve(qsizetype(items.size()));
    }
    std::copy(items.begin(), items.end(), this->items());
    m_block->size = quint32(items.size());
}

std::vector<Item *> ChildList::take()
{
    std::vector<Item *> out(items(), items() + size());
    release();
    return out;
}
