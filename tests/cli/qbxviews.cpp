#include "support/outline.h"
#include "support/qbxprocess.h"

#include "storage/documentfile.h"

#include <QTemporaryDir>

namespace {

const char *const Sample = R"(
Groceries | cat=Home pri=3 due=2024-03-05T09:00 exp
  Milk | cat=Home pri=3 prog=100 note=full_cream
  Bread | pri=5 due=2024-03-05T18:30 italic
    Rye | cat=Home pri=1 st=2 prog=50
Report | cat=Work pri=1 due=2024-03-04 col=4 noicon
  Draft | cat=Work prog=0 st=0 note=First_DRAFT_notes
  Review | cat=work pri=5 st=2 prog=10 auto
)";

} // namespace

class TestQbxViews : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_serial = 0;

    QString sample(bool hideCompleted = false)
    {
        Document document;
        Outline::build(document.root(), Sample);
        document.root()->setName(QStringLiteral("Week"));
        document.hideCompleted = hideCompleted;
        const QString path = m_dir.filePath(QStringLiteral("doc%1.qbx").arg(++m_serial));
        DocumentFile::save(document, path);
        return path;
    }

private Q_SLOTS:
    void view()
    {
        const std::tuple<QStringList, bool, const char *> cases[] = {
            {{}, false, "Week\n  Groceries\n    Milk\n    Bread\n      Rye\n  Report\n    Draft\n    Review\n"},
            {{"--mode", "2", "--descending"},
             false,
             "Week\n  [No Task/Due Date]\n    Rye\n    Review\n    Milk\n    Draft\n  Tuesday, March 5, 2024\n"
             "    Groceries\n    Bread\n  Monday, March 4, 2024\n    Report\n"},
            {{"--mode", "3", "--order", "3"},
             true,
             "Week\n  Priority 1\n    Report\n    Rye\n  Priority 3\n    Groceries\n  Priority 5\n    Bread\n"
             "    Review\n  Priority 10\n    Draft\n"},
        };
        for (const auto &[options, hideCompleted, shown] : cases)
            QCOMPARE(qbx(QStringList{"view", sample(hideCompleted)} + options), printed(shown));
    }

    void find()
    {
        const std::tuple<QStringList, const char *> cases[] = {
            {QStringList(), "1\tGroceries\n2\tMilk\n3\tBread\n4\tRye\n5\tReport\n6\tDraft\n7\tReview\n"},
            {{"--name", "r"}, "1\tGroceries\n3\tBread\n5\tReport\n6\tDraft\n"},
            {{"--name", "R", "--case-insensitive"}, "1\tGroceries\n3\tBread\n4\tRye\n5\tReport\n6\tDraft\n7\tReview\n"},
            {{"--priority", "5"}, "3\tBread\n7\tReview\n"},
            {{"--category", "Work"}, "5\tReport\n6\tDraft\n"},
            {{"--due", "eq", "2024-03-05"}, "1\tGroceries\n3\tBread\n"},
            {{"--due", "lt", "2024-03-05"}, "5\tReport\n"},
            {{"--due", "gt", "2024-03-04"}, "1\tGroceries\n3\tBread\n"},
            {{"--note", "draft", "--case-insensitive"}, "6\tDraft\n"},
            {QStringList{"--completed"}, "2\tMilk\n"},
            {{"--colour", "4"}, "5\tReport\n"},
            {{"--italic", "yes"}, "3\tBread\n"},
            {{"--show-icon", "no"}, "5\tReport\n"},
            {{"--not-started", "--category", "Home"}, "1\tGroceries\n"},
        };
        const QString path = sample();
        for (const auto &[options, found] : cases)
            QCOMPARE(qbx(QStringList{QStringLiteral("find"), path} + options), printed(found));
        // Matches hidden by the document's filters are not listed; when none is left, nothing matched.
        QCOMPARE(qbx(QStringList{QStringLiteral("find"), sample(true), QStringLiteral("--completed")}),
                 refused(1, "No item matched the search criteria.\n"));
    }

    void badOptions()
    {
        const QStringList cases[] = {
            {"find", "--priority", "21"},
            {"find", "--due", "le", "2024-01-01"},
            {"find", "--completed", "--not-started"},
            {"view", "--mode", "5"},
            {"apply", "--priority", "2"},
            {"apply", "--to", "8", "--priority", "2"},
            {"apply", "--to", "2", "--priority", "2"}, // a leaf
            {"apply", "--to", "1", "--status", "box"},
        };
        const QString path = sample();
        const QByteArray before = fileBytes(path);
        for (QStringList arguments : cases) {
            arguments.insert(1, path);
            const QbxRun run = qbx(arguments);
            QCOMPARE(std::pair(run.status, run.out), std::pair(2, QByteArray()));
            QVERIFY(run.err.startsWith("qbx: "));
            QCOMPARE(fileBytes(path), before);
        }
    }

    // Which items take the attributes is the operation's rule; here each option reaches it.
    void applyWritesTheFileBack()
    {
        const QString path = sample();
        QCOMPARE(qbx(QStringList{"apply", path, "--to", "1", "--priority", "7", "--category", "Errands", "--progress",
                                 "100", "--italic", "yes"}),
                 printed(""));
        QCOMPARE(qbx(QStringList{"apply", path, "--to", "1", "--all-subitems", "--colour", "9", "--status",
                                 "progressbar", "--show-icon", "no"}),
                 printed(""));
        Document document;
        QCOMPARE(DocumentFile::load(path, &document), DocumentFile::Loaded);
        const Item *bread = Outline::find(document.root(), QStringLiteral("Bread"));
        QCOMPARE(std::tuple(int(bread->priority()), bread->category(), int(bread->progress()), bread->isItalic()),
                 std::tuple(7, QStringLiteral("Errands"), 100, true));
        const Item *rye = Outline::find(document.root(), QStringLiteral("Rye"));
        QCOMPARE(std::tuple(int(rye->priority()), int(rye->colour()), int(rye->statusType()), rye->showIcon()),
                 std::tuple(1, 9, 2, false));
    }
};

QBX_SUITE(TestQbxViews)
#include "qbxviews.moc"
