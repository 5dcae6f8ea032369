#include "rows/rowpainter.h"

#include "model/item.h"
#include "model/progress.h"
#include "rows/colourtable.h"
#include "rows/iconset.h"

#include <QFontMetrics>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace {

// The stored font sizes read small on a desktop screen: scale them so the
// default size 80 gives a 10 point list.
constexpr qreal DesktopFontScale = 1.25;
// The date column holds a buffer of 8 units with its terminator.
constexpr int DateChars = 7;
// The far end of the progress gradient, 0x00BBGGRR.
constexpr quint32 GradientTop = 0xF0FBFF;

QFont listFont(quint16 fontSize, bool bold, bool clearType)
{
    QFont font;
    font.setFamilies({QStringLiteral("Tahoma"), QStringLiteral("DejaVu Sans"), QStringLiteral("Sans Serif")});
    font.setPointSizeF(std::max<qreal>(fontSize, 40) / 10.0 * DesktopFontScale);
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    font.setStyleStrategy(clearType ? QFont::PreferAntialias : QFont::NoAntialias);
    return font;
}

} // namespace

RowPainter::RowPainter(const RowStyle &style, const QPalette &palette, qreal devicePixelRatio)
    : m_style(style), m_palette(palette), m_dpr(devicePixelRatio)
{
    m_font = listFont(style.fontSize, style.flags & RowStyle::BoldFont, style.clearType);
    m_dateFont = m_font;
    m_dateFont.setWeight(QFont::Normal);
    m_dateFont.setPointSizeF(m_font.pointSizeF() * 0.85);
    const QFontMetrics fm(m_font);
    if (style.flags & RowStyle::CompactMode)
        m_columnWidth = 16;
    else
        m_columnWidth = std::max(16, fm.height() + 4);
    // The progress bar's metrics are given for a 17-pixel row; the scale keeps
    // its proportions, centred in taller rows.
    m_scaleA = m_scaleB = qreal(rowHeight()) / 17.0;
    const QFontMetrics dfm(m_dateFont);
    m_dateWidth = dfm.horizontalAdvance(QStringLiteral("00 MMM 00")) + 8;
}

QFont RowPainter::itemFont(const Item *item) const
{
    QFont font = m_font;
    font.setItalic(item->isItalic());
    font.setStrikeOut(item->isComplete() && !(m_style.flags & RowStyle::NormalFontForCompleted));
    return font;
}

QFont RowPainter::titleFont() const
{
    QFont font = m_font;
    font.setWeight(QFont::Bold);
    return font;
}

RowGeometry RowPainter::itemGeometry(const QRect &rect, const Item *item, int level, int baseLevel, int state) const
{
    RowGeometry::Input in;
    in.rect = rect;
    in.level = level;
    in.baseLevel = baseLevel;
    in.flat = state & Flat;
    in.dateColumn = m_style.showDueDate;
    in.dateWidth = m_dateWidth;
    in.columnWidth = m_columnWidth;
    in.statusColumn = item->statusType() != Item::NoStatus;
    in.iconColumn = item->showIcon();
    return RowGeometry(in);
}

RowGeometry RowPainter::titleGeometry(const QRect &rect, int level, int baseLevel) const
{
    RowGeometry::Input in;
    in.rect = rect;
    in.level = std::max(level, baseLevel + 1);
    in.baseLevel = baseLevel;
    in.columnWidth = m_columnWidth;
    in.iconColumn = true;
    return RowGeometry(in);
}

QString RowPainter::itemText(const Item *item, int state) const
{
    QString text = item->name();
    if (m_style.showStatistics && !(state & Flat) && item->hasChildren()) {
        const Progress::Statistics s = Progress::statistics(item);
        text += QStringLiteral(" [%1,%2,%3]").arg(s.notStarted).arg(s.started).arg(s.completed);
    }
    return text;
}

QString RowPainter::dueDateText(const Item *item) const
{
    if (!item->hasDueDate())
        return {};
    const QDate date = item->dueDate().toDate();
    if (!date.isValid())
        return {};
    // A date of another year says which.
    if (date.year() != QDate::currentDate().year())
        return QLocale().toString(date, QStringLiteral("d MMM yy"));
    return QLocale().toString(date, QStringLiteral("d MMM")).left(DateChars);
}

RowPainter::Glyph RowPainter::checkBoxGlyph(const Item *item)
{
    const quint16 p = item->progress();
    if (!item->autoProgress())
        return p == 0 ? BoxClear : BoxTicked;
    if (p == 0)
        return AutoBoxClear;
    return p >= 100 ? AutoBoxTicked : AutoBoxPartial;
}

QColor RowPainter::bandColour(int i, const QColor &c1, const QColor &c2)
{
    auto mix = [i](int a, int b) { return (a * (64 - i) + b * i) >> 6; };
    return QColor(mix(c1.red(), c2.red()), mix(c1.green(), c2.green()), mix(c1.blue(), c2.blue()));
}

QColor RowPainter::progressColour() const
{
    if (m_style.prgColour == 0 || m_style.prgColour >= ColourTable::Count)
        return m_palette.color(QPalette::Active, QPalette::WindowText);
    return ColourTable::colour(m_style.prgColour);
}

