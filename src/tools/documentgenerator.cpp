#include "tools/documentgenerator.h"

#include "notes/notetext.h"
#include "notes/richink.h"
#include "model/document.h"
#include "model/progress.h"

#include <array>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int FanOut = 8;

const std::array<const char16_t *, 24> Words = {u"Plan",   u"Review",  u"Café",  u"Budget",  u"Übersicht", u"Call",
                                                u"Résumé", u"Meeting", u"Draft", u"Zürich",  u"Ångström",  u"Señal",
                                                u"Report", u"Garden",  u"Order", u"Kitchen", u"Invoice",   u"Trip",
                                                u"Crème",  u"Ideas",   u"Notes", u"Naïve",   u"Fix",       u"Test"};

const std::array<const char16_t *, 10> Categories = {u"Business",    u"Personal",     u"Holiday", u"Errands",
                                                     u"Ideas",       u"Travel",       u"Waiting", u"Projects",
                                                     u"Phone calls", u"Miscellaneous"};

const std::array<const char16_t *, 6> Sentences = {
    u"Check the figures with the team before Friday. ",    u"Bring the signed copies and the receipts. ",
    u"Ask about delivery times; the café opens at nine. ", u"Keep the old version until the new one is approved. ",
    u"Prices changed in März, so compare both lists. ",    u"Call back if nobody answers the first time. "};

/// Deterministic on every platform (std::uniform_int_distribution is not).
class Random {
public:
    explicit Random(quint32 seed) : m_engine(seed) {}
    quint32 below(quint32 n) { return quint32(m_engine() % n); }
    bool oneIn(quint32 n) { return below(n) == 0; }

private:
    std::mt19937 m_engine;
};

// Built from the fields directly: a local QDateTime per item would consult
// the time zone a million times.
SystemTime dateTime(int year, int month, int day, int hour, int minute)
{
    SystemTime t;
    t.year = quint16(year);
    t.month = quint16(month);
    t.dayOfWeek = quint16(QDate(year, month, day).dayOfWeek() % 7); // Sunday is 0
    t.day = quint16(day);
    t.hour = quint16(hour);
    t.minute = quint16(minute);
    return t;
}

QString rtfNote(const QString &text)
{
    QString rtf = QStringLiteral("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Tahoma;}}\\f0\\fs20 ");
    for (QChar c : text) {
        if (c.unicode() > 127)
            rtf += QStringLiteral("\\u%1?").arg(qint16(c.unicode()));
        else if (c == QLatin1Char('\\') || c == QLatin1Char('{') || c == QLatin1Char('}'))
            rtf += QLatin1Char('\\') + c;
        else
            rtf += c;
    }
    return rtf + QLatin1Char('}');
}

QByteArray noteBytes(const QString &text, quint16 noteType)
{
    if (noteType == Document::RichText)
        return rtfNote(text).toLatin1();
    if (noteType == Document::RichInk)
        return RichInk::fromRtf(rtfNote(text).toLatin1()).toNote();
    return NoteText::toPlainNote(text);
}

} // namespace

void DocumentGenerator::generate(Document *document, const Options &options)
{
    Random random(options.seed);
    document->setRoot(std::make_unique<TreeNode>(QStringLiteral("Generated outline")));
    document->noteType = options.noteType;
    document->categories.clear();
    TreeNode *root = document->root();
    const int count = qMax(options.items, 0);
    std::vector<Item *> items;
    items.reserve(size_t(count));
    QStringList words;
    for (const char16_t *word : Words)
        words.append(QString::fromUtf16(word));
    QStringList categories;
    for (const char16_t *category : Categories)
        categories.append(QString::fromUtf16(category));

    for (int i = 0; i < count; ++i) {
        const QString name = words[random.below(quint32(words.size()))] + QLatin1Char(' ') +
                             words[random.below(quint32(words.size()))].toLower() + QLatin1Char(' ') +
                             QString::number(i + 1);
        const int day = int(random.below(28)) + 1;
        auto *item = new Item(name, quint16(random.below(40)),
                              dateTime(2020 + int(random.below(5)), int(random.below(12)) + 1, day,
                                       int(random.below(24)), int(random.below(60))));
        // A complete tree of fan-out 8 in breadth-first numbering, or a chain.
        TreeNode *parent = root;
        if (options.chain && i > 0)
            parent = items[size_t(i) - 1];
        else if (!options.chain && i >= FanOut)
            parent = items[size_t(i / FanOut - 1)];
        parent->appendChild(item);
        items.push_back(item);

        if (random.oneIn(2))
            item->setCategory(categories[random.below(quint32(categories.size()))]);
        if (random.oneIn(3))
            item->setDueDate(dateTime(2025 + int(random.below(2)), int(random.below(12)) + 1, day, 0, 0));
        item->setPriority(random.oneIn(2) ? 10 : quint16(random.below(20) + 1));
        switch (random.below(5)) {
        case 0:
            item->setStatusType(Item::ProgressBar);
            item->storeProgress(Progress::Presets[random.below(quint32(Progress::Presets.size()))]);
            break;
        case 1:
            item->setStatusType(Item::NoStatus);
            break;
        default:
            item->storeProgress(random.oneIn(3) ? 100 : 0);
        }
        if (random.oneIn(40))
            item->setColour(quint16(random.below(36)));
        if (random.oneIn(60))
            item->setTaskTime(QString::number(random.below(90) + 1));
        if (random.oneIn(5)) {
            QString text;
            while (text.size() < 200)
                text += QString::fromUtf16(Sentences[random.below(quint32(Sentences.size()))]);
            text.truncate(200);
            item->setNote(noteBytes(text, options.noteType));
        }
        if (i > 0 && random.oneIn(50)) {
            const Item *target = items[random.below(quint32(i))];
            QStringList links{target->linkText()};
            if (random.oneIn(3))
                links.append(QStringLiteral("https://example.org/item/%1").arg(i + 1));
            item->setLinks(links);
        }
    }
    // The category list follows the file's order, as after loading.
    root->forEachDescendant([document](Item *item) { document->collectCategory(item->category()); });
    // The top level is shown open, as a user would leave it.
    root->setExpanded(true);
    for (Item *item : root->children())
        item->setExpanded(!options.chain);
}

