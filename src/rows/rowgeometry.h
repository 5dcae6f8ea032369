#pragma once

#include <QPoint>
#include <QRect>

/// Where each part of a row lies, measured from the left edge exactly as the
/// row is drawn, so that a tap is resolved to the part the person saw there.
/// Kept apart from painting so hit-testing needs no pixels.
class RowGeometry {
public:
    /// The part of a row a point falls on.
    enum HitCode : int {
        Outside = 0, ///< not in the row
        Glyph = 1,   ///< the expand glyph column
        Status = 2,  ///< the check box or progress bar column
        Icon = 3,    ///< the icon column
        Text = 4,    ///< anywhere else: the text
        Indent = 5,  ///< in front of the glyph (or a flat row's empty glyph column)
    };

    /// What the layout of one row depends on.
    struct Input {
        QRect rect;        ///< the row's rectangle in the list's viewport
        int level = 1;     ///< depth of the node: 1 for a child of the root
        int baseLevel = 0; ///< depth of the list's top
        bool flat = false; ///< no indentation and no glyph (the column stays)
        bool dateColumn = false;
        int dateWidth = 0;
        int columnWidth = 16;
        bool statusColumn = false; ///< the status type is not "No Status"
        bool iconColumn = false;   ///< the item shows its icon
    };

    explicit RowGeometry(const Input &input);

    QRect dateRect() const { return m_date; }
    QRect glyphRect() const { return m_glyph; }
    /// Empty when the row has no status column.
    QRect statusRect() const { return m_status; }
    /// Empty when the row shows no icon.
    QRect iconRect() const { return m_icon; }
    /// From the end of the icon (plus the gap) to the row's right edge.
    QRect textRect() const { return m_text; }

    HitCode hitTest(const QPoint &point) const;

private:
    QRect m_row;
    QRect m_date;
    QRect m_glyph;
    QRect m_status;
    QRect m_icon;
    QRect m_text;
    int m_glyphLeft = 0;
    bool m_flat = false;
};
