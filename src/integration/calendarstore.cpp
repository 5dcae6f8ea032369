#include "integration/calendarstore.h"

#include "integration/caldavcalendar.h"
#include "integration/foldercalendar.h"
#include "model/item.h"
#include "platform/clock.h"
#include "platform/collation.h"
#include "views/categorylist.h"

#include <QDir>
#include <QSet>
#include <QStandardPaths>
#include <algorithm>

bool CalendarStore::create(const Item &item, quint16 noteType, CalendarObject::Kind kind, QString *error)
{
    const QString uid = CalendarObject::newUid();
    return addObject(uid, CalendarObject::fromItem(item, noteType, kind, uid, Clock::now().toUTC()), error);
}

CalendarStore::CreateResult CalendarStore::createFor(const Item &item, quint16 noteType, CalendarObject::Kind kind,
                                                     bool eachChild)
{
    std::vector<const Item *> items;
    if (eachChild && item.hasChildren())
        items.assign(item.children().begin(), item.children().end());
    else
        items.push_back(&item);
    CreateResult result;
    for (const Item *one : items) {
        QString error;
        if (create(*one, noteType, kind, &error))
            ++result.created;
        else
            result.errors.append(error);
    }
    return result;
}

bool CalendarStore::categories(QStringList *categories, QString *error)
{
    QList<QByteArray> objects;
    if (!fetchObjects(&objects, error))
        return false;
    QStringList found;
    for (const QByteArray &object : objects)
        CalendarObject::categories(object, &found);
    QSet<QString> seen;
    categories->clear();
    for (const QString &name : std::as_const(found)) {
        if (!seen.contains(name)) {
            seen.insert(name);
            categories->append(name);
        }
    }
    const Collation &collation = Collation::instance();
    std::stable_sort(categories->begin(), categories->end(),
                     [&](const QString &a, const QString &b) { return collation.compare(a, b) < 0; });
    return true;
}

QStringList CalendarStore::categoryList(const Document &document, bool useStoreCategories, CalendarStore *store)
{
    QStringList fromStore;
    QString error;
    if (useStoreCategories && store && !store->categories(&fromStore, &error))
        fromStore.clear();
    return CategoryList::fill(document, useStoreCategories, fromStore);
}

bool CalendarStore::isCalDavAddress(const QString &location)
{
    return location.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
           location.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
}

std::unique_ptr<CalendarStore> CalendarStore::open(const QString &location, const QString &user,
                                                   const QString &password)
{
    if (isCalDavAddress(location))
        return std::make_unique<CalDavCalendar>(QUrl(location), user, password);
    return std::make_unique<FolderCalendar>(location.isEmpty() ? defaultFolder() : location);
}

QString CalendarStore::defaultFolder()
{
    // GenericDataLocation is $XDG_DATA_HOME, where khal and todoman look too.
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QStringLiteral("quillbox/calendar/"));
}
