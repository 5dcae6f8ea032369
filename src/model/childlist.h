#pragma once

#include <QtGlobal>
#include <span>
#include <vector>

class Item;

/// The children of a node: one block holding a count, a capacity and the
/// pointers, so a node carries a single pointer and a leaf, as most nodes
/// are, nothing more.
class ChildList {
public:
    ChildList() = default;
    ~ChildList() { release(); }
    ChildList(const ChildList &) = delete;
    ChildList &operator=(const ChildList &) = delete;

    qsizetype size() const { return m_block ? qsizetype(m_block->size) : 0; }
    bool empty() const { return size() == 0; }
    Item *operator[](qsizetype index) const { return items()[index]; }
    std::span<Item *const> view() const { return {items(), size_t(size())}; }

    /// Inserts at position (size() appends). Throws std::bad_alloc when the
    /// list cannot grow, and then is unchanged.
    void insert(qsizetype position, Item *item);
    void erase(qsizetype position);
    /// The same number of Items in another order, or any Items at all.
    void assign(const std::vector<Item *> &items);
    /// Moves the whole list out; this one is left empty.
    std::vector<Item *> take();
    void clear() { release(); }

private:
    struct Header {
        quint32 size;
        quint32 capacity;
    };
    Item **items() const { return m_block ? reinterpret_cast<Item **>(m_block + 1) : nullptr; }
    void reserve(qsizetype capacity);
    void release();

    Header *m_block = nullptr;
};
