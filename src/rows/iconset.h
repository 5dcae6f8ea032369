#pragma once

#include <QHash>
#include <QPixmap>
#include <QString>

/// The item icons, drawn by us: a set of shapes in a range of colours, so
/// that every Image number of a document shows a recognisable picture.
/// Numbers 9 to 12 are the group headings' icons (priority, category,
/// due date, percent complete).
class IconSet {
public:
    static IconSet &instance();

    /// How many distinct pictures there are before the numbers repeat.
    static int distinctCount();
    /// A name for the picture, for choosers and tooltips.
    static QString name(quint16 image);

    /// The icon for an Image number at size × size device-independent pixels.
    QPixmap icon(quint16 image, int size, qreal dpr = 1.0);
    /// The small mark drawn over the icon of an item that has links.
    QPixmap linkOverlay(int size, qreal dpr = 1.0);

private:
    IconSet() = default;
    QHash<quint64, QPixmap> m_cache;
};
