#pragma once

#include "model/systemtime.h"

#include <QString>
#include <QtGlobal>

/// What "Find" looks for: the criteria the user filled in, kept between
/// searches to preset the next one. Only the criteria whose bit is in flags
/// take part; an item matches when every one of them holds.
struct FindCriteria {
    enum Bit : quint32 {
        Name = 0x001,
        Priority = 0x002,
        Category = 0x004,
        DueDate = 0x008,
        NotePhrase = 0x010,
        Progress = 0x020,
        Colour = 0x040,
        Italic = 0x080,
        ShowIcon = 0x100,
    };
    enum DateOperator : quint8 { LessThan = 0, EqualTo = 1, GreaterThan = 2 };

    quint32 flags = 0;
    bool caseInsensitive = false;
    DateOperator dateOperator = EqualTo;
    /// The chosen day; its time of day is not used.
    SystemTime date;
    /// 100 when "Completed" is checked, 0 when it is cleared.
    quint16 progress = 0;
    quint16 priority = 10;
    QString name;
    QString category;
    QString notePhrase;
    quint16 colour = 0;
    bool italic = false;
    bool showIcon = true;

    bool has(Bit bit) const { return flags & bit; }
};
