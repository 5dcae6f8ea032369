#include "platform/clock.h"

namespace {
QDateTime g_fixed;
}

QDateTime Clock::now()
{
    return g_fixed.isValid() ? g_fixed : QDateTime::currentDateTime();
}

void Clock::setFixed(const QDateTime &time)
{
    g_fixed = time;
}

void Clock::reset()
{
    g_fixed = QDateTime();
}
