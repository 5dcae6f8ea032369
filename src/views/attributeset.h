#pragma once

#include <QString>
#include <QtGlobal>

/// The attributes "Apply Attributes..." sets on a branch: only those whose
/// bit is in flags are set.
struct AttributeSet {
    enum Bit : quint32 {
        Priority = 0x001,
        Category = 0x002,
        Icon = 0x004,
        Colour = 0x008,
        /// Progress, and the automatic flag with it.
        Progress = 0x010,
        StatusType = 0x020,
        ShowIcon = 0x040,
        Italic = 0x080,
        Automatic = 0x100,
    };

    quint32 flags = 0;
    quint16 priority = 10;
    QString category;
    quint16 icon = 0;
    quint16 colour = 0;
    quint16 statusType = 1;
    bool italic = false;
    bool showIcon = true;
    quint16 progress = 0;
    /// "Apply to all sub-items": every item below, not only the children.
    bool allSubItems = false;
    bool automatic = false;

    bool has(Bit bit) const { return flags & bit; }
};