void RowPainter::paintProgressBar(QPainter *p, int x, int y, const Item *item) const
{
    const int w = m_columnWidth;
    const int left = x;
    const int top = y + qRound(4 * m_scaleA);
    const int right = x + w;                      // exclusive
    const int bottom = y + qRound(12 * m_scaleB); // exclusive
    p->save();
    p->setRenderHint(QPainter::Antialiasing, false);
    p->setPen(QPen(m_palette.color(QPalette::Active, QPalette::Dark).darker(120), 1));
    p->setBrush(m_palette.color(QPalette::Active, QPalette::Base));
    const QRect outline(left, top, right - left - 1, bottom - top - 1);
    // A manual bar has rounded corners; an automatic one is square.
    if (item->autoProgress())
        p->drawRect(outline);
    else
        p->drawRoundedRect(outline, 2, 2, Qt::AbsoluteSize); // a 4 × 4 corner ellipse

    const int innerLeft = left + 1;
    const int innerTop = top + 1;
    const int innerBottom = bottom - 1;
    const int filled = int(std::min<quint16>(item->progress(), 100)) * (w - 2) / 100;
    const int height = innerBottom - innerTop;
    const QColor c1 = progressColour();
    const QColor c2 = ColourTable::fromColorRef(GradientTop);
    if (filled > 0) {
        for (int i = 0; i < 64; ++i) {
            const int bandBottom = innerBottom - ((height * i) >> 6);
            const int bandTop = innerBottom - ((height * (i + 1)) >> 6);
            if (bandBottom == bandTop)
                continue;
            p->fillRect(QRect(innerLeft, bandTop, filled, bandBottom - bandTop), bandColour(i, c1, c2));
        }
    }
    p->restore();
}

