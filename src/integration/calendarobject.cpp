#include "integration/calendarobject.h"

#include "model/document.h"
#include "model/item.h"
#include "notes/notetext.h"

#include <QUuid>
#include <cstdlib>
#include <cstring>
#include <libical/ical.h>

namespace CalendarObject {

namespace {

// libical takes and gives UTF-8 C strings.
QByteArray utf8(const QString &text)
{
    return text.toUtf8();
}

icaltimetype dateOf(const SystemTime &time)
{
    icaltimetype date = icaltime_null_date();
    date.year = time.year;
    date.month = time.month;
    date.day = time.day;
    date.is_date = 1;
    return date;
}

icaltimetype utcOf(const QDateTime &time)
{
    return icaltime_from_timet_with_zone(time_t(time.toSecsSinceEpoch()), 0, icaltimezone_get_utc_timezone());
}

// Plain text with LF line ends, as iCalendar text values carry them.
QString descriptionOf(const Item &item, quint16 noteType)
{
    QString text = NoteText::plainText(item.note(), noteType);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text;
}

void freeData(char *data, void *)
{
    free(data);
}

} // namespace

QString productId()
{
    return QStringLiteral("-//Quillbox//Quillbox " QUILLBOX_VERSION "//EN");
}

QString newUid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1String("@quillbox");
}

QByteArray fromItem(const Item &item, quint16 noteType, Kind kind, const QString &uid, const QDateTime &stamp)
{
    icalcomponent *calendar = icalcomponent_new_vcalendar();
    icalcomponent_add_property(calendar, icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar, icalproperty_new_prodid(utf8(productId()).constData()));

    icalcomponent *object = kind == Task ? icalcomponent_new_vtodo() : icalcomponent_new_vevent();
    icalcomponent_add_property(object, icalproperty_new_uid(utf8(uid).constData()));
    icalcomponent_add_property(object, icalproperty_new_dtstamp(utcOf(stamp)));
    icalcomponent_add_property(object, icalproperty_new_summary(utf8(item.name()).constData()));
    // A damaged file may hold a month 13 or a day 32: such a date is left out
    // rather than written as a date no calendar can read.
    if (item.hasDueDate() && item.dueDate().toDate().isValid()) {
        const icaltimetype date = dateOf(item.dueDate());
        icalcomponent_add_property(object, kind == Task ? icalproperty_new_due(date) : icalproperty_new_dtstart(date));
    }
    if (!item.category().isEmpty())
        icalcomponent_add_property(object, icalproperty_new_categories(utf8(item.category()).constData()));
    if (item.noteSize() > 0) {
        const QString description = descriptionOf(item, noteType);
        if (!description.isEmpty())
            icalcomponent_add_property(object, icalproperty_new_description(utf8(description).constData()));
        if (noteType == Document::RichInk) {
            // The attachment keeps the data it is given and frees it with the property.
            char *encoded = strdup(item.note().toBase64().constData());
            icalattach *attach = icalattach_new_from_data(encoded, freeData, nullptr);
            icalproperty *property = icalproperty_new_attach(attach);
            icalattach_unref(attach);
            icalproperty_add_parameter(property, icalparameter_new_fmttype("application/x-quillbox-richink"));
            icalproperty_add_parameter(property, icalparameter_new_encoding(ICAL_ENCODING_BASE64));
            icalproperty_add_parameter(property, icalparameter_new_value(ICAL_VALUE_BINARY));
            icalcomponent_add_property(object, property);
        }
    }
    icalcomponent_add_component(calendar, object);

    char *text = icalcomponent_as_ical_string_r(calendar);
    const QByteArray result(text);
    free(text);
    icalcomponent_free(calendar);
    return result;
}

bool categories(const QByteArray &ics, QStringList *categories)
{
    icalcomponent *root = icalparser_parse_string(ics.constData());
    if (!root)
        return false;
    // A file holds one VCALENDAR; a bare component is taken as it stands.
    const auto collect = [categories](icalcomponent *component) {
        for (icalproperty *property = icalcomponent_get_first_property(component, ICAL_CATEGORIES_PROPERTY); property;
             property = icalcomponent_get_next_property(component, ICAL_CATEGORIES_PROPERTY)) {
            const QString name = QString::fromUtf8(icalproperty_get_categories(property));
            if (!name.isEmpty())
                categories->append(name);
        }
    };
    const icalcomponent_kind rootKind = icalcomponent_isa(root);
    if (rootKind == ICAL_VTODO_COMPONENT || rootKind == ICAL_VEVENT_COMPONENT) {
        collect(root);
    } else {
        for (const icalcomponent_kind kind : {ICAL_VTODO_COMPONENT, ICAL_VEVENT_COMPONENT}) {
            for (icalcomponent *component = icalcomponent_get_first_component(root, kind); component;
                 component = icalcomponent_get_next_component(root, kind))
                collect(component);
        }
    }
    icalcomponent_free(root);
    return true;
}

} // namespace CalendarObject
