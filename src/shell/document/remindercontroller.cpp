#include "shell/document/remindercontroller.h"

#include "model/item.h"
#include "platform/messages.h"
#include "reminders/bubblecontent.h"
#include "reminders/reminderservice.h"
#include "reminders/wakealarm.h"
#include "rows/colourtable.h"
#include "shell/dialogs/viewremindersdialog.h"
#include "shell/document/undostack.h"
#include "shell/widgets/desktopnotification.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/reminderbubble.h"
#include "shell/widgets/remindersound.h"
#include "storage/settings.h"

ReminderController::ReminderController(Document *document, const Settings &settings, Prompts &prompts, QWidget *window,
                                       std::unique_ptr<WakeAlarm> alarm,
                                       std::unique_ptr<DesktopNotification> notification)
    : m_settings(settings), m_prompts(prompts), m_window(window), m_notification(std::move(notification)),
      m_sound(std::make_unique<ReminderSound>())
{
    if (!m_notification)
        m_notification = std::make_unique<DesktopNotification>();
    connect(m_notification.get(), &DesktopNotification::commandRequested, this, &ReminderController::runCommand);
    // Last, so that a reminder already due finds everything in place.
    m_service = std::make_unique<ReminderService>(document, std::move(alarm));
    connect(m_service.get(), &ReminderService::remindersDue, this, &ReminderController::onDue);
    connect(m_service.get(), &ReminderService::remindersDismissed, this, &ReminderController::remindersDismissed);
}

ReminderController::~ReminderController()
{
    m_service.reset();
    removeBubble();
}

void ReminderController::documentChanged()
{
    m_service->reload();
}

void ReminderController::itemReminderChanged(Item *item)
{
    m_service->itemChanged(item);
}

void ReminderController::itemsAdded(Item *top)
{
    m_service->branchAdded(top);
}

void ReminderController::itemsRemoved()
{
    m_service->itemsRemoved();
}

void ReminderController::dismissAll()
{
    EditScope scope(m_undo, QStringLiteral("Dismiss All"));
    m_service->dismissAll();
    removeBubble();
}

void ReminderController::viewReminders()
{
    ViewRemindersDialog dialog(*m_service, m_window);
    m_prompts.runDialog(&dialog);
    if (Item *item = dialog.chosen())
        Q_EMIT selectItemRequested(item);
}

bool ReminderController::runCommand(int id)
{
    if (id == DismissAllCommand)
        dismissAll();
    else if (id == ViewRemindersCommand)
        viewReminders();
    else
        return false;
    return true;
}

void ReminderController::onDue(const QList<Item *> &due)
{
    const std::vector<Item *> items(due.begin(), due.end());
    const QString title = QString::fromLatin1(Messages::ReminderTitle);
    if (!m_bubble) {
        m_bubble = std::make_unique<ReminderBubble>();
        connect(m_bubble.get(), &ReminderBubble::commandRequested, this, &ReminderController::runCommand);
    }
    m_bubble->showReminders(title, BubbleContent::body(items, ColourTable::colorRef));
    m_notification->show(title, BubbleContent::notificationBody(items));
    m_lastSound = m_sound->play(m_settings.sound);
}

void ReminderController::removeBubble()
{
    if (m_bubble)
        m_bubble->hide();
    if (m_notification)
        m_notification->close();
}
