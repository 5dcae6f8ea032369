#pragma once

#include "rows/rowgeometry.h"

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QPixmap>
#include <QString>

class Item;
class QPainter;
class TreeNode;

/// The values a row's look depends on: the display settings and the open
/// document's display flags.
struct RowStyle {
    /// Settings Flags bits that change rows.
    enum FlagBits : quint32 {
        NormalFontForCompleted = 1u << 5,
        BoldFont = 1u << 6,
        GreyCompleted = 1u << 7,
        CompactMode = 1u << 8,
    };
    quint16 fontSize = 80; ///< the FontSize setting, in tenths of a point before desktop scaling
    quint32 flags = 3;
    quint16 prgColour = 1; ///< colour table index of progress bars; 0 is the text colour
    bool showDueDate = false;
    bool showStatistics = false;
    bool clearType = true;
};

/// Draws item rows (and the title rows of the root and the group headings)
/// from left to right: due date, indentation, expand glyph, status control,
/// icon, then the name in the item's colour and font, with the statistics.
class RowPainter {
public:
    /// Row state bits.
    enum State : int {
        Focused = 1 << 0,  ///< draw a focus rectangle
        Flat = 1 << 1,     ///< no indentation, no glyph; the glyph column stays empty
        Selected = 1 << 3, ///< a coloured item's colour becomes the background
        AltGlyph = 1 << 4, ///< the third expand glyph instead of the two usual ones
    };
    /// The glyph images: 1 collapsed, 2 expanded, 3 alternative, 4 and 5 the
    /// clear and ticked check box, 6, 7 and 8 the automatic check box at 0,
    /// between 1 and 99, and at 100.
    enum Glyph : int {
        GlyphCollapsed = 1,
        GlyphExpanded = 2,
        GlyphAlternative = 3,
        BoxClear = 4,
        BoxTicked = 5,
        AutoBoxClear = 6,
        AutoBoxPartial = 7,
        AutoBoxTicked = 8,
    };

    RowPainter(const RowStyle &style, const QPalette &palette, qreal devicePixelRatio = 1.0);

    const RowStyle &style() const { return m_style; }
    const QPalette &palette() const { return m_palette; }
    /// The column width w of glyphs, check boxes and icons.
    int columnWidth() const { return m_columnWidth; }
    /// Every row is one line: the icon height plus one.
    int rowHeight() const { return m_columnWidth + 1; }
    int dateWidth() const { return m_dateWidth; }
    /// The list font for an item: weight, italic and strike-out by the rules.
    QFont itemFont(const Item *item) const;
    QFont titleFont() const;

    /// The columns of an item's row, as they are drawn.
    RowGeometry itemGeometry(const QRect &rect, const Item *item, int level, int baseLevel, int state) const;
    /// The columns of a title row (root, group heading): glyph and icon.
    RowGeometry titleGeometry(const QRect &rect, int level, int baseLevel) const;

    void paintItem(QPainter *painter, const QRect &rect, const Item *item, int level, int baseLevel, int state) const;
    /// A title row: the document root or a group heading with its icon.
    void paintTitle(QPainter *painter, const QRect &rect, const QString &text, quint16 image, bool expandable,
                    bool expanded, int level, int baseLevel, int state) const;

    /// The name as drawn, with "[%d,%d,%d]" appended when statistics are on,
    /// the row is not flat and the item has children.
    QString itemText(const Item *item, int state) const;
    /// The 7 characters at most of the due-date column; empty without a date.
    QString dueDateText(const Item *item) const;
    /// Which of images 4 to 8 a check-box item shows.
    static Glyph checkBoxGlyph(const Item *item);
    /// Band i (0 to 63, counted from the bottom) of the progress fill, going
    /// from c1 at the bottom to c2 at the top.
    static QColor bandColour(int band, const QColor &c1, const QColor &c2);
    /// The colour progress bars start from.
    QColor progressColour() const;
    /// Draws a progress bar in the status column whose left is x, on the row
    /// whose top is y.
    void paintProgressBar(QPainter *painter, int x, int y, const Item *item) const;
    void paintGlyph(QPainter *painter, const QRect &cell, Glyph glyph) const;

private:
    QPixmap glyphPixmap(Glyph glyph) const;

    RowStyle m_style;
    QPalette m_palette;
    qreal m_dpr = 1.0;
    QFont m_font;
    QFont m_dateFont;
    int m_columnWidth = 16;
    int m_dateWidth = 0;
    qreal m_scaleA = 1.0;
    qreal m_scaleB = 1.0;
    mutable QPixmap m_glyphs[9];
};
