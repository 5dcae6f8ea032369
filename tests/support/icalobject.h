#pragma once

// The fields of one iCalendar object as libical reads them: what a calendar program would see.

#include <QDate>
#include <QDateTime>
#include <QStringList>
#include <QTimeZone>
#include <cstdlib>
#include <libical/ical.h>

struct IcalObject {
    QString kind; // "VTODO" or "VEVENT"
    QString uid;
    QString summary;
    QString description;
    QStringList categories;
    QDate due;
    bool dueIsDate = false;
    QDate start;
    bool startIsDate = false;
    QDateTime stamp;
    QByteArray attachment;

    static IcalObject parse(const QByteArray &ics)
    {
        IcalObject object;
        icalcomponent *calendar = icalparser_parse_string(ics.constData());
        if (!calendar)
            return object;
        icalcomponent *component = icalcomponent_get_first_real_component(calendar);
        if (component) {
            object.kind = QString::fromUtf8(icalcomponent_kind_to_string(icalcomponent_isa(component)));
            const auto text = [component](icalproperty_kind kind, const char *(*get)(const icalproperty *)) {
                icalproperty *property = icalcomponent_get_first_property(component, kind);
                return property ? QString::fromUtf8(get(property)) : QString();
            };
            object.uid = text(ICAL_UID_PROPERTY, icalproperty_get_uid);
            object.summary = text(ICAL_SUMMARY_PROPERTY, icalproperty_get_summary);
            object.description = text(ICAL_DESCRIPTION_PROPERTY, icalproperty_get_description);
            for (icalproperty *p = icalcomponent_get_first_property(component, ICAL_CATEGORIES_PROPERTY); p;
                 p = icalcomponent_get_next_property(component, ICAL_CATEGORIES_PROPERTY))
                object.categories.append(QString::fromUtf8(icalproperty_get_categories(p)));
            const auto date = [component](icalproperty_kind kind, icaltimetype (*get)(const icalproperty *),
                                          QDate *date, bool *isDate) {
                if (icalproperty *p = icalcomponent_get_first_property(component, kind)) {
                    *date = QDate(get(p).year, get(p).month, get(p).day);
                    *isDate = get(p).is_date;
                }
            };
            date(ICAL_DUE_PROPERTY, icalproperty_get_due, &object.due, &object.dueIsDate);
            date(ICAL_DTSTART_PROPERTY, icalproperty_get_dtstart, &object.start, &object.startIsDate);
            if (icalproperty *p = icalcomponent_get_first_property(component, ICAL_DTSTAMP_PROPERTY)) {
                const icaltimetype t = icalproperty_get_dtstamp(p);
                object.stamp = QDateTime(QDate(t.year, t.month, t.day), QTime(t.hour, t.minute, t.second),
                                         icaltime_is_utc(t) ? Qt::UTC : Qt::LocalTime);
            }
            if (icalproperty *p = icalcomponent_get_first_property(component, ICAL_ATTACH_PROPERTY)) {
                icalattach *attach = icalproperty_get_attach(p);
                if (attach && !icalattach_get_is_url(attach))
                    object.attachment =
                        QByteArray::fromBase64(reinterpret_cast<const char *>(icalattach_get_data(attach)));
            }
        }
        icalcomponent_free(calendar);
        return object;
    }
};
