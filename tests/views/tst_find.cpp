#include "support/outline.h"

#include "platform/collation.h"
#include "views/finder.h"

#include <QTest>

namespace {
QString found(const Document &document, const FindCriteria &criteria)
{
    return Outline::names(Finder::search(document, criteria)).join(QLatin1Char(','));
}
} // namespace

class TestFind : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void walkOrderAndHiddenMatches()
    {
        Document document;
        Outline::build(
            document.root(),
            "task 1\n  task 2\n    other\n    task 3 | prog=100\n      task 4\n  task 5\ntask 6 | st=2\n  task 7");
        document.root()->setName(QStringLiteral("task root")); // the root is never tested
        const FindCriteria c{.flags = FindCriteria::Name, .name = QStringLiteral("task")};
        QCOMPARE(found(document, c), QStringLiteral("task 1,task 2,task 3,task 4,task 5,task 6,task 7"));
        document.hideCompleted = true;
        document.hideByStatus = Document::HideProgressBar;
        QCOMPARE(found(document, c), QStringLiteral("task 1,task 2,task 5"));
    }

    void notesOfEveryType()
    {
        for (quint16 noteType : {0, 1, 2}) {
            Document document;
            document.noteType = noteType;
            Outline::build(document.root(), "x\nno note");
            document.root()->child(0)->setNote(
                NoteText::fromText(QStringLiteral("Call the Plumber {today}"), noteType));
            FindCriteria c{.flags = FindCriteria::NotePhrase, .caseInsensitive = true, .notePhrase = "the plumber"};
            QCOMPARE(found(document, c), QStringLiteral("x"));
            c.caseInsensitive = false;
            QCOMPARE(found(document, c), QString());
            c.notePhrase = QStringLiteral("{today}");
            QCOMPARE(found(document, c), QStringLiteral("x"));
        }
    }

    void eachCriterion()
    {
        Outline::Doc document("Alpha Zed | cat=Work pri=5 due=2024-01-02T23:59 prog=100 col=2 italic\n"
                              "ÜBER beta | cat=work due=2024-01-03T00:00\n"
                              "gamma | cat=Économie pri=5 col=1 noicon\n"
                              "Delta | due=2024-01-01T08:00 prog=50");
        using C = FindCriteria;
        // Due dates compare by the day, whatever the times.
        const SystemTime day = Outline::date(QStringLiteral("2024-01-02T12:00"));
        const std::pair<FindCriteria, const char *> cases[] = {
            {{.flags = C::Name, .name = "zED"}, ""},
            {{.flags = C::Name, .caseInsensitive = true, .name = "zED"}, "Alpha Zed"},
            {{.flags = C::Name, .caseInsensitive = true, .name = "über"}, "ÜBER beta"},
            {{.flags = C::Name | C::Priority, .caseInsensitive = true, .priority = 5, .name = "A"}, "Alpha Zed,gamma"},
            // The locale tells case, not spelling.
            {{.flags = C::Category, .caseInsensitive = true, .category = "Work"}, "Alpha Zed"},
            {{.flags = C::Category, .caseInsensitive = true, .category = "E\u0301conomie"}, "gamma"},
            {{.flags = C::DueDate, .dateOperator = C::LessThan, .date = day}, "Delta"},
            {{.flags = C::DueDate, .dateOperator = C::EqualTo, .date = day}, "Alpha Zed"},
            {{.flags = C::DueDate, .dateOperator = C::GreaterThan, .date = day}, "ÜBER beta"},
            {{.flags = C::Progress, .progress = 0}, "ÜBER beta,gamma"}, // not started, not every unfinished item
            {{.flags = C::Colour, .colour = 1}, "gamma"},
            {{.flags = C::Italic, .italic = true}, "Alpha Zed"},
            {{.flags = C::ShowIcon, .showIcon = false}, "gamma"}};
        for (const auto &[criteria, names] : cases)
            QCOMPARE(found(document, criteria), QString::fromUtf8(names));
    }
};

QTEST_GUILESS_MAIN(TestFind)
#include "tst_find.moc"
