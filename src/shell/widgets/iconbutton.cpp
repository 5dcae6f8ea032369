#include "shell/widgets/iconbutton.h"

#include "rows/iconset.h"
#include "shell/widgets/prompts.h"

IconButton::IconButton(Prompts *prompts, QWidget *parent) : QToolButton(parent), m_prompts(prompts)
{
    setIconSize(QSize(24, 24));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setText(QStringLiteral("Change..."));
    setImage(0);
    connect(this, &QToolButton::clicked, this, [this] {
        const int chosen = m_prompts->chooseIcon(this, m_image, m_favourites);
        if (chosen < 0)
            return;
        setImage(quint16(chosen));
        Q_EMIT imageChosen(m_image);
    });
}

void IconButton::setImage(quint16 image)
{
    m_image = image;
    setIcon(QIcon(IconSet::instance().icon(image, 24, devicePixelRatioF())));
    setToolTip(IconSet::name(image));
}
