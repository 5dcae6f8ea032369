#include "support/outline.h"
#include "support/randomtree.h"

#include "platform/collation.h"
#include "views/finder.h"

#include <QCollator>
#include <QTest>

class TestFind : public QObject {
    Q_OBJECT

private:
    static FindCriteria byName(const QString &name)
    {
        FindCriteria c;
        c.flags = FindCriteria::Name;
        c.name = name;
        return c;
    }
    static FindCriteria byNote(const QString &phrase, bool caseInsensitive)
    {
        FindCriteria c;
        c.flags = FindCriteria::NotePhrase;
        c.notePhrase = phrase;
        c.caseInsensitive = caseInsensitive;
        return c;
    }

private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void walkOrderAndHiddenMatches();
    void deepChain();
    void notesOfEveryType();
    void agreesWithThePlainRules_data();
    void agreesWithThePlainRules();
};

void TestFind::walkOrderAndHiddenMatches()
{
    Document document;
    Outline::build(document.root(), R"(
task 1
  task 2
    other
    task 3 | prog=100
      task 4
  task 5
task 6 | st=2
  task 7
)");
    document.root()->setName(QStringLiteral("task root")); // the root is never tested
    const FindCriteria c = byName(QStringLiteral("task"));
    QCOMPARE(Outline::names(Finder::search(document, c)),
             (QStringList{"task 1", "task 2", "task 3", "task 4", "task 5", "task 6", "task 7"}));
    document.hideCompleted = true;
    document.hideByStatus = Document::HideProgressBar;
    QCOMPARE(Outline::names(Finder::search(document, c)), (QStringList{"task 1", "task 2", "task 5"}));
    // Matched but hidden: nothing left to list.
    QVERIFY(Finder::search(document, byName(QStringLiteral("4"))).empty());
}

void TestFind::deepChain()
{
    Document document;
    TreeNode *parent = document.root();
    for (int i = 0; i < 300000; ++i) {
        auto *item = new Item(i % 100000 == 99999 ? QStringLiteral("needle") : QStringLiteral("hay"));
        parent->appendChild(item);
        parent = item;
    }
    QCOMPARE(Finder::search(document, byName(QStringLiteral("needle"))).size(), size_t(3));
}

// The phrase is looked for in the note's text, whatever the note's format.
void TestFind::notesOfEveryType()
{
    for (quint16 noteType : {0, 1, 2}) {
        Document document;
        document.noteType = noteType;
        auto *item = new Item(QStringLiteral("x"));
        item->setNote(NoteText::fromText(QStringLiteral("Call the Plumber {today}"), noteType));
        document.root()->appendChild(item);
        document.root()->appendChild(new Item(QStringLiteral("no note")));
        QCOMPARE(Finder::search(document, byNote(QStringLiteral("the plumber"), true)).size(), size_t(1));
        QCOMPARE(Finder::search(document, byNote(QStringLiteral("{today}"), false)).size(), size_t(1));
        QCOMPARE(Finder::search(document, byNote(QStringLiteral("the plumber"), false)).size(), size_t(0));
    }
}

void TestFind::agreesWithThePlainRules_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 12; ++seed)
        QTest::newRow(QByteArray::number(seed).constData()) << seed;
}

// Random criteria over a random tree, compared with each rule read plainly:
// QString's own lower-casing and search, a separate collator, calendar days.
// The tree's words and times make case, accents and same-day times common.
void TestFind::agreesWithThePlainRules()
{
    QFETCH(quint32, seed);
    Document document;
    RandomTree::fill(document.root(), 1500, seed);
    QRandomGenerator rng(seed * 7919);
    QCollator collator(QLocale(QLocale::English, QLocale::UnitedStates));
    collator.setCaseSensitivity(Qt::CaseSensitive);
    auto pick = [&](const QStringList &list) { return list[int(rng.bounded(quint32(list.size())))]; };

    int selective = 0; // rounds that found some items but not all
    for (int round = 0; round < 40; ++round) {
        FindCriteria c;
        c.flags = rng.bounded(0x200u) & rng.bounded(0x200u); // a few criteria at a time
        c.caseInsensitive = rng.bounded(2u);
        const QString word = pick(RandomTree::words());
        c.name = word.mid(int(rng.bounded(quint32(word.size()))), 1 + int(rng.bounded(3u)));
        c.notePhrase = rng.bounded(2u) ? c.name : QStringLiteral("a a");
        c.priority = quint16(1 + rng.bounded(5u) * 4);
        c.category = pick(RandomTree::categories());
        c.dateOperator = FindCriteria::DateOperator(rng.bounded(3u));
        c.date = Outline::date(QDate(2024, 1, 1).addDays(rng.bounded(40u)).toString(Qt::ISODate));
        c.progress = rng.bounded(2u) ? 100 : 0;
        c.colour = quint16(rng.bounded(3u));
        c.italic = rng.bounded(2u);
        c.showIcon = rng.bounded(2u);
        document.hideCompleted = rng.bounded(3u) == 0;
        document.hideByStatus = rng.bounded(3u) == 0 ? (0x10u << rng.bounded(3u)) : 0;

        auto visible = [&](const Item *item) {
            if (document.hideCompleted && item->progress() == 100)
                return false;
            return !(document.hideByStatus & (0x10u << item->statusType()));
        };
        auto contains = [&](const QString &text, const QString &part) {
            return c.caseInsensitive ? text.toLower().contains(part.toLower()) : text.contains(part);
        };
        auto plainMatch = [&](const Item *item) {
            if ((c.flags & 0x001) && !contains(item->name(), c.name))
                return false;
            if ((c.flags & 0x002) && item->priority() != c.priority)
                return false;
            if ((c.flags & 0x004) && collator.compare(item->category(), c.category) != 0)
                return false;
            if (c.flags & 0x008) {
                if (!item->hasDueDate())
                    return false;
                const QDate day = item->dueDate().toDate();
                const QDate wanted = c.date.toDate();
                const bool ok = c.dateOperator == FindCriteria::LessThan  ? day < wanted
                                : c.dateOperator == FindCriteria::EqualTo ? day == wanted
                                                                          : day > wanted;
                if (!ok)
                    return false;
            }
            if ((c.flags & 0x010) &&
                (item->note().isEmpty() || !contains(NoteText::plainText(item->note(), 0), c.notePhrase)))
                return false;
            if ((c.flags & 0x020) && item->progress() != c.progress)
                return false;
            if ((c.flags & 0x040) && item->colour() != c.colour)
                return false;
            if ((c.flags & 0x080) && item->isItalic() != c.italic)
                return false;
            return !(c.flags & 0x100) || item->showIcon() == c.showIcon;
        };
        std::vector<const Item *> expected;
        TreeWalker walker(document.root());
        while (const Item *item = walker.next()) {
            bool shown = true;
            for (const TreeNode *up = item; up->isItem(); up = up->parent())
                shown = shown && visible(up->asItem());
            if (shown && plainMatch(item))
                expected.push_back(item);
        }
        const std::vector<Item *> actual = Finder::search(document, c);
        QVERIFY(std::equal(actual.begin(), actual.end(), expected.begin(), expected.end()));
        if (!actual.empty() && actual.size() < 1500)
            ++selective;
    }
    QVERIFY(selective >= 10);
}

QTEST_GUILESS_MAIN(TestFind)
#include "tst_find.moc"
