#pragma once

#include <QToolButton>

class Prompts;

/// A button that shows an item icon and opens the icon chooser when pressed.
class IconButton : public QToolButton {
    Q_OBJECT
public:
    explicit IconButton(Prompts *prompts, QWidget *parent = nullptr);

    quint16 image() const { return m_image; }
    void setImage(quint16 image);
    /// The icons the chooser offers first.
    void setFavourites(const QList<quint16> &favourites) { m_favourites = favourites; }

Q_SIGNALS:
    /// The person chose an icon (not sent by setImage).
    void imageChosen(quint16 image);

private:
    Prompts *m_prompts;
    quint16 m_image = 0;
    QList<quint16> m_favourites;
};
