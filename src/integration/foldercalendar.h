#pragma once

#include "integration/calendarstore.h"

/// A calendar kept as a folder of .ics files, one object a file named after
/// its UID: the layout that vdirsyncer, khal and todoman share.
class FolderCalendar : public CalendarStore {
public:
    explicit FolderCalendar(const QString &folder);

    QString location() const override { return m_folder; }
    bool connect(QString *error) override;
    bool addObject(const QString &uid, const QByteArray &ics, QString *error) override;
    bool fetchObjects(QList<QByteArray> *objects, QString *error) override;

    /// The file that holds the object with this UID.
    QString fileFor(const QString &uid) const;

private:
    QString m_folder;
};
