#include "rows/colourtable.h"

#include <array>

namespace ColourTable {

namespace {
constexpr std::array<quint32, Count> Table = {
    0x000000, 0xFF0000, 0x800000, 0xFF8000, 0x400000, 0x0000FF, 0x000080, 0xFF00FF, 0xFFAAFF,
    0xC08080, 0x400040, 0xFFFF80, 0x0080FF, 0x004080, 0x00FF00, 0x008000, 0x808040, 0x008080,
    0x00F0F0, 0xF0C6B9, 0xFF8080, 0xC080FF, 0x66CCFF, 0x996666, 0xFFE2B4, 0x33CC66, 0xB2FFB2,
    0xFFCCCC, 0xB4338E, 0x81608E, 0x9E34B4, 0x0082D4, 0x7ECA7E, 0x646464, 0x7646FA, 0x004000,
};
} // namespace

quint32 colorRef(int index)
{
    return index > 0 && index < Count ? Table[size_t(index)] : 0;
}

QColor fromColorRef(quint32 c)
{
    return QColor(int(c & 0xFF), int((c >> 8) & 0xFF), int((c >> 16) & 0xFF));
}

QColor colour(int index)
{
    if (index <= 0 || index >= Count)
        return QColor();
    return fromColorRef(Table[size_t(index)]);
}

QColor contrastText(quint32 c)
{
    if (c >= 0x00F0F0 && c < 0x010000)
        return Qt::black;
    if (c < 0xC0C0C0)
        return Qt::white;
    if ((c & 0xFF) != 0 || (c & 0xFF00) != 0)
        return Qt::black;
    return Qt::white;
}

} // namespace ColourTable
