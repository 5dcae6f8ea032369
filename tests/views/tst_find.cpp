#include "outline.h"
#include "randomtree.h"

#include "platform/collation.h"
#include "views/finder.h"

#include <QCollator>
#include <QTest>

class TestFind : public QObject {
    Q_OBJECT

private:
    // Criteria written as words: "name=ABC", "ci", "pri=3", "cat=Work",
    // "due<2024-03-05" (also = and >), "note=two_words", "done", "notstarted",
    // "col=2", "italic=1", "icon=0".
    static FindCriteria criteria(const QString &text)
    {
        FindCriteria c;
        const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (const QString &part : parts) {
            const QString value = part.section(QLatin1Char('='), 1).replace(QLatin1Char('_'), QLatin1Char(' '));
            if (part == QLatin1String("ci")) {
                c.caseInsensitive = true;
            } else if (part.startsWith(QLatin1String("name="))) {
                c.flags |= FindCriteria::Name;
                c.name = value;
            } else if (part.startsWith(QLatin1String("pri="))) {
                c.flags |= FindCriteria::Priority;
                c.priority = value.toUShort();
            } else if (part.startsWith(QLatin1String("cat="))) {
                c.flags |= FindCriteria::Category;
                c.category = value;
            } else if (part.startsWith(QLatin1String("due"))) {
                c.flags |= FindCriteria::DueDate;
                const QChar op = part[3];
                c.dateOperator = op == QLatin1Char('<')   ? FindCriteria::LessThan
                                 : op == QLatin1Char('=') ? FindCriteria::EqualTo
                                                          : FindCriteria::GreaterThan;
                c.date = Outline::date(part.mid(4));
            } else if (part.startsWith(QLatin1String("note="))) {
                c.flags |= FindCriteria::NotePhrase;
                c.notePhrase = value;
            } else if (part == QLatin1String("done") || part == QLatin1String("notstarted")) {
                c.flags |= FindCriteria::Progress;
                c.progress = part == QLatin1String("done") ? 100 : 0;
            } else if (part.startsWith(QLatin1String("col="))) {
                c.flags |= FindCriteria::Colour;
                c.colour = value.toUShort();
            } else if (part.startsWith(QLatin1String("italic="))) {
                c.flags |= FindCriteria::Italic;
                c.italic = value == QLatin1String("1");
            } else if (part.startsWith(QLatin1String("icon="))) {
                c.flags |= FindCriteria::ShowIcon;
                c.showIcon = value == QLatin1String("1");
            } else {
                qFatal("unknown criterion %s", qPrintable(part));
            }
        }
        return c;
    }

private Q_SLOTS:
    void initTestCase();
    void matchingRules_data();
    void matchingRules();
    void walkOrderAndHiddenMatches();
    void deepChain();
    void notesOfEveryType_data();
    void notesOfEveryType();
    void agreesWithThePlainRules_data();
    void agreesWithThePlainRules();
};

