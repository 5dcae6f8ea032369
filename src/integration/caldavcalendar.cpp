#include "integration/caldavcalendar.h"

#include "platform/messages.h"

#include <QEventLoop>
#include <QHostAddress>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QXmlStreamReader>
#include <algorithm>

namespace {

const QString DavNamespace = QStringLiteral("DAV:");
const QString CalDavNamespace = QStringLiteral("urn:ietf:params:xml:ns:caldav");

QByteArray queryFor(const char *component)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                      "<C:calendar-query xmlns:D=\"DAV:\" xmlns:C=\"urn:ietf:params:xml:ns:caldav\">"
                      "<D:prop><C:calendar-data/></D:prop>"
                      "<C:filter><C:comp-filter name=\"VCALENDAR\"><C:comp-filter name=\"") +
           component + "\"/></C:comp-filter></C:filter></C:calendar-query>";
}

// The calendar-data of every response of a multistatus answer.
QList<QByteArray> calendarData(const QByteArray &multistatus)
{
    QList<QByteArray> objects;
    QXmlStreamReader xml(multistatus);
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.namespaceUri() == CalDavNamespace &&
            xml.name() == QLatin1String("calendar-data")) {
            const QString text = xml.readElementText();
            if (!text.trimmed().isEmpty())
                objects.append(text.toUtf8());
        }
    }
    return objects;
}

// Whether a PROPFIND answer names the calendar resource type.
bool isCalendar(const QByteArray &multistatus)
{
    QXmlStreamReader xml(multistatus);
    bool inResourceType = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            if (xml.namespaceUri() == DavNamespace && xml.name() == QLatin1String("resourcetype"))
                inResourceType = true;
            else if (inResourceType && xml.namespaceUri() == CalDavNamespace && xml.name() == QLatin1String("calendar"))
                return true;
        } else if (xml.isEndElement() && xml.namespaceUri() == DavNamespace &&
                   xml.name() == QLatin1String("resourcetype")) {
            inResourceType = false;
        }
    }
    return false;
}

bool isLoopback(const QString &host)
{
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0)
        return true;
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

} // namespace

CalDavCalendar::CalDavCalendar(const QUrl &collection, const QString &user, const QString &password)
    : m_collection(collection), m_user(user), m_password(password)
{
    // Objects are named relative to the collection, which is a folder.
    if (!m_collection.path().endsWith(QLatin1Char('/')))
        m_collection.setPath(m_collection.path() + QLatin1Char('/'));
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

QUrl CalDavCalendar::objectUrl(const QString &uid) const
{
    return m_collection.resolved(QUrl(QString::fromLatin1(QUrl::toPercentEncoding(uid + QLatin1String(".ics"), "@"))));
}

bool CalDavCalendar::usable(QString *error) const
{
    const QString scheme = m_collection.scheme().toLower();
    if (!m_collection.isValid() || m_collection.host().isEmpty() ||
        (scheme != QLatin1String("http") && scheme != QLatin1String("https"))) {
        *error = QString::fromUtf8(Messages::CalendarBadAddress).arg(location());
        return false;
    }
    if (scheme == QLatin1String("http") && !isLoopback(m_collection.host())) {
        *error = QString::fromUtf8(Messages::CalendarHttpsRequired).arg(location());
        return false;
    }
    return true;
}

CalDavCalendar::Answer CalDavCalendar::send(const QByteArray &verb, const QUrl &url, const QByteArray &body,
                                            const QList<std::pair<QByteArray, QByteArray>> &headers)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    if (!m_user.isEmpty())
        request.setRawHeader("Authorization", "Basic " + (m_user + QLatin1Char(':') + m_password).toUtf8().toBase64());
    for (const auto &[name, value] : headers)
        request.setRawHeader(name, value);

    Answer answer;
    QNetworkReply *reply = m_network.sendCustomRequest(request, verb, body);
    if (!reply->isFinished()) {
        QEventLoop loop;
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        QObject::connect(&timer, &QTimer::timeout, &loop, [&answer, reply] {
            answer.timedOut = true;
            reply->abort();
        });
        timer.start(timeout());
        if (!reply->isFinished())
            loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->isReadable())
        answer.body = reply->readAll();
    answer.location = url.resolved(QUrl::fromEncoded(reply->rawHeader("Location")));
    if (answer.status == 0)
        answer.networkError = reply->errorString();
    reply->deleteLater();
    return answer;
}

bool CalDavCalendar::accepted(const Answer &answer, std::initializer_list<int> expected, const QUrl &url,
                              QString *error) const
{
    if (!answer.timedOut && std::find(expected.begin(), expected.end(), answer.status) != expected.end())
        return true;
    const QString where = url.toDisplayString();
    const auto message = [](const char *text) { return QString::fromUtf8(text); };
    if (answer.timedOut)
        *error = message(Messages::CalendarTimeout).arg(where).arg((timeout() + 999) / 1000);
    else if (answer.status == 0)
        *error = message(Messages::CalendarNoConnection).arg(where, answer.networkError);
    else if (answer.status >= 300 && answer.status < 400)
        *error = message(Messages::CalendarRedirected).arg(where, answer.location.toDisplayString());
    else if (answer.status == 401)
        *error = message(Messages::CalendarAuthFailed).arg(m_collection.host());
    else if (answer.status == 403)
        *error = message(Messages::CalendarForbidden).arg(where);
    else if (answer.status == 404)
        *error = message(Messages::CalendarNotFound).arg(location());
    else if (answer.status == 412)
        *error = message(Messages::CalendarObjectExists).arg(location());
    else
        *error = message(Messages::CalendarServerError).arg(where).arg(answer.status);
    return false;
}

bool CalDavCalendar::connect(QString *error)
{
    if (!usable(error))
        return false;
    const QByteArray body = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                            "<D:propfind xmlns:D=\"DAV:\"><D:prop><D:resourcetype/></D:prop></D:propfind>";
    const Answer answer =
        send("PROPFIND", m_collection, body, {{"Depth", "0"}, {"Content-Type", "application/xml; charset=utf-8"}});
    if (!accepted(answer, {207}, m_collection, error))
        return false;
    if (!isCalendar(answer.body)) {
        *error = QString::fromUtf8(Messages::CalendarNotACalendar).arg(location());
        return false;
    }
    return true;
}

bool CalDavCalendar::addObject(const QString &uid, const QByteArray &ics, QString *error)
{
    if (!usable(error))
        return false;
    const QUrl url = objectUrl(uid);
    // If-None-Match: * makes the server refuse rather than replace an object.
    const Answer answer =
        send("PUT", url, ics, {{"Content-Type", "text/calendar; charset=utf-8"}, {"If-None-Match", "*"}});
    return accepted(answer, {200, 201, 204}, url, error);
}

bool CalDavCalendar::fetchObjects(QList<QByteArray> *objects, QString *error)
{
    if (!usable(error))
        return false;
    objects->clear();
    for (const char *component : {"VTODO", "VEVENT"}) {
        const Answer answer = send("REPORT", m_collection, queryFor(component),
                                   {{"Depth", "1"}, {"Content-Type", "application/xml; charset=utf-8"}});
        if (!accepted(answer, {207}, m_collection, error))
            return false;
        objects->append(calendarData(answer.body));
    }
    return true;
}
