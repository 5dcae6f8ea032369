#include "shell/widgets/toolbaricons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <functional>

namespace ToolbarIcons {

namespace {

const QColor Ink(0x3a, 0x4a, 0x5e);
const QColor Accent(0x2f, 0x6f, 0xc0);
const QColor Paper(0xfb, 0xfb, 0xf4);

QIcon draw(const std::function<void(QPainter &)> &paint)
{
    QIcon icon;
    for (int size : {16, 24, 32, 48}) {
        QPixmap pm(size, size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        p.scale(size / 32.0, size / 32.0);
        paint(p);
        icon.addPixmap(pm);
    }
    return icon;
}

void pencil(QPainter &p)
{
    p.save();
    p.translate(22, 10);
    p.rotate(45);
    p.setPen(QPen(Ink, 1.2));
    p.setBrush(QColor(0xf2, 0xb1, 0x34));
    p.drawRect(QRectF(-2.5, -4, 5, 16));
    p.setBrush(QColor(0xe8, 0x9a, 0x9a));
    p.drawRect(QRectF(-2.5, -7, 5, 3));
    p.setBrush(QColor(0xf3, 0xdd, 0xb5));
    p.drawPolygon(QPolygonF() << QPointF(-2.5, 12) << QPointF(2.5, 12) << QPointF(0, 17));
    p.restore();
}

} // namespace

QIcon modifyItem()
{
    return draw([](QPainter &p) {
        p.setPen(QPen(Ink, 1.5));
        p.setBrush(Paper);
        p.drawRoundedRect(QRectF(3, 5, 20, 22), 2, 2);
        p.setPen(Qt::NoPen);
        p.setBrush(Accent);
        for (int i = 0; i < 3; ++i) {
            p.drawRect(QRectF(6, 9 + i * 6, 3, 3));
            p.fillRect(QRectF(11, 10 + i * 6, 8, 1.6), Ink);
        }
        pencil(p);
    });
}

QIcon modifyNote()
{
    return draw([](QPainter &p) {
        p.setPen(QPen(Ink, 1.5));
        p.setBrush(QColor(0xff, 0xf3, 0xa6));
        QPainterPath sheet;
        sheet.moveTo(4, 4);
        sheet.lineTo(22, 4);
        sheet.lineTo(22, 21);
        sheet.lineTo(16, 28);
        sheet.lineTo(4, 28);
        sheet.closeSubpath();
        p.drawPath(sheet);
        p.setBrush(QColor(0xe8, 0xd5, 0x6a));
        p.drawPolygon(QPolygonF() << QPointF(16, 28) << QPointF(16, 21) << QPointF(22, 21));
        for (int i = 0; i < 3; ++i)
            p.drawLine(QPointF(8, 10 + i * 4.5), QPointF(18, 10 + i * 4.5));
        pencil(p);
    });
}

QIcon links()
{
    return draw([](QPainter &p) {
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(Accent, 3.2));
        p.save();
        p.translate(16, 16);
        p.rotate(-45);
        p.drawRoundedRect(QRectF(-13, -4.5, 15, 9), 4.5, 4.5);
        p.setPen(QPen(Ink, 3.2));
        p.drawRoundedRect(QRectF(-2, -4.5, 15, 9), 4.5, 4.5);
        p.restore();
    });
}

QIcon branchView()
{
    return draw([](QPainter &p) {
        p.setPen(QPen(Ink, 1.6));
        p.drawLine(QPointF(8, 9), QPointF(8, 24));
        p.drawLine(QPointF(8, 16), QPointF(15, 16));
        p.drawLine(QPointF(8, 24), QPointF(15, 24));
        p.setPen(QPen(Ink, 1.2));
        p.setBrush(Accent);
        p.drawRoundedRect(QRectF(3, 3, 10, 7), 1.5, 1.5);
        p.setBrush(Paper);
        p.drawRoundedRect(QRectF(15, 13, 13, 6), 1.5, 1.5);
        p.drawRoundedRect(QRectF(15, 21, 13, 6), 1.5, 1.5);
    });
}

} // namespace ToolbarIcons
