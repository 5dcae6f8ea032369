#pragma once

#include "shell/commands/commandgroup.h"

#include <memory>

class DocumentView;
class ReminderController;

/// The reminders of the open document: "Dismiss All" and "View
/// Reminders..." (the bubble's button and link), and the reminder service
/// that follows the view's edits. Made with the view and gone with it.
class ReminderCommands : public CommandGroup {
    Q_OBJECT
public:
    ReminderCommands(DocumentView *view, CommandHost *host);
    ~ReminderCommands() override;

    ReminderController &controller() const { return *m_controller; }

private:
    std::unique_ptr<ReminderController> m_controller;
};
