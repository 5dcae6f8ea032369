#include "rows/rowgeometry.h"

#include <algorithm>

RowGeometry::RowGeometry(const Input &in) : m_row(in.rect), m_flat(in.flat)
{
    const int top = in.rect.top();
    const int height = in.rect.height();
    const int w = in.columnWidth;
    int x = in.rect.left();
    if (in.dateColumn) {
        m_date = QRect(x, top, in.dateWidth, height);
        x += in.dateWidth;
    }
    if (!in.flat)
        x += std::max(0, in.level - in.baseLevel - 1) * w;
    m_glyphLeft = x;
    m_glyph = QRect(x, top, w, height);
    x += w;
    if (in.statusColumn) {
        m_status = QRect(x, top, w, height);
        x += w;
    }
    if (in.iconColumn) {
        m_icon = QRect(x, top, w, height);
        x += w + 1;
    }
    m_text = QRect(QPoint(x, top), QPoint(std::max(x, in.rect.right()), in.rect.bottom()));
}

RowGeometry::HitCode RowGeometry::hitTest(const QPoint &p) const
{
    if (!m_row.contains(p))
        return Outside;
    if (p.x() < m_glyphLeft)
        return Indent;
    if (p.x() < m_glyph.right() + 1)
        return m_flat ? Indent : Glyph;
    if (!m_status.isEmpty() && p.x() <= m_status.right())
        return Status;
    if (!m_icon.isEmpty() && p.x() <= m_icon.right())
        return Icon;
    return Text;
}
