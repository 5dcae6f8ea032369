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

Q_SIGNALS:
    /// The person chose an icon (not sent by setImage).
    void imageChosen(quint16 image);

private:
    Prompts *m_prompts;
    quint16 m_image = 0;
};
