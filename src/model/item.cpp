#include "model/item.h"

#include <QHash>

#if Q_PROCESSOR_WORDSIZE == 8 && !defined(Q_CC_MSVC)
// A document may hold a million Items: every 16 bytes more is 16 MB more.
static_assert(sizeof(Item) <= 104, "an Item has grown; see the field order in item.h and treenode.h");
#endif

namespace {
// Handles are serial numbers, given out once: a link to a destroyed Item can
// never come to name another. Only Items that have been asked for a handle
// (link targets) are registered, so a million plain items cost nothing here.
QHash<quint32, Item *> &handleRegistry()
{
    static QHash<quint32, Item *> registry;
    return registry;
}
quint32 g_nextHandle = 1;

// The categories of a document repeat: each distinct text is kept once, and
// an Item holds its number (0 for none). The model lives on one thread.
class CategoryPool {
public:
    quint32 numberOf(const QString &text)
    {
        if (text.isEmpty())
            return 0;
        const auto known = m_numbers.constFind(text);
        if (known != m_numbers.constEnd())
            return *known;
        const auto number = quint32(m_texts.size());
        m_texts.push_back(text);
        m_numbers.insert(text, number);
        return number;
    }
    const QString &text(quint32 number) const { return m_texts[number]; }

private:
    QHash<QString, quint32> m_numbers;
    std::vector<QString> m_texts{QString()};
};

CategoryPool &categoryPool()
{
    static CategoryPool pool;
    return pool;
}
} // namespace

Item::Item(const QString &name, quint16 image) : Item(name, image, SystemTime::now()) {}

Item::Item(const QString &name, quint16 image, const SystemTime &created) : TreeNode(Kind::Item, name, image)
{
    setCreated(created);
}

Item::~Item()
{
    forgetHandle();
}

void Item::forgetHandle()
{
    if (m_handle)
        handleRegistry().remove(m_handle);
    m_handle = 0;
}

Item::Extras &Item::extras()
{
    if (!m_extras)
        m_extras = std::make_unique<Extras>();
    return *m_extras;
}

Item::Rare &Item::rare()
{
    Extras &e = extras();
    if (!e.rare)
        e.rare = std::make_unique<Rare>();
    return *e.rare;
}

void Item::dropEmptyExtras()
{
    if (!m_extras)
        return;
    if (m_extras->rare && m_extras->rare->isEmpty())
        m_extras->rare.reset();
    if (m_extras->note.isEmpty() && !m_extras->rare)
        m_extras.reset();
}

QString Item::category() const
{
    return categoryPool().text(m_category);
}

void Item::setCategory(const QString &category)
{
    const quint32 number = categoryPool().numberOf(category);
    if (number != m_category) {
        willChange();
        m_category = number;
    }
}

Item::Rare::Rare(const Rare &other)
    : taskTime(other.taskTime), links(other.links), reminderTime(other.reminderTime),
      wide(other.wide ? std::make_unique<WideDates>(*other.wide) : nullptr)
{
}

Item::Extras::Extras(const Extras &other)
    : note(other.note), rare(other.rare ? std::make_unique<Rare>(*other.rare) : nullptr)
{
}

// A date packs into the Item when it can, else it waits whole in the extras.
void Item::setCreated(const SystemTime &time)
{
    willChange();
    m_createdWhole = !PackedTime::fits(time);
    m_created = m_createdWhole ? PackedTime() : PackedTime::pack(time);
    storeWide(&WideDates::created, m_createdWhole ? time : SystemTime());
}

void Item::setDueDate(const SystemTime &date)
{
    willChange();
    m_dueWhole = !PackedTime::fits(date);
    m_dueDate = m_dueWhole ? PackedTime() : PackedTime::pack(date);
    storeWide(&WideDates::dueDate, m_dueWhole ? date : SystemTime());
}

void Item::storeWide(SystemTime WideDates::*field, const SystemTime &time)
{
    if (!time.isZero()) {
        Rare &r = rare();
        if (!r.wide)
            r.wide = std::make_unique<WideDates>();
        r.wide.get()->*field = time;
    } else if (const Rare *r = rareOrNull(); r && r->wide) {
        r->wide.get()->*field = {};
        if (r->wide->created.isZero() && r->wide->dueDate.isZero())
            m_extras->rare->wide.reset();
        dropEmptyExtras();
    }
}

