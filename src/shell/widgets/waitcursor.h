#pragma once

#include <QApplication>
#include <QCursor>

/// Shows the wait cursor for the lifetime of the object and restores the
/// previous cursor afterwards.
class WaitCursor {
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;
};
