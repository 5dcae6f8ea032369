#pragma once

#include <QColor>
#include <QtGlobal>

/// The 36 item colours. Index 0 is "the default colour" (the palette's text
/// colour); 1 to 35 are fixed. The table is kept as the 0x00BBGGRR values the
/// file format's colour indices were chosen against.
namespace ColourTable {

inline constexpr int Count = 36;

/// The 0x00BBGGRR value of an entry; 0 for entry 0 and for indices out of range.
quint32 colorRef(int index);
/// The entry as a QColor; invalid for entry 0 and for indices out of range.
QColor colour(int index);
QColor fromColorRef(quint32 colorRef);

/// The text colour on a selected row whose background is the given entry
/// value. The rule is uneven (a pale yellow range, then a plain threshold,
/// then pure blues) and is kept as it is.
QColor contrastText(quint32 colorRef);

} // namespace ColourTable
