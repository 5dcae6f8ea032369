#pragma once

#include <QIcon>

/// The pictures of the document view's image buttons, drawn by us so that
/// they look the same on every desktop.
namespace ToolbarIcons {

QIcon modifyItem();
QIcon modifyNote();
QIcon links();
QIcon branchView();

} // namespace ToolbarIcons
