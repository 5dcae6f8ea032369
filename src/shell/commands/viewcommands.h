#pragma once

#include "shell/commands/commandgroup.h"

/// The View menu: the four views, the hide filters, the item display
/// options, the windows and tool bars, and Expand All and Collapse All.
class ViewCommands : public CommandGroup {
    Q_OBJECT
public:
    ViewCommands(CommandHost *host, QObject *parent);
};