QPixmap RowPainter::glyphPixmap(Glyph glyph) const
{
    QPixmap &cached = m_glyphs[glyph];
    if (!cached.isNull())
        return cached;
    const int w = m_columnWidth;
    QPixmap pm(QSize(w, w) * m_dpr);
    pm.setDevicePixelRatio(m_dpr);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor ink = m_palette.color(QPalette::Active, QPalette::Text);
    const qreal s = w / 16.0;
    if (glyph <= GlyphAlternative) {
        p.setPen(Qt::NoPen);
        p.setBrush(m_palette.color(QPalette::Active, QPalette::Mid).darker(130));
        QPolygonF shape;
        if (glyph == GlyphCollapsed)
            shape << QPointF(6 * s, 4 * s) << QPointF(11 * s, 8 * s) << QPointF(6 * s, 12 * s);
        else if (glyph == GlyphExpanded)
            shape << QPointF(4 * s, 6 * s) << QPointF(12 * s, 6 * s) << QPointF(8 * s, 11 * s);
        if (glyph == GlyphAlternative)
            p.drawEllipse(QPointF(8 * s, 8 * s), 2 * s, 2 * s);
        else
            p.drawPolygon(shape);
        return cached = pm;
    }
    const bool automatic = glyph >= AutoBoxClear;
    const QRectF box(2.5 * s, 2.5 * s, 11 * s, 11 * s);
    p.setPen(QPen(automatic ? QColor(0x4a, 0x6f, 0xa5) : ink.lighter(180), std::max<qreal>(1.0, s)));
    p.setBrush(automatic ? QColor(0xe6, 0xee, 0xf8) : m_palette.color(QPalette::Active, QPalette::Base));
    p.drawRoundedRect(box, 2 * s, 2 * s);
    const QColor tick = automatic ? QColor(0x2a, 0x4f, 0x85) : QColor(0x1f, 0x6f, 0x2f);
    if (glyph == BoxTicked || glyph == AutoBoxTicked) {
        p.setPen(QPen(tick, 2 * s, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPolyline(QPolygonF() << QPointF(5 * s, 8 * s) << QPointF(7.2 * s, 10.5 * s)
                                   << QPointF(11.2 * s, 5.2 * s));
    } else if (glyph == AutoBoxPartial) {
        p.setPen(Qt::NoPen);
        p.setBrush(tick);
        p.drawRect(QRectF(5.5 * s, 5.5 * s, 5 * s, 5 * s));
    }
    return cached = pm;
}

void RowPainter::paintGlyph(QPainter *painter, const QRect &cell, Glyph glyph) const
{
    const int w = m_columnWidth;
    painter->drawPixmap(cell.left(), cell.top() + (cell.height() - w) / 2, glyphPixmap(glyph));
}

void RowPainter::paintItem(QPainter *p, const QRect &rect, const Item *item, int level, int baseLevel, int state) const
{
    const RowGeometry g = itemGeometry(rect, item, level, baseLevel, state);
    const int w = m_columnWidth;
    const QColor base = m_palette.color(QPalette::Active, QPalette::Base);
    const QColor windowText = m_palette.color(QPalette::Active, QPalette::Text);
    p->fillRect(QRect(rect.left(), rect.top(), g.textRect().left() - rect.left(), rect.height()), base);

    if (m_style.showDueDate) {
        const QString date = dueDateText(item);
        if (!date.isEmpty()) {
            p->setFont(m_dateFont);
            p->setPen(windowText);
            p->drawText(g.dateRect().adjusted(2, 0, -4, 0), Qt::AlignVCenter | Qt::AlignRight | Qt::TextSingleLine,
                        date);
        }
    }
    if (!(state & Flat) && item->hasChildren()) {
        Glyph glyph = GlyphCollapsed;
        if (state & AltGlyph)
            glyph = GlyphAlternative;
        else if (item->isExpanded())
            glyph = GlyphExpanded;
        paintGlyph(p, g.glyphRect(), glyph);
    }
    if (item->statusType() == Item::CheckBox)
        paintGlyph(p, g.statusRect(), checkBoxGlyph(item));
    else if (item->statusType() == Item::ProgressBar)
        paintProgressBar(p, g.statusRect().left(), rect.top(), item);
    if (item->showIcon()) {
        const QRect icon = g.iconRect();
        const int y = icon.top() + (icon.height() - w) / 2;
        p->drawPixmap(icon.left(), y, IconSet::instance().icon(item->image(), w, m_dpr));
        if (!item->links().isEmpty())
            p->drawPixmap(icon.left(), y, IconSet::instance().linkOverlay(w, m_dpr));
    }

    // Colours: a coloured item's colour is its text colour, or its background
    // when selected; completed items may be grey.
    QColor background = base;
    QColor text = windowText;
    const bool selected = state & Selected;
    const bool grey = item->isComplete() && (m_style.flags & RowStyle::GreyCompleted);
    if (item->colour() != 0 && item->colour() < ColourTable::Count) {
        if (!selected) {
            text = grey ? m_palette.color(QPalette::Disabled, QPalette::Text) : ColourTable::colour(item->colour());
            // On a dark base a dark colour is lightened, keeping its hue.
            if (!grey && base.lightnessF() < 0.5 && text.lightnessF() < 0.6)
                text = QColor::fromHslF(text.hslHueF(), text.hslSaturationF(), 0.7);
        } else {
            const quint32 ref = ColourTable::colorRef(item->colour());
            background = ColourTable::fromColorRef(ref);
            text = ColourTable::contrastText(ref);
        }
    } else if (selected) {
        background = m_palette.color(QPalette::Active, QPalette::Highlight);
        text = m_palette.color(QPalette::Active, QPalette::HighlightedText);
    } else if (grey) {
        text = m_palette.color(QPalette::Disabled, QPalette::Text);
    }
    const QRect textArea = g.textRect();
    p->fillRect(textArea, background);
    const QRect textRect = textArea.adjusted(2, 0, 0, 0);

    p->setFont(itemFont(item));
    p->setPen(text);
    const QString label = itemText(item, state);
    if (rect.height() == w + 1)
        p->drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, label);
    else
        p->drawText(textRect, Qt::AlignTop | Qt::AlignLeft | Qt::TextWordWrap, label);

    if (state & Focused) {
        p->save();
        p->setRenderHint(QPainter::Antialiasing, false);
        QPen pen(selected ? text : windowText, 1, Qt::DotLine);
        p->setPen(pen);
        p->setBrush(Qt::NoBrush);
        p->drawRect(textArea.adjusted(0, 0, -1, -1));
        p->restore();
    }
}

void RowPainter::paintTitle(QPainter *p, const QRect &rect, const QString &name, quint16 image, bool expandable,
                            bool expanded, int level, int baseLevel, int state) const
{
    const RowGeometry g = titleGeometry(rect, level, baseLevel);
    const bool selected = state & Selected;
    const QColor base = m_palette.color(QPalette::Active, QPalette::Base);
    const QColor band = m_palette.color(QPalette::Active, QPalette::AlternateBase);
    p->fillRect(rect, band.isValid() ? band : base);
    if (expandable)
        paintGlyph(p, g.glyphRect(), expanded ? GlyphExpanded : GlyphCollapsed);
    const QRect icon = g.iconRect();
    const int w = m_columnWidth;
    p->drawPixmap(icon.left(), icon.top() + (icon.height() - w) / 2, IconSet::instance().icon(image, w, m_dpr));
    QRect textArea = g.textRect();
    QColor text = m_palette.color(QPalette::Active, QPalette::Text);
    p->setFont(titleFont());
    if (selected) {
        const int width = QFontMetrics(titleFont()).horizontalAdvance(name) + 8;
        textArea.setWidth(std::min(textArea.width(), width));
        p->fillRect(textArea, m_palette.color(QPalette::Active, QPalette::Highlight));
        text = m_palette.color(QPalette::Active, QPalette::HighlightedText);
    }
    p->setPen(text);
    p->drawText(textArea.adjusted(3, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, name);
    if (state & Focused) {
        p->setPen(QPen(text, 1, Qt::DotLine));
        p->setBrush(Qt::NoBrush);
        p->drawRect(textArea.adjusted(0, 0, -1, -1));
    }
}
