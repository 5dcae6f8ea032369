#include "shell/widgets/iconchooser.h"

#include "platform/messages.h"
#include "rows/iconset.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QVBoxLayout>

IconChooser::IconChooser(quint16 current, const QList<quint16> &favourites, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("iconChooser"));
    setWindowTitle(QString::fromLatin1(Messages::Caption));
    auto *layout = new QVBoxLayout(this);
    m_list = new QListWidget(this);
    m_list->setViewMode(QListView::IconMode);
    m_list->setIconSize(QSize(24, 24));
    m_list->setGridSize(QSize(40, 40));
    m_list->setResizeMode(QListView::Adjust);
    m_list->setMovement(QListView::Static);
    m_list->setUniformItemSizes(true);
    QList<quint16> numbers = favourites;
    for (int i = 0; i < IconSet::distinctCount(); ++i) {
        if (!favourites.contains(quint16(i)))
            numbers.append(quint16(i));
    }
    for (quint16 number : numbers) {
        auto *entry = new QListWidgetItem(QIcon(IconSet::instance().icon(number, 24, devicePixelRatioF())), QString());
        entry->setToolTip(IconSet::name(number));
        entry->setData(Qt::UserRole, int(number));
        m_list->addItem(entry);
        if (number == current)
            m_list->setCurrentItem(entry);
    }
    layout->addWidget(m_list);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    layout->addWidget(buttons);
    resize(460, 420);
}

quint16 IconChooser::chosen() const
{
    return m_list->currentItem() ? quint16(m_list->currentItem()->data(Qt::UserRole).toInt()) : 0;
}
