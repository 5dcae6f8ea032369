#include "support/outline.h"
#include "support/qbxprocess.h"

#include "storage/documentfile.h"

#include <QTemporaryDir>
#include <QTest>

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

private:
    QTemporaryDir m_dir;
    int m_serial = 0;

    QString save(Document &document)
    {
        const QString path = m_dir.filePath(QStringLiteral("doc%1.qbx").arg(++m_serial));
        if (!DocumentFile::save(document, path))
            qFatal("cannot save %s", qPrintable(path));
        return path;
    }

    QString sample(bool hideCompleted = false)
    {
        Document document;
        Outline::build(document.root(), Sample);
        document.root()->setName(QStringLiteral("Week"));
        document.hideCompleted = hideCompleted;
        return save(document);
    }

private Q_SLOTS:
    void view_data();
    void view();
    void find_data();
    void find();
    void badOptions_data();
    void badOptions();
    void applyWritesTheFileBack();
};

void TestQbxViews::view_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("hideCompleted");
    QTest::addColumn<QString>("expected");

    QTest::newRow("default view") << QStringList() << false
                                  << "Week\n  Groceries\n    Milk\n    Bread\n      Rye\n  Report\n    Draft\n"
                                     "    Review\n";
    QTest::newRow("by due date, descending")
        << QStringList{"--mode", "2", "--descending"} << false
        << "Week\n  [No Task/Due Date]\n    Rye\n    Review\n    Milk\n    Draft\n"
           "  Tuesday, March 5, 2024\n    Groceries\n    Bread\n  Monday, March 4, 2024\n    Report\n";
    QTest::newRow("by priority, by percent complete")
        << QStringList{"--mode", "3", "--order", "3"} << true
        << "Week\n  Priority 1\n    Report\n    Rye\n  Priority 3\n    Groceries\n  Priority 5\n    Bread\n"
           "    Review\n  Priority 10\n    Draft\n";
}

void TestQbxViews::view()
{
    QFETCH(QStringList, options);
    QFETCH(bool, hideCompleted);
    QFETCH(QString, expected);
    const QbxRun run = qbx(QStringList{QStringLiteral("view"), sample(hideCompleted)} + options);
    QCOMPARE(run.error(), QString());
    QCOMPARE(run.status, 0);
    QCOMPARE(run.text(), expected);
}

void TestQbxViews::find_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("hideCompleted");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("expected");
    auto row = [](const char *tag, const QStringList &options, const char *expected) {
        QTest::newRow(tag) << options << false << 0 << QString::fromUtf8(expected);
    };
    row("everything", {}, "1\tGroceries\n2\tMilk\n3\tBread\n4\tRye\n5\tReport\n6\tDraft\n7\tReview\n");
    row("name", {"--name", "r"}, "1\tGroceries\n3\tBread\n5\tReport\n6\tDraft\n");
    row("name without case", {"--name", "R", "--case-insensitive"},
        "1\tGroceries\n3\tBread\n4\tRye\n5\tReport\n6\tDraft\n7\tReview\n");
    row("priority", {"--priority", "5"}, "3\tBread\n7\tReview\n");
    row("category", {"--category", "Work"}, "5\tReport\n6\tDraft\n");
    row("due on a day", {"--due", "eq", "2024-03-05"}, "1\tGroceries\n3\tBread\n");
    row("due before", {"--due", "lt", "2024-03-05"}, "5\tReport\n");
    row("due after", {"--due", "gt", "2024-03-04"}, "1\tGroceries\n3\tBread\n");
    row("note without case", {"--note", "draft", "--case-insensitive"}, "6\tDraft\n");
    row("completed", {"--completed"}, "2\tMilk\n");
    row("colour", {"--colour", "4"}, "5\tReport\n");
    row("italic", {"--italic", "yes"}, "3\tBread\n");
    row("icon hidden", {"--show-icon", "no"}, "5\tReport\n");
    row("not started", {"--not-started", "--category", "Home"}, "1\tGroceries\n");
    // Matches hidden by the document's filters are not listed; when none is
    // left, nothing matched.
    QTest::newRow("only hidden matches") << QStringList{"--completed"} << true << 1 << QString();
}

void TestQbxViews::find()
{
    QFETCH(QStringList, options);
    QFETCH(bool, hideCompleted);
    QFETCH(int, status);
    QFETCH(QString, expected);
    const QbxRun run = qbx(QStringList{QStringLiteral("find"), sample(hideCompleted)} + options);
    QCOMPARE(run.status, status);
    QCOMPARE(run.text(), expected);
    QCOMPARE(run.error(), status ? QStringLiteral("No item matched the search criteria.\n") : QString());
}

void TestQbxViews::badOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("priority 21") << QStringList{"find", "--priority", "21"};
    QTest::newRow("due operator") << QStringList{"find", "--due", "le", "2024-01-01"};
    QTest::newRow("both progress options") << QStringList{"find", "--completed", "--not-started"};
    QTest::newRow("mode 5") << QStringList{"view", "--mode", "5"};
    QTest::newRow("apply without target") << QStringList{"apply", "--priority", "2"};
    QTest::newRow("apply past the end") << QStringList{"apply", "--to", "8", "--priority", "2"};
    QTest::newRow("apply to a leaf") << QStringList{"apply", "--to", "2", "--priority", "2"};
    QTest::newRow("apply status") << QStringList{"apply", "--to", "1", "--status", "box"};
}

void TestQbxViews::badOptions()
{
    QFETCH(QStringList, arguments);
    const QString path = sample();
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    arguments.insert(1, path);
    const QbxRun run = qbx(arguments);
    QCOMPARE(run.status, 2);
    QVERIFY(run.err.startsWith("qbx: "));
    QCOMPARE(run.out, QByteArray());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
}

// Which items take the attributes is the operation's rule; here each option
// reaches it and the file is written back.
void TestQbxViews::applyWritesTheFileBack()
{
    const QString path = sample();
    QbxRun run = qbx(QStringList{"apply", path, "--to", "1", "--priority", "7", "--category", "Errands", "--progress",
                                 "100", "--italic", "yes"});
    QCOMPARE(run.error(), QString());
    QCOMPARE(run.status, 0);
    Document document;
    QCOMPARE(DocumentFile::load(path, &document), DocumentFile::Loaded);
    const Item *bread = Outline::find(document.root(), QStringLiteral("Bread"));
    QCOMPARE(bread->priority(), 7);
    QCOMPARE(bread->category(), QStringLiteral("Errands"));
    QCOMPARE(bread->progress(), 100);
    QVERIFY(bread->isItalic());
    QCOMPARE(Outline::find(document.root(), QStringLiteral("Rye"))->priority(), 1);

    run = qbx(QStringList{"apply", path, "--to", "1", "--all-subitems", "--colour", "9", "--status", "progressbar",
                          "--show-icon", "no"});
    QCOMPARE(run.status, 0);
    Document again;
    QCOMPARE(DocumentFile::load(path, &again), DocumentFile::Loaded);
    const Item *rye = Outline::find(again.root(), QStringLiteral("Rye"));
    QCOMPARE(rye->colour(), 9);
    QCOMPARE(rye->statusType(), 2);
    QVERIFY(!rye->showIcon());
}

QBX_SUITE(TestQbxViews)
#include "qbxviews.moc"
