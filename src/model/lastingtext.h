#pragma once

#include <QByteArray>
#include <QString>

/// Texts that last until the process ends, packed into large blocks: a
/// string made here points into a block (fromRawData) and owns no allocation
/// of its own, so a million names and notes read from a file cost no million
/// allocations and headers. Only for a process that keeps its
/// documents until it exits (see Document::keepTreesUntilExit); otherwise
/// copy() gives an ordinary string.
namespace LastingText {

void enable();
/// A string of units UTF-16 units taken from little-endian bytes, which
/// need not be aligned.
QString copy(const uchar *littleEndian, qsizetype units);
/// Bytes, likewise; the copy ends with a zero byte, as a QByteArray's data
/// always does.
QByteArray copyBytes(const uchar *bytes, qsizetype size);

} // namespace LastingText