void TestFind::initTestCase()
{
    Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestFind::matchingRules_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("fields");
    QTest::addColumn<QString>("criteria");
    QTest::addColumn<bool>("matches");

    QTest::newRow("no criteria") << "anything"
                                 << ""
                                 << "" << true;
    QTest::newRow("name without case") << "xabcx"
                                       << ""
                                       << "name=ABC ci" << true;
    QTest::newRow("name with case") << "xabcx"
                                    << ""
                                    << "name=ABC" << false;
    QTest::newRow("name with case, same case") << "xabcx"
                                               << ""
                                               << "name=abc" << true;
    QTest::newRow("name lowered too") << "xABCx"
                                      << ""
                                      << "name=abc ci" << true;
    QTest::newRow("name non-ASCII without case") << "Ünïcode"
                                                 << ""
                                                 << "name=üNÏ ci" << true;
    QTest::newRow("name non-ASCII with case") << "Ünïcode"
                                              << ""
                                              << "name=üNÏ" << false;
    QTest::newRow("name not inside") << "abc"
                                     << ""
                                     << "name=abcd" << false;
    QTest::newRow("priority equal") << "x"
                                    << "pri=3"
                                    << "pri=3" << true;
    QTest::newRow("priority differs") << "x"
                                      << "pri=3"
                                      << "pri=4" << false;
    QTest::newRow("category equal") << "x"
                                    << "cat=Work"
                                    << "cat=Work" << true;
    QTest::newRow("category keeps case") << "x"
                                         << "cat=Work"
                                         << "cat=work ci" << false;
    QTest::newRow("category is no substring") << "x"
                                              << "cat=Work"
                                              << "cat=Wor" << false;
    QTest::newRow("category none") << "x"
                                   << ""
                                   << "cat=Work" << false;
    QTest::newRow("due equal any time of day") << "x"
                                               << "due=2024-03-05T23:59"
                                               << "due=2024-03-05" << true;
    QTest::newRow("due less") << "x"
                              << "due=2024-03-05T23:59"
                              << "due<2024-03-06" << true;
    QTest::newRow("due not less on the day") << "x"
                                             << "due=2024-03-05T23:59"
                                             << "due<2024-03-05" << false;
    QTest::newRow("due greater") << "x"
                                 << "due=2024-03-05T00:01"
                                 << "due>2024-03-04" << true;
    QTest::newRow("due not greater on the day") << "x"
                                                << "due=2024-03-05T23:59"
                                                << "due>2024-03-05" << false;
    QTest::newRow("no due, less") << "x"
                                  << ""
                                  << "due<2099-01-01" << false;
    QTest::newRow("no due, greater") << "x"
                                     << ""
                                     << "due>1900-01-01" << false;
    QTest::newRow("completed") << "x"
                               << "prog=100"
                               << "done" << true;
    QTest::newRow("not completed") << "x"
                                   << "prog=99"
                                   << "done" << false;
    QTest::newRow("cleared finds not started") << "x"
                                               << "prog=0"
                                               << "notstarted" << true;
    QTest::newRow("cleared skips started") << "x"
                                           << "prog=50"
                                           << "notstarted" << false;
    QTest::newRow("note phrase without case") << "x"
                                              << "note=Buy_Milk_today"
                                              << "note=y_milk ci" << true;
    QTest::newRow("note phrase with case") << "x"
                                           << "note=Buy_Milk_today"
                                           << "note=y_milk" << false;
    QTest::newRow("no note never matches") << "x"
                                           << ""
                                           << "note=milk" << false;
    QTest::newRow("colour") << "x"
                            << "col=2"
                            << "col=2" << true;
    QTest::newRow("colour differs") << "x"
                                    << "col=2"
                                    << "col=0" << false;
    QTest::newRow("italic") << "x"
                            << "italic"
                            << "italic=1" << true;
    QTest::newRow("not italic") << "x"
                                << ""
                                << "italic=1" << false;
    QTest::newRow("icon hidden") << "x"
                                 << "noicon"
                                 << "icon=0" << true;
    QTest::newRow("icon shown") << "x"
                                << ""
                                << "icon=0" << false;
    QTest::newRow("all hold") << "Task one"
                              << "pri=2 cat=A prog=100 due=2024-01-02 col=1 note=z"
                              << "name=task ci pri=2 cat=A done due=2024-01-02 col=1 note=z icon=1 italic=0" << true;
    QTest::newRow("one fails") << "Task one"
                               << "pri=2 cat=A prog=100 due=2024-01-02 col=1 note=z"
                               << "name=task ci pri=2 cat=A done due=2024-01-02 col=1 note=z icon=0" << false;
}

void TestFind::matchingRules()
{
    QFETCH(QString, name);
    QFETCH(QString, fields);
    QFETCH(QString, criteria);
    QFETCH(bool, matches);
    Item item(name);
    Outline::setFields(&item, fields);
    const Finder finder(TestFind::criteria(criteria), 0);
    QCOMPARE(finder.matches(&item), matches);
}

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
    const FindCriteria c = criteria(QStringLiteral("name=task"));
    QCOMPARE(Outline::names(Finder::search(document, c)),
             (QStringList{"task 1", "task 2", "task 3", "task 4", "task 5", "task 6", "task 7"}));
    document.hideCompleted = true;
    QCOMPARE(Outline::names(Finder::search(document, c)),
             (QStringList{"task 1", "task 2", "task 5", "task 6", "task 7"}));
    document.hideByStatus = Document::HideProgressBar;
    QCOMPARE(Outline::names(Finder::search(document, c)), (QStringList{"task 1", "task 2", "task 5"}));
    // Matched but hidden: nothing left to list.
    QVERIFY(Finder::search(document, criteria(QStringLiteral("name=4"))).empty());
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
    QCOMPARE(Finder::search(document, criteria(QStringLiteral("name=needle"))).size(), size_t(3));
}