QString Item::taskTime() const
{
    const Rare *r = rareOrNull();
    return r ? r->taskTime : QString();
}

void Item::setTaskTime(const QString &text)
{
    willChange();
    rare().taskTime = text.left(7);
    dropEmptyExtras();
}

QStringList Item::links() const
{
    const Rare *r = rareOrNull();
    return r ? r->links : QStringList();
}

void Item::setLinks(const QStringList &links)
{
    willChange();
    rare().links = links;
    dropEmptyExtras();
}

int Item::noteSize() const
{
    return m_extras ? int(m_extras->note.size()) : 0;
}

QByteArray Item::note() const
{
    return m_extras ? m_extras->note : QByteArray();
}

void Item::setNote(const QByteArray &note)
{
    willChange();
    extras().note = note;
    dropEmptyExtras();
}

SystemTime Item::reminderTime() const
{
    const Rare *r = rareOrNull();
    return r ? r->reminderTime : SystemTime();
}

void Item::setReminderTime(const SystemTime &time)
{
    willChange();
    rare().reminderTime = time;
    dropEmptyExtras();
}

void Item::setProgress(quint16 progress)
{
    willChange();
    m_progress = progress;
    progressChanged();
}

void Item::setFlags(quint32 flags)
{
    willChange();
    m_showIcon = flags & 1;
    m_autoProgress = flags & 2;
    m_italic = flags & 4;
}

Item *Item::clone() const
{
    auto *copy = new Item(QString(), 0, SystemTime());
    copyFieldsTo(*copy);
    copy->setCreated(SystemTime::now());
    copy->setExpanded(false);
    return copy;
}

void Item::copyItemFieldsTo(Item &other) const
{
    other.m_extras = m_extras ? std::make_unique<Extras>(*m_extras) : nullptr;
    other.m_category = m_category;
    other.m_created = m_created;
    other.m_createdWhole = m_createdWhole;
    other.m_dueDate = m_dueDate;
    other.m_dueWhole = m_dueWhole;
    other.m_taskTimeType = m_taskTimeType;
    other.m_colour = m_colour;
    other.m_progress = m_progress;
    other.m_statusType = m_statusType;
    other.m_priority = m_priority;
    other.m_showIcon = m_showIcon;
    other.m_autoProgress = m_autoProgress;
    other.m_italic = m_italic;
}

void Item::swapItemFields(Item &other)
{
    const bool createdWhole = m_createdWhole, dueWhole = m_dueWhole;
    const bool showIcon = m_showIcon, autoProgress = m_autoProgress, italic = m_italic;
    m_createdWhole = other.m_createdWhole;
    m_dueWhole = other.m_dueWhole;
    m_showIcon = other.m_showIcon;
    m_autoProgress = other.m_autoProgress;
    m_italic = other.m_italic;
    other.m_createdWhole = createdWhole;
    other.m_dueWhole = dueWhole;
    other.m_showIcon = showIcon;
    other.m_autoProgress = autoProgress;
    other.m_italic = italic;
    std::swap(m_extras, other.m_extras);
    std::swap(m_category, other.m_category);
    std::swap(m_created, other.m_created);
    std::swap(m_dueDate, other.m_dueDate);
    std::swap(m_taskTimeType, other.m_taskTimeType);
    std::swap(m_colour, other.m_colour);
    std::swap(m_progress, other.m_progress);
    std::swap(m_statusType, other.m_statusType);
    std::swap(m_priority, other.m_priority);
}

quint32 Item::handle() const
{
    if (!m_handle) {
        m_handle = g_nextHandle++;
        handleRegistry().insert(m_handle, const_cast<Item *>(this));
    }
    return m_handle;
}

QString Item::linkText() const
{
    return QLatin1Char('!') + QString::number(handle());
}

Item *Item::fromHandle(quint32 handle)
{
    return handle ? handleRegistry().value(handle) : nullptr;
}

quint32 Item::handleOfLink(const QString &link)
{
    if (!isItemLink(link))
        return 0;
    bool ok = false;
    const quint32 handle = QStringView(link).mid(1).toUInt(&ok);
    return ok ? handle : 0;
}
