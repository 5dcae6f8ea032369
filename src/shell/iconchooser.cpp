#include "shell/iconchooser.h"

#include "platform/messages.h"
#include "rows/iconset.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QVBoxLayout>

IconChooser::IconChooser(quint16 current, QWidget *parent) : QDialog(parent)
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
    const int count = IconSet::distinctCount();
    for (int i = 0; i < count; ++i) {
        auto *entry = new QListWidgetItem(QIcon(IconSet::instance().icon(quint16(i), 24, devicePixelRatioF())), QString());
        entry->setToolTip(IconSet::name(quint16(i)));
        entry->setData(Qt::UserRole, i);
        m_list->addItem(entry);
    }
    m_list->setCurrentRow(current % count);
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
