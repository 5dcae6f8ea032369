#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

class Item;

/// The iCalendar form of an item: one VCALENDAR holding one VTODO (a task)
/// or one VEVENT (an all-day appointment). Written and read through libical.
namespace CalendarObject {

enum Kind { Task, Appointment };

/// Our PRODID.
QString productId();

/// A fresh UID, unique across stores.
QString newUid();

/// The object for one item: SUMMARY from the name; a due date (month not 0)
/// as DUE;VALUE=DATE of a task or DTSTART;VALUE=DATE of an appointment;
/// CATEGORIES from a non-empty category; DESCRIPTION with the plain text of
/// a note; for a "Rich Ink" document the note bytes as a base64 ATTACH, so
/// drawings and recordings are kept. stamp is the DTSTAMP, in UTC.
QByteArray fromItem(const Item &item, quint16 noteType, Kind kind, const QString &uid, const QDateTime &stamp);

/// Every category of the tasks and events of an iCalendar text, in order of
/// appearance, repeats included. False when libical cannot parse the text.
bool categories(const QByteArray &ics, QStringList *categories);

} // namespace CalendarObject
