#include "shell/widgets/colourcombo.h"

#include "rows/colourtable.h"

#include <QPainter>
#include <QPixmap>

namespace {

QIcon swatch(int index, const QColor &defaultColour)
{
    QPixmap pm(36, 14);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    const QColor fill = index == 0 ? defaultColour : ColourTable::colour(index);
    p.setPen(QColor(0x80, 0x80, 0x80));
    p.setBrush(fill);
    p.drawRect(pm.rect().adjusted(0, 0, -1, -1));
    return QIcon(pm);
}

} // namespace

ColourCombo::ColourCombo(bool withAny, QWidget *parent) : QComboBox(parent)
{
    setIconSize(QSize(36, 14));
    if (withAny)
        addItem(QStringLiteral("[Any]"), -1);
    const QColor text = palette().color(QPalette::Text);
    for (int c = 0; c < ColourTable::Count; ++c)
        addItem(swatch(c, text), c == 0 ? QStringLiteral("Default") : QStringLiteral("Colour %1").arg(c), c);
    connect(this, &QComboBox::activated, this, [this] { Q_EMIT colourChosen(colour()); });
}

int ColourCombo::colour() const
{
    return currentData().toInt();
}

void ColourCombo::setColour(int colour)
{
    const int index = findData(colour);
    setCurrentIndex(index >= 0 ? index : 0);
}
