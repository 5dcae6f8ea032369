#include "support/outline.h"

#include "platform/collation.h"
#include "views/finder.h"

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
    void walkOrderAndHiddenMatches()
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

    void deepChain()
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
    void notesOfEveryType()
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

    // Each criterion alone, then two together (both must hold).
    void eachCriterion()
    {
        Document document;
        Outline::build(document.root(), R"(
Alpha Zed | cat=Work pri=5 due=2024-01-02T23:59 prog=100 col=2 italic
ÜBER beta | cat=work due=2024-01-03T00:00
gamma | cat=Économie pri=5 col=1 noicon
Delta | due=2024-01-01T08:00 prog=50
)");
        const auto found = [&](const FindCriteria &c) {
            return Outline::names(Finder::search(document, c)).join(QLatin1Char(','));
        };
        FindCriteria c = byName(QStringLiteral("zED"));
        QCOMPARE(found(c), QString());
        c.caseInsensitive = true;
        QCOMPARE(found(c), QStringLiteral("Alpha Zed"));
        c.name = QStringLiteral("über");
        QCOMPARE(found(c), QStringLiteral("ÜBER beta"));
        c.name = QStringLiteral("A");
        c.flags |= FindCriteria::Priority;
        c.priority = 5;
        QCOMPARE(found(c), QStringLiteral("Alpha Zed,gamma"));
        c.flags = FindCriteria::Category;
        c.category = QStringLiteral("Work"); // the locale tells case, not spelling
        QCOMPARE(found(c), QStringLiteral("Alpha Zed"));
        c.category = QStringLiteral("E\u0301conomie");
        QCOMPARE(found(c), QStringLiteral("gamma"));
        // Due dates compare by the day, whatever the times.
        c.flags = FindCriteria::DueDate;
        c.date = Outline::date(QStringLiteral("2024-01-02T12:00"));
        c.dateOperator = FindCriteria::LessThan;
        QCOMPARE(found(c), QStringLiteral("Delta"));
        c.dateOperator = FindCriteria::EqualTo;
        QCOMPARE(found(c), QStringLiteral("Alpha Zed"));
        c.dateOperator = FindCriteria::GreaterThan;
        QCOMPARE(found(c), QStringLiteral("ÜBER beta"));
        c.flags = FindCriteria::Progress;
        c.progress = 0; // not started, not every unfinished item
        QCOMPARE(found(c), QStringLiteral("ÜBER beta,gamma"));
        c.flags = FindCriteria::Colour;
        c.colour = 1;
        QCOMPARE(found(c), QStringLiteral("gamma"));
        c.flags = FindCriteria::Italic;
        c.italic = true;
        QCOMPARE(found(c), QStringLiteral("Alpha Zed"));
        c.flags = FindCriteria::ShowIcon;
        c.showIcon = false;
        QCOMPARE(found(c), QStringLiteral("gamma"));
    }
};

QTEST_GUILESS_MAIN(TestFind)
#include "tst_find.moc"
