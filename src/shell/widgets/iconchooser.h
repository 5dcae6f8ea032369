#pragma once

#include <QDialog>

class QListWidget;

/// Picks an item icon from our set: the favourite icons first, then every
/// distinct picture in number order.
class IconChooser : public QDialog {
    Q_OBJECT
public:
    IconChooser(quint16 current, const QList<quint16> &favourites, QWidget *parent = nullptr);
    quint16 chosen() const;

private:
    QListWidget *m_list = nullptr;
};