void TestFind::notesOfEveryType_data()
{
    QTest::addColumn<int>("noteType");
    QTest::newRow("plain text") << 0;
    QTest::newRow("rich ink") << 1;
    QTest::newRow("rich text") << 2;
}

// The phrase is looked for in the note's text, whatever the note's format.
void TestFind::notesOfEveryType()
{
    QFETCH(int, noteType);
    Document document;
    document.noteType = quint16(noteType);
    auto *item = new Item(QStringLiteral("x"));
    item->setNote(NoteText::fromText(QStringLiteral("Call the Plumber {today}"), quint16(noteType)));
    QVERIFY(item->noteSize() > 0);
    document.root()->appendChild(item);
    document.root()->appendChild(new Item(QStringLiteral("no note")));
    QCOMPARE(Finder::search(document, criteria(QStringLiteral("note=the_plumber ci"))).size(), size_t(1));
    QCOMPARE(Finder::search(document, criteria(QStringLiteral("note={today}"))).size(), size_t(1));
    QCOMPARE(Finder::search(document, criteria(QStringLiteral("note=the_plumber"))).size(), size_t(0));
}

void TestFind::agreesWithThePlainRules_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 12; ++seed)
        QTest::newRow(QByteArray::number(seed).constData()) << seed;
}

// Random criteria over a random tree, compared with each rule read plainly:
// QString's own lower-casing and search, a separate collator, calendar days.
void TestFind::agreesWithThePlainRules()
{
    QFETCH(quint32, seed);
    Document document;
    RandomTree::fill(document.root(), 1500, seed);
    QRandomGenerator rng(seed * 7919);
    QCollator collator(QLocale(QLocale::English, QLocale::UnitedStates));
    collator.setCaseSensitivity(Qt::CaseSensitive);

    int selective = 0; // rounds that found some items but not all
    for (int round = 0; round < 40; ++round) {
        FindCriteria c;
        c.flags = rng.bounded(0x200u) & rng.bounded(0x200u); // a few criteria at a time
        c.caseInsensitive = rng.bounded(2u);
        const QString word = RandomTree::words()[int(rng.bounded(quint32(RandomTree::words().size())))];
        const int from = int(rng.bounded(quint32(word.size())));
        c.name = word.mid(from, 1 + int(rng.bounded(3u)));
        c.notePhrase = rng.bounded(2u) ? c.name : QStringLiteral("a a");
        c.priority = quint16(1 + rng.bounded(5u) * 4);
        c.category = RandomTree::categories()[int(rng.bounded(quint32(RandomTree::categories().size())))];
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
            if ((c.flags & 0x100) && item->showIcon() != c.showIcon)
                return false;
            return true;
        };
        QStringList expected;
        TreeWalker walker(document.root());
        while (const Item *item = walker.next()) {
            bool shown = true;
            for (const TreeNode *up = item; up->isItem(); up = up->parent())
                shown = shown && visible(up->asItem());
            if (shown && plainMatch(item))
                expected.append(item->name() + QLatin1Char('@') + QString::number(quintptr(item), 16));
        }
        QStringList actual;
        for (const Item *item : Finder::search(document, c))
            actual.append(item->name() + QLatin1Char('@') + QString::number(quintptr(item), 16));
        QCOMPARE(actual, expected);
        if (!actual.isEmpty() && actual.size() < 1500)
            ++selective;
    }
    QVERIFY(selective >= 10);
}

QTEST_GUILESS_MAIN(TestFind)
#include "tst_find.moc"
