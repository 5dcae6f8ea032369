#include "shell/commands/remindercommands.h"

#include "model/item.h"
#include "reminders/wakealarm.h"
#include "shell/widgets/desktopnotification.h"
#include "shell/commands/commandhost.h"
#include "shell/document/documentview.h"
#include "shell/document/remindercontroller.h"
#include "shell/document/treepane.h"
#include "storage/settings.h"

#include <QAction>

ReminderCommands::ReminderCommands(DocumentView *view, CommandHost *host)
    : CommandGroup(host, view), m_controller(std::make_unique<ReminderController>(view->document(), host->settings(),
                                                                                  *host->prompts(), host->frame()))
{
    ReminderController *reminders = m_controller.get();
    reminders->setUndoStack(view->undoStack());
    add("actionDismissReminders", QStringLiteral("Dismiss All"), [reminders] { reminders->dismissAll(); });
    add("actionViewReminders", QStringLiteral("View Reminders..."), [reminders] {
        reminders->viewReminders();
    })->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));

    connect(view, &DocumentView::itemsEdited, this, [reminders](ItemHost::Edit edit, Item *item) {
        switch (edit) {
        case ItemHost::Edit::ReminderChanged:
            reminders->itemReminderChanged(item);
            break;
        case ItemHost::Edit::ItemsAdded:
            // Items under the root have no top of their own: the whole list
            // is read again.
            if (item)
                reminders->itemsAdded(item);
            else
                reminders->documentChanged();
            break;
        case ItemHost::Edit::ItemsRemoved:
            reminders->itemsRemoved();
            break;
        }
    });
    connect(reminders, &ReminderController::selectItemRequested, view, [view](Item *item) { view->refresh(item); });
    connect(reminders, &ReminderController::remindersDismissed, view, [view] { view->refresh(); });
}

ReminderCommands::~ReminderCommands() = default;
