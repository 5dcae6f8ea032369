#include "model/lastingtext.h"

#include <QtEndian>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr qsizetype BlockUnits = qsizetype(1) << 20;
// A longer text gets a string of its own: a block is not wasted on it.
constexpr qsizetype LongestPacked = 4096;

bool g_enabled = false;
// Reachable to the end, so leak checkers see the blocks in use.
std::vector<std::unique_ptr<char16_t[]>> *g_blocks = nullptr;
char16_t *g_next = nullptr;
qsizetype g_left = 0;

void fromLittleEndian(char16_t *to, const uchar *from, qsizetype units)
{
    // memcpy, not a cast: the units need not be aligned in the file.
    std::memcpy(to, from, size_t(units) * 2);
#if Q_BYTE_ORDER == Q_BIG_ENDIAN
    for (qsizetype i = 0; i < units; ++i)
        to[i] = qFromLittleEndian(to[i]);
#endif
}

} // namespace

void LastingText::enable()
{
    g_enabled = true;
}

namespace {

// Room for bytes in the current block, in whole units; null when the text
// is better kept on its own.
char16_t *take(qsizetype units)
{
    if (!g_enabled || units > LongestPacked || units == 0)
        return nullptr;
    if (units > g_left) {
        if (!g_blocks)
            g_blocks = new std::vector<std::unique_ptr<char16_t[]>>;
        g_blocks->push_back(std::make_unique_for_overwrite<char16_t[]>(size_t(BlockUnits)));
        g_next = g_blocks->back().get();
        g_left = BlockUnits;
    }
    char16_t *room = g_next;
    g_next += units;
    g_left -= units;
    return room;
}

} // namespace

QString LastingText::copy(const uchar *littleEndian, qsizetype units)
{
    char16_t *text = take(units);
    if (!text) {
        QString own(units, Qt::Uninitialized);
        fromLittleEndian(reinterpret_cast<char16_t *>(own.data()), littleEndian, units);
        return own;
    }
    fromLittleEndian(text, littleEndian, units);
    return QString::fromRawData(reinterpret_cast<const QChar *>(text), units);
}

QByteArray LastingText::copyBytes(const uchar *bytes, qsizetype size)
{
    auto *room = size > 0 ? reinterpret_cast<char *>(take(size / 2 + 1)) : nullptr;
    if (!room)
        return QByteArray(reinterpret_cast<const char *>(bytes), size);
    std::memcpy(room, bytes, size_t(size));
    room[size] = '\0';
    return QByteArray::fromRawData(room, size);
}
