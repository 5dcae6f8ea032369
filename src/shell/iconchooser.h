#pragma once

#include <QDialog>

class QListWidget;

/// Picks an item icon from our set: every distinct picture, in number order.
class IconChooser : public QDialog {
    Q_OBJECT
public:
    IconChooser(quint16 current, QWidget *parent = nullptr);
    quint16 chosen() const;

private:
    QListWidget *m_list = nullptr;
};
