#pragma once

#include "integration/calendarstore.h"

#include <QNetworkAccessManager>
#include <QUrl>

class QNetworkRequest;

/// A calendar collection on a CalDAV server, reached with Qt Network. Each
/// call waits for its answer (in a local event loop) up to the time-out.
/// Basic authentication is sent with every request, so plain http:// is
/// accepted only for this computer's own addresses; redirects are reported,
/// never followed, so a password never travels to another address.
class CalDavCalendar : public CalendarStore {
public:
    CalDavCalendar(const QUrl &collection, const QString &user, const QString &password);

    QString location() const override { return m_collection.toDisplayString(); }
    /// Asks the collection for its resource type: it must be a calendar.
    bool connect(QString *error) override;
    /// PUT of the object as <collection>/<uid>.ics with If-None-Match: *.
    bool addObject(const QString &uid, const QByteArray &ics, QString *error) override;
    /// A calendar-query REPORT for the tasks, then one for the events.
    bool fetchObjects(QList<QByteArray> *objects, QString *error) override;

    /// The address of an object in the collection.
    QUrl objectUrl(const QString &uid) const;

private:
    struct Answer {
        int status = 0;
        QByteArray body;
        QUrl location;
        QString networkError;
        bool timedOut = false;
    };
    bool usable(QString *error) const;
    Answer send(const QByteArray &verb, const QUrl &url, const QByteArray &body,
                const QList<std::pair<QByteArray, QByteArray>> &headers);
    /// True for an expected status; otherwise the reason for a person.
    bool accepted(const Answer &answer, std::initializer_list<int> expected, const QUrl &url, QString *error) const;

    QUrl m_collection;
    QString m_user;
    QString m_password;
    QNetworkAccessManager m_network;
};
