#include "rows/iconset.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>
#include <array>

namespace {

enum Shape {
    Page,
    Folder,
    Star,
    Check,
    Bulb,
    Person,
    Phone,
    Mail,
    Globe,
    Flag,
    Tag,
    Calendar,
    Pie,
    Clock,
    Heart,
    Warning,
    Pin,
    Book,
    Key,
    House,
    ShapeCount
};

constexpr std::array<const char *, ShapeCount> ShapeNames = {
    "Note", "Folder",   "Star",     "Tick",  "Idea",  "Person",  "Phone", "Mail", "Web", "Flag",
    "Tag",  "Calendar", "Progress", "Clock", "Heart", "Warning", "Pin",   "Book", "Key", "Home",
};

// Each shape has its natural colour for the first round of numbers; later
// rounds shift the hue so neighbouring numbers stay distinguishable.
constexpr std::array<QRgb, ShapeCount> BaseColours = {
    0xff5b7fa6, 0xffd9a43a, 0xffe8b923, 0xff3d9a4a, 0xfff0c419, 0xff4f7cc2, 0xff5a6b7b,
    0xff3a7dc9, 0xff2f8fb5, 0xffd2463c, 0xff8a5cc2, 0xffc0443a, 0xff2e9a78, 0xff4a6fa5,
    0xffd94a6a, 0xffe0a020, 0xffc8403a, 0xff6b4aa5, 0xffb08a2a, 0xff3f8a5a,
};
constexpr int ColourRounds = 8;

QColor colourFor(int shape, int round)
{
    QColor c = QColor::fromRgb(BaseColours[size_t(shape)]);
    if (round == 0)
        return c;
    float h, s, v;
    c.getHsvF(&h, &s, &v);
    h = std::fmod(h + float(round) / float(ColourRounds), 1.0f);
    return QColor::fromHsvF(h, s, v);
}

void drawShape(QPainter &p, int shape, const QColor &fill, qreal s)
{
    const QColor line = fill.darker(160);
    p.setPen(QPen(line, s / 16.0 * 1.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(fill);
    auto r = [s](qreal x, qreal y, qreal w, qreal h) { return QRectF(x * s / 16, y * s / 16, w * s / 16, h * s / 16); };
    auto pt = [s](qreal x, qreal y) { return QPointF(x * s / 16, y * s / 16); };
    switch (shape) {
    case Page: {
        p.setBrush(Qt::white);
        QPainterPath path(pt(3, 1.5));
        path.lineTo(pt(10, 1.5));
        path.lineTo(pt(13, 4.5));
        path.lineTo(pt(13, 14.5));
        path.lineTo(pt(3, 14.5));
        path.closeSubpath();
        p.drawPath(path);
        p.setPen(QPen(fill, s / 16.0));
        for (int y = 6; y <= 12; y += 2)
            p.drawLine(pt(5, y), pt(11, y));
        break;
    }
    case Folder: {
        QPainterPath path(pt(1.5, 3.5));
        path.lineTo(pt(6, 3.5));
        path.lineTo(pt(7.5, 5));
        path.lineTo(pt(14.5, 5));
        path.lineTo(pt(14.5, 13.5));
        path.lineTo(pt(1.5, 13.5));
        path.closeSubpath();
        p.drawPath(path);
        p.setBrush(fill.lighter(125));
        p.drawRect(r(1.5, 7, 13, 6.5));
        break;
    }
    case Star: {
        QPolygonF poly;
        for (int i = 0; i < 10; ++i) {
            const qreal a = -M_PI / 2 + i * M_PI / 5;
            const qreal rad = (i % 2 ? 3.0 : 7.0);
            poly << pt(8 + rad * std::cos(a), 8.5 + rad * std::sin(a));
        }
        p.drawPolygon(poly);
        break;
    }
    case Check: {
        p.drawRoundedRect(r(1.5, 1.5, 13, 13), s / 8, s / 8);
        p.setPen(QPen(Qt::white, s / 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPolyline(QPolygonF() << pt(4.5, 8) << pt(7, 10.5) << pt(11.5, 5));
        break;
    }
    case Bulb: {
        p.drawEllipse(r(3.5, 1, 9, 9));
        p.setBrush(QColor(0x80, 0x80, 0x80));
        p.setPen(QPen(QColor(0x60, 0x60, 0x60), s / 16));
        p.drawRect(r(6, 10, 4, 4));
        break;
    }
    case Person: {
        p.drawEllipse(r(5, 1.5, 6, 6));
        QPainterPath body(pt(2.5, 14.5));
        body.cubicTo(pt(2.5, 8), pt(13.5, 8), pt(13.5, 14.5));
        body.closeSubpath();
        p.drawPath(body);
        break;
    }
    case Phone: {
        p.drawRoundedRect(r(4, 1, 8, 14), s / 10, s / 10);
        p.setBrush(QColor(0xd8, 0xe8, 0xf4));
        p.drawRect(r(5.5, 3, 5, 7));
        p.drawEllipse(r(7, 11.5, 2, 2));
        break;
    }
    case Mail: {
        p.setBrush(fill.lighter(150));
        p.drawRect(r(1.5, 3.5, 13, 9));
        p.drawPolyline(QPolygonF() << pt(1.5, 3.5) << pt(8, 9) << pt(14.5, 3.5));
        break;
    }
    case Globe: {
        p.drawEllipse(r(1.5, 1.5, 13, 13));
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(Qt::white, s / 16));
        p.drawEllipse(r(5, 1.5, 6, 13));
        p.drawLine(pt(1.5, 8), pt(14.5, 8));
        break;
    }
    case Flag: {
        p.setPen(QPen(QColor(0x50, 0x50, 0x50), s / 12, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(pt(3, 1.5), pt(3, 15));
        p.setPen(QPen(line, s / 16));
        QPainterPath path(pt(3.5, 2));
        path.lineTo(pt(14, 2));
        path.lineTo(pt(11, 5.5));
        path.lineTo(pt(14, 9));
        path.lineTo(pt(3.5, 9));
        path.closeSubpath();
        p.drawPath(path);
        break;
    }
    case Tag: {
        QPainterPath path(pt(1.5, 1.5));
        path.lineTo(pt(8, 1.5));
        path.lineTo(pt(14.5, 8));
        path.lineTo(pt(8, 14.5));
        path.lineTo(pt(1.5, 8));
        path.closeSubpath();
        p.drawPath(path);
        p.setBrush(Qt::white);
        p.drawEllipse(r(3.5, 3.5, 3, 3));
        break;
    }
    case Calendar: {
        p.setBrush(Qt::white);
        p.drawRect(r(1.5, 2.5, 13, 12));
        p.setBrush(fill);
        p.drawRect(r(1.5, 2.5, 13, 3.5));
        p.setPen(Qt::NoPen);
        p.setBrush(fill.darker(130));
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                p.drawRect(r(3.5 + x * 3.5, 7.5 + y * 3.3, 2, 2));
        break;
    }
    case Pie: {
        p.setBrush(Qt::white);
        p.drawEllipse(r(1.5, 1.5, 13, 13));
        p.setBrush(fill);
        p.drawPie(r(1.5, 1.5, 13, 13), 90 * 16, -250 * 16);
        break;
    }
    case Clock: {
        p.setBrush(Qt::white);
        p.drawEllipse(r(1.5, 1.5, 13, 13));
        p.setPen(QPen(fill.darker(130), s / 12, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(pt(8, 8), pt(8, 4));
        p.drawLine(pt(8, 8), pt(11, 9.5));
        break;
    }
    case Heart: {
        QPainterPath path(pt(8, 14));
        path.cubicTo(pt(-2, 7), pt(4, -1), pt(8, 4.5));
        path.cubicTo(pt(12, -1), pt(18, 7), pt(8, 14));
        p.drawPath(path);
        break;
    }
    case Warning: {
        p.drawPolygon(QPolygonF() << pt(8, 1.5) << pt(15, 14.5) << pt(1, 14.5));
        p.setPen(QPen(Qt::black, s / 10, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(pt(8, 6), pt(8, 10));
        p.drawPoint(pt(8, 12.5));
        break;
    }
    case Pin: {
        p.drawEllipse(r(3.5, 1.5, 9, 9));
        p.setPen(QPen(QColor(0x50, 0x50, 0x50), s / 12, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(pt(8, 10.5), pt(8, 15));
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(255, 255, 255, 160));
        p.drawEllipse(r(5.5, 3.5, 3, 3));
        break;
    }
    case Book: {
        p.drawRect(r(2.5, 1.5, 11, 13));
        p.setBrush(Qt::white);
        p.drawRect(r(4.5, 1.5, 9, 11));
        p.setPen(QPen(fill, s / 16));
        p.drawLine(pt(6.5, 5), pt(11.5, 5));
        p.drawLine(pt(6.5, 7.5), pt(11.5, 7.5));
        break;
    }
    case Key: {
        p.drawEllipse(r(1.5, 4.5, 7, 7));
        p.drawRect(r(8, 7, 7, 2));
        p.drawRect(r(12, 9, 1.5, 2.5));
        p.setBrush(Qt::white);
        p.drawEllipse(r(3.5, 6.5, 3, 3));
        break;
    }
    case House: {
        p.drawPolygon(QPolygonF() << pt(8, 1.5) << pt(15, 8) << pt(13, 8) << pt(13, 14.5) << pt(3, 14.5) << pt(3, 8)
                                  << pt(1, 8));
        p.setBrush(Qt::white);
        p.drawRect(r(6.5, 9.5, 3, 5));
        break;
    }
    default:
        break;
    }
}

} // namespace

IconSet &IconSet::instance()
{
    static IconSet set;
    return set;
}

int IconSet::distinctCount()
{
    return ShapeCount * ColourRounds;
}

QString IconSet::name(quint16 image)
{
    const int shape = image % ShapeCount;
    const int round = (image / ShapeCount) % ColourRounds;
    QString text = QString::fromLatin1(ShapeNames[size_t(shape)]);
    return round ? QStringLiteral("%1 %2").arg(text).arg(round + 1) : text;
}

QPixmap IconSet::icon(quint16 image, int size, qreal dpr)
{
    const quint64 key = quint64(image) | quint64(size) << 16 | quint64(qRound(dpr * 100)) << 32;
    auto it = m_cache.constFind(key);
    if (it != m_cache.constEnd())
        return *it;
    QPixmap pixmap(QSize(size, size) * dpr);
    pixmap.setDevicePixelRatio(dpr);
    pixmap.fill(Qt::transparent);
    {
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        const int shape = image % ShapeCount;
        drawShape(p, shape, colourFor(shape, (image / ShapeCount) % ColourRounds), size);
    }
    m_cache.insert(key, pixmap);
    return pixmap;
}

QPixmap IconSet::linkOverlay(int size, qreal dpr)
{
    const quint64 key = quint64(0xFFFFFF) << 40 | quint64(size) << 16 | quint64(qRound(dpr * 100)) << 32;
    auto it = m_cache.constFind(key);
    if (it != m_cache.constEnd())
        return *it;
    QPixmap pixmap(QSize(size, size) * dpr);
    pixmap.setDevicePixelRatio(dpr);
    pixmap.fill(Qt::transparent);
    {
        // A small chain link in the lower left corner, on a white disc so it
        // reads over any icon.
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        const qreal s = size / 16.0;
        p.setPen(QPen(QColor(0x30, 0x30, 0x30), s * 0.8));
        p.setBrush(Qt::white);
        p.drawEllipse(QRectF(0, 8 * s, 8 * s, 8 * s));
        p.setPen(QPen(QColor(0x1a, 0x5f, 0xb4), s * 1.2, Qt::SolidLine, Qt::RoundCap));
        p.setBrush(Qt::NoBrush);
        p.drawLine(QPointF(2.5 * s, 13.5 * s), QPointF(5.5 * s, 10.5 * s));
        p.drawEllipse(QRectF(1.2 * s, 11.6 * s, 2.6 * s, 2.6 * s));
        p.drawEllipse(QRectF(4.2 * s, 9.2 * s, 2.6 * s, 2.6 * s));
    }
    m_cache.insert(key, pixmap);
    return pixmap;
}