void DocumentGenerator::sample(Document *document)
{
    document->setRoot(std::make_unique<TreeNode>(QStringLiteral("Moving house")));
    document->noteType = Document::PlainText;
    document->categories.clear();
    document->showDueDate = true;
    document->showStatistics = true;
    TreeNode *root = document->root();
    const SystemTime created = dateTime(2025, 3, 1, 9, 30);

    struct Row {
        int depth;
        const char16_t *name;
        const char16_t *category;
        int dueMonth; // 0: none
        int dueDay;
        quint16 status;
        quint16 progress;
        bool automatic;
    };
    // One row per item, depth first; progress of automatic items is rolled
    // up from their children below.
    const Row rows[] = {
        {1, u"Before the move", u"Errands", 0, 0, Item::ProgressBar, 0, true},
        {2, u"Give notice on the flat", u"Business", 3, 31, Item::CheckBox, 100, false},
        {2, u"Book the removal van", u"Errands", 4, 15, Item::CheckBox, 100, false},
        {2, u"Pack the boxes", u"Personal", 0, 0, Item::ProgressBar, 0, true},
        {3, u"Books and records", u"Personal", 0, 0, Item::CheckBox, 100, false},
        {3, u"Kitchen (plates, glasses, the café set)", u"Personal", 0, 0, Item::CheckBox, 0, false},
        {3, u"Winter clothes", u"Personal", 0, 0, Item::CheckBox, 0, false},
        {2, u"Change the address", u"Errands", 0, 0, Item::ProgressBar, 0, true},
        {3, u"Bank and insurance", u"Business", 4, 20, Item::CheckBox, 0, false},
        {3, u"Post office forwarding", u"Errands", 4, 25, Item::CheckBox, 100, false},
        {3, u"Friends and family", u"Personal", 0, 0, Item::CheckBox, 0, false},
        {1, u"Moving day", u"Errands", 5, 2, Item::CheckBox, 0, false},
        {2, u"Pick up the keys at 8:00", u"Errands", 5, 2, Item::CheckBox, 0, false},
        {2, u"Read the meters", u"Errands", 5, 2, Item::CheckBox, 0, false},
        {1, u"New home", u"Personal", 0, 0, Item::ProgressBar, 25, false},
        {2, u"Internet connection", u"Phone calls", 5, 5, Item::CheckBox, 0, false},
        {2, u"Paint the bedroom: Crème brûlée", u"Ideas", 0, 0, Item::NoStatus, 0, false},
        {2, u"Housewarming party", u"Holiday", 6, 14, Item::ProgressBar, 10, false},
    };
    std::vector<TreeNode *> path{root};
    std::vector<Item *> made;
    for (const Row &row : rows) {
        path.resize(size_t(row.depth));
        auto *item = new Item(QString::fromUtf16(row.name), 0, created);
        path.back()->appendChild(item);
        path.push_back(item);
        made.push_back(item);
        item->setCategory(document->collectCategory(QString::fromUtf16(row.category)));
        if (row.dueMonth)
            item->setDueDate(dateTime(2025, row.dueMonth, row.dueDay, 0, 0));
        item->setStatusType(row.status);
        item->storeProgress(row.progress);
        item->setAutoProgress(row.automatic);
    }
    // made[] follows rows[] above.
    Item *pack = made[3];
    Item *keys = made[12];
    Item *party = made[17];
    made[1]->setNote(NoteText::toPlainNote(
        QStringLiteral("Three months' notice, in writing.\r\nKeep the receipt of the registered letter.")));
    party->setNote(NoteText::toPlainNote(
        QStringLiteral("Invite the neighbours too.\r\nDrinks: lemonade, wine, something without alcohol.")));
    made[2]->setLinks({QStringLiteral("tel:+44 20 7946 0000"), QStringLiteral("https://example.org/vans")});
    keys->setLinks({pack->linkText()});
    party->setLinks({QStringLiteral("mailto:friends@example.org"), made[10]->linkText()});
    party->setPriority(5);
    made[16]->setItalic(true);
    made[16]->setColour(12);
    made[1]->setPriority(1);
    for (Item *item : made) {
        if (item->autoProgress() && item->hasChildren())
            Progress::rollUp(item->child(0));
    }
    root->setExpanded(true);
    made[0]->setExpanded(true);
    pack->setExpanded(true);
    document->setCurrent(made[0]);
}
