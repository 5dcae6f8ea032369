#include "shell/dialogs/viewremindersdialog.h"

#include "model/item.h"
#include "platform/messages.h"
#include "reminders/reminderservice.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
// The row keeps the item's handle, never its address.
constexpr int HandleRole = Qt::UserRole;
} // namespace

ViewRemindersDialog::ViewRemindersDialog(ReminderService &service, QWidget *parent)
    : QDialog(parent), m_service(service)
{
    setObjectName(QStringLiteral("viewReminders"));
    setWindowTitle(QStringLiteral("Reminders"));
    auto *layout = new QVBoxLayout(this);
    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("reminderList"));
    m_list->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Reminder"), QStringLiteral("Due Date")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setStretchLastSection(false);
    connect(m_list, &QTreeWidget::itemActivated, this, &ViewRemindersDialog::goTo);
    layout->addWidget(m_list, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_goTo = buttons->addButton(QStringLiteral("&Go To"), QDialogButtonBox::AcceptRole);
    m_goTo->setObjectName(QStringLiteral("goTo"));
    m_dismiss = buttons->addButton(QStringLiteral("&Dismiss"), QDialogButtonBox::ActionRole);
    m_dismiss->setObjectName(QStringLiteral("dismiss"));
    m_dismissAll = buttons->addButton(QString::fromLatin1(Messages::DismissAll), QDialogButtonBox::ActionRole);
    m_dismissAll->setObjectName(QStringLiteral("dismissAll"));
    connect(m_goTo, &QPushButton::clicked, this, &ViewRemindersDialog::goTo);
    connect(m_dismiss, &QPushButton::clicked, this, &ViewRemindersDialog::dismissSelected);
    connect(m_dismissAll, &QPushButton::clicked, this, &ViewRemindersDialog::dismissEvery);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    fill();
    resize(420, 300);
}

void ViewRemindersDialog::fill()
{
    m_list->clear();
    const QLocale locale;
    QList<QTreeWidgetItem *> rows;
    for (Item *item : m_service.manager().reminders()) {
        const SystemTime reminder = item->reminderTime();
        if (!ReminderManager::isPending(reminder))
            continue;
        auto *row = new QTreeWidgetItem;
        row->setText(0, item->name());
        row->setText(1, locale.toString(reminder.toDateTime(), QLocale::ShortFormat));
        if (item->hasDueDate())
            row->setText(2, locale.toString(item->dueDate().toDate(), QLocale::ShortFormat));
        row->setData(0, HandleRole, item->handle());
        rows.append(row);
    }
    m_list->addTopLevelItems(rows);
    if (!rows.isEmpty())
        m_list->setCurrentItem(rows.constFirst());
    m_goTo->setEnabled(!rows.isEmpty());
    m_dismiss->setEnabled(!rows.isEmpty());
    m_dismissAll->setEnabled(!rows.isEmpty());
}

Item *ViewRemindersDialog::selected() const
{
    const QTreeWidgetItem *row = m_list->currentItem();
    if (!row)
        return nullptr;
    const quint32 handle = row->data(0, HandleRole).toUInt();
    for (Item *item : m_service.manager().reminders()) {
        if (item->handle() == handle)
            return item;
    }
    return nullptr;
}

void ViewRemindersDialog::goTo()
{
    m_chosen = selected();
    if (m_chosen)
        accept();
}

void ViewRemindersDialog::dismissSelected()
{
    if (Item *item = selected()) {
        m_service.dismiss(item);
        fill();
    }
}

void ViewRemindersDialog::dismissEvery()
{
    for (Item *item : m_service.manager().reminders())
        m_service.dismiss(item);
    fill();
}
