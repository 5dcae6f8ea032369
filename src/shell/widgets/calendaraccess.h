#pragma once

#include "integration/calendarstore.h"

#include <QString>
#include <QStringList>
#include <memory>

class Document;
class Prompts;
class QWidget;
class Settings;

/// The calendar store the settings name, opened with its password. A CalDAV
/// password lives in the desktop's keyring; where there is none it is asked
/// once per run and kept in memory only, never written anywhere.
namespace CalendarAccess {

/// How long a category chooser waits for a server before it offers the
/// document's categories alone, in milliseconds.
inline constexpr int CategoryTimeout = 3000;

/// The store at a location. A CalDAV collection gets the password kept for
/// it (keyring or this run's memory); with prompts, a password that neither
/// holds is asked for and kept. Null when that question was cancelled.
std::unique_ptr<CalendarStore> open(const QString &location, const QString &user, Prompts *prompts,
                                    QWidget *parent);
/// Keeps a password for a collection and user: in the keyring when there is
/// one, and for the rest of the run in any case. An empty password forgets it.
void keepPassword(const QString &location, const QString &user, const QString &password);
/// Drops this run's copy of a password the server refused, so that the next
/// use reads the keyring or asks again.
void forgetPassword(const QString &location, const QString &user);

/// The category list every chooser offers: the document's categories, then
/// with "Use calendar categories" the store's that the document lacks. A
/// store that cannot be reached adds nothing, without a message, and is not
/// asked again for a minute.
QStringList categories(const Document &document, const Settings &settings);

} // namespace CalendarAccess
