#pragma once

#include "integration/calendarobject.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

class Document;
class Item;

/// Where tasks and appointments go: an iCalendar store, either a folder of
/// .ics files (one object a file) or a CalDAV collection. Every operation is
/// synchronous and reports failure as false plus a reason for a person.
class CalendarStore {
public:
    /// What creating objects for one command did: how many objects arrived and
    /// the reason of each that did not.
    struct CreateResult {
        int created = 0;
        QStringList errors;
        int failed() const { return int(errors.size()); }
        bool allCreated() const { return errors.isEmpty(); }
    };

    virtual ~CalendarStore() = default;

    /// The folder or collection address, as messages name it.
    virtual QString location() const = 0;
    /// Checks that the store can take objects now: a folder is made when
    /// missing and must be writable; a collection must answer as a calendar.
    virtual bool connect(QString *error) = 0;
    /// Stores one new object under its UID; never replaces an existing one.
    virtual bool addObject(const QString &uid, const QByteArray &ics, QString *error) = 0;
    /// The iCalendar text of every task and event of the store.
    virtual bool fetchObjects(QList<QByteArray> *objects, QString *error) = 0;

    /// A new task or appointment for the item, with a new UID and a DTSTAMP of now.
    bool create(const Item &item, quint16 noteType, CalendarObject::Kind kind, QString *error);
    bool createTask(const Item &item, quint16 noteType, QString *error)
    {
        return create(item, noteType, CalendarObject::Task, error);
    }
    bool createAppointment(const Item &item, quint16 noteType, QString *error)
    {
        return create(item, noteType, CalendarObject::Appointment, error);
    }

    /// The "Task..." and "Appointment..." commands once the question is
    /// answered: with eachChild and children, one object for every direct
    /// child in child order and none for the item or deeper items; otherwise
    /// one for the item. A failed object is skipped and the rest go on. The
    /// document is not changed.
    CreateResult createFor(const Item &item, quint16 noteType, CalendarObject::Kind kind, bool eachChild);

    /// The distinct categories of the store's tasks and events, in the
    /// locale's order. Objects that do not parse are passed over.
    bool categories(QStringList *categories, QString *error);

    /// The category list every chooser offers: the document's categories,
    /// then, with useStoreCategories, the store's categories that are not
    /// equal to one of them. A missing or unreachable store gives the
    /// document's categories only, silently.
    static QStringList categoryList(const Document &document, bool useStoreCategories, CalendarStore *store);

    /// The store at a location: an http:// or https:// address is a CalDAV
    /// collection (user and password for Basic authentication), anything
    /// else a folder. An empty location is the default folder.
    static std::unique_ptr<CalendarStore> open(const QString &location, const QString &user = QString(),
                                               const QString &password = QString());
    /// $XDG_DATA_HOME/quillbox/calendar/ (~/.local/share/quillbox/calendar/).
    static QString defaultFolder();
    static bool isCalDavAddress(const QString &location);

    /// How long one request to a server may take, in milliseconds; a folder
    /// does not wait. 30 s unless set.
    void setTimeout(int milliseconds) { m_timeout = milliseconds; }
    int timeout() const { return m_timeout; }

private:
    int m_timeout = 30000;
};
