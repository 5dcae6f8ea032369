#include "support/outline.h"

#include "model/childorder.h"
#include "model/editing.h"
#include "platform/collation.h"
#include "views/groupview.h"
#include "views/viewrows.h"

#include <QLocale>
#include <QTest>

class TestGroupView : public QObject {
    Q_OBJECT

private:
    // "Heading: item, item" per heading, in display order.
    static QStringList layout(const GroupView &view)
    {
        QStringList out;
        for (const GroupHeading *heading : view.headings())
            out.append(heading->text() + QStringLiteral(": ") +
                       Outline::names(heading->items()).join(QStringLiteral(", ")));
        return out;
    }

    static QStringList rowTexts(const ViewRows &rows)
    {
        QStringList out;
        for (int i = 0; i < rows.count(); ++i)
            out.append(QString(rows.row(i).level * 2, QLatin1Char(' ')) + rows.text(i));
        return out;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void headingText_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("fields");
        QTest::addColumn<QString>("text");
        auto row = [](const char *tag, int mode, const char *fields, const char *text) {
            QTest::newRow(tag) << mode << QString::fromUtf8(fields) << QString::fromUtf8(text);
        };
        row("category", 1, "cat=Work", "Work");
        row("no category", 1, "", "[No Category]");
        row("long date", 2, "due=2024-03-05T10:30", "Tuesday, March 5, 2024");
        row("no due date", 2, "", "[No Task/Due Date]");
        row("priority 20", 3, "pri=20", "Priority 20");
        row("percent", 4, "prog=45", "45%");
        row("percent 0", 4, "", "0%");
    }

    void headingText()
    {
        QFETCH(int, mode);
        QFETCH(QString, fields);
        QFETCH(QString, text);
        Item item(QStringLiteral("x"));
        Outline::setFields(&item, fields);
        QCOMPARE(GroupView::headingText(&item, quint16(mode)), text);

        // A month of 0 means no date whatever the other fields hold.
        SystemTime noMonth;
        noMonth.year = 2024;
        noMonth.day = 5;
        item.setDueDate(noMonth);
        QCOMPARE(GroupView::headingText(&item, GroupView::ByDueDate), QStringLiteral("[No Task/Due Date]"));
    }

    void groupsAndOrders_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("orderKey");
        QTest::addColumn<bool>("ascending");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("category by name")
            << 1 << 0 << true << QStringList{"[No Category]: b, e", "Home: c, d", "work: f", "Work: a, g"};
        QTest::newRow("category descending by priority")
            << 1 << 1 << false << QStringList{"Work: a, g", "work: f", "Home: c, d", "[No Category]: e, b"};
        QTest::newRow("due date by name") << 2 << 0 << true << QStringList{"Monday, March 4, 2024: c, f",
                                                         "Tuesday, March 5, 2024: a, d, e", "[No Task/Due Date]: b, g"};
        QTest::newRow("due date descending") << 2 << 0 << false
            << QStringList{"[No Task/Due Date]: g, b", "Tuesday, March 5, 2024: e, d, a",
                           "Monday, March 4, 2024: f, c"};
        QTest::newRow("due date items by due date") << 2 << 4 << true
            << QStringList{"Monday, March 4, 2024: f, c", "Tuesday, March 5, 2024: e, a, d",
                           "[No Task/Due Date]: b, g"};
        QTest::newRow("priority descending")
            << 3 << 0 << false << QStringList{"Priority 10: f, e, a", "Priority 5: g, b", "Priority 1: d, c"};
        QTest::newRow("priority by progress")
            << 3 << 3 << true << QStringList{"Priority 1: c, d", "Priority 5: b, g", "Priority 10: f, a, e"};
        QTest::newRow("percent by name") << 4 << 0 << true << QStringList{"0%: b, c, f", "30%: a, e", "100%: d, g"};
        QTest::newRow("percent descending") << 4 << 0 << false << QStringList{"100%: g, d", "30%: e, a", "0%: f, c, b"};
    }

    void groupsAndOrders()
    {
        QFETCH(int, mode);
        QFETCH(int, orderKey);
        QFETCH(bool, ascending);
        QFETCH(QStringList, expected);

        Document document;
        // Parents and children fall into groups side by side, whatever their depth.
        Outline::build(document.root(), R"(
a | cat=Work pri=10 due=2024-03-05T09:00 prog=30
  b | pri=5 prog=0
    c | cat=Home pri=1 due=2024-03-04T23:59 prog=0
  d | cat=Home pri=1 due=2024-03-05T18:00 prog=100
e | pri=10 due=2024-03-05T00:00 prog=30
  f | cat=work pri=10 due=2024-03-04T08:00 prog=0
g | cat=Work pri=5 prog=100
)");
        document.viewOrder = quint16(orderKey);
        document.viewAscending = ascending;
        const GroupView view(document, quint16(mode));
        QCOMPARE(layout(view), expected);
    }

    void headingProgress()
    {
        Document document;
        Outline::build(document.root(), R"(
a | cat=W prog=100
  b | cat=W prog=100
c | cat=W prog=0
d | cat=V prog=40
)");
        const GroupView view(document, GroupView::ByCategory);
        const GroupHeading *w = view.heading(QStringLiteral("W"));
        QVERIFY(w);
        QCOMPARE(w->progress(), 66); // unsigned mean, the fraction dropped
        const Progress::Statistics stats = w->statistics();
        QCOMPARE(stats.notStarted, 1);
        QCOMPARE(stats.started, 0);
        QCOMPARE(stats.completed, 2);
        Outline::find(document.root(), QStringLiteral("c"))->storeProgress(100);
        QCOMPARE(w->progress(), 100);
    }

    void insertIntoGroupedView()
    {
        Document document;
        Outline::build(document.root(), R"(
m | cat=Home
k | cat=Work
)");
        document.viewMode = GroupView::ByCategory;
        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  Home", "  Work"}));

        // Into an existing heading: placed in order by name; the heading opens
        // so that the new current item is in sight.
        document.setCurrent(Outline::find(document.root(), QStringLiteral("m")));
        auto *a = new Item(QStringLiteral("a"));
        a->setCategory(QStringLiteral("Home"));
        Editing::insertItem(document, a, InsertPosition::Same);
        QCOMPARE(rows.itemInserted(a), 2);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  Home", "    a", "    m", "  Work"}));

        // A new heading is made, opened and sorted among the others.
        auto *z = new Item(QStringLiteral("z"));
        z->setCategory(QStringLiteral("Inbox"));
        Editing::insertItem(document, z, InsertPosition::Top);
        QCOMPARE(rows.itemInserted(z), 5);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  Home", "    a", "    m", "  Inbox", "    z", "  Work"}));
        QVERIFY(rows.groupView()->heading(QStringLiteral("Inbox"))->isExpanded());
        QVERIFY(!rows.groupView()->heading(QStringLiteral("Work"))->isExpanded());
        // The tree itself only got the items where the insertion put them.
        QCOMPARE(Outline::names(document.root()->children()), (QStringList{"m", "a", "k", "z"}));
    }

    void defaultViewRows()
    {
        Document document;
        Outline::build(document.root(), R"(
a | exp
  b | exp
    c
  d
e
  f
)");
        document.root()->setExpanded(true);
        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    b", "      c", "    d", "  e"}));
        QCOMPARE(rows.row(3).node, Outline::find(document.root(), QStringLiteral("c")));
        QVERIFY(rows.row(5).expandable);
        QVERIFY(!rows.row(4).expandable);
        QCOMPARE(rows.parentIndex(3), 2);
        QCOMPARE(rows.parentIndex(1), 0); // the title row

        QCOMPARE(rows.rowsBelow(1), 3);
        QCOMPARE(rows.rowsBelow(4), 0); // d, then its parent's sibling e
        QCOMPARE(rows.setExpanded(5, true), 1);
        QCOMPARE(rows.setExpanded(1, false), 3);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  e", "    f"}));
        // A collapsed parent keeps its children's own state.
        QCOMPARE(rows.rowsOnExpand(1), 3);
        QCOMPARE(rows.setExpanded(1, true), 3);
        QCOMPARE(rows.setExpanded(1, true), 0);
        QCOMPARE(rows.rowsOnExpand(1), 0);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    b", "      c", "    d", "  e", "    f"}));

        rows.collapseAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  e"}));
        QVERIFY(!Outline::find(document.root(), QStringLiteral("b"))->isExpanded());
        QCOMPARE(rows.reveal(Outline::find(document.root(), QStringLiteral("c"))), 3); // its ancestors open
        rows.expandAll();
        QCOMPARE(rows.setExpanded(0, false), 6);

        ViewRows branch(document, Outline::find(document.root(), QStringLiteral("a")));
        QCOMPARE(rowTexts(branch), (QStringList{"a", "  b", "    c", "  d"}));
        QCOMPARE(branch.row(0).kind, ViewRows::Kind::Item);
        // Revealing opens the ancestors inside the branch, none above it.
        QCOMPARE(branch.setExpanded(1, false), 1);
        QCOMPARE(branch.reveal(Outline::find(document.root(), QStringLiteral("c"))), 2);
        QVERIFY(!document.root()->isExpanded());
        // A current row past the old rows falls to the first row.
        QCOMPARE(branch.rebuild(99), 0);
    }

    void groupedViewRows()
    {
        Document document;
        Outline::build(document.root(), R"(
a | pri=2 exp
  b | pri=1
c | pri=2
)");
        document.root()->setName(QStringLiteral("My List"));
        ViewRows rows(document);
        QCOMPARE(rows.setViewMode(GroupView::ByPriority, document.root()), 0);
        QCOMPARE(document.viewMode, GroupView::ByPriority);
        QCOMPARE(rowTexts(rows), (QStringList{"My List", "  Priority 1", "  Priority 2"}));
        QCOMPARE(rows.row(1).kind, ViewRows::Kind::Heading);
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"My List", "  Priority 1", "    b", "  Priority 2", "    a", "    c"}));
        // Items have no rows under them in a grouped view, even when expanded.
        QVERIFY(!rows.row(4).expandable);
        QCOMPARE(rows.setExpanded(4, true), 0);
        QCOMPARE(rows.setExpanded(3, false), 2);
        QCOMPARE(rows.setExpanded(0, false), 3);
        QCOMPARE(rows.indexOf(rows.groupView()->heading(QStringLiteral("Priority 1"))), -1);
        QCOMPARE(rows.setExpanded(0, true), 3); // the first heading was left open
        QVERIFY(rows.isExpanded(0));

        // Heading expansion survives a rebuild and a new order (descending turns
        // the headings round too); the tree keeps its own order.
        rows.collapseAll();
        QCOMPARE(rows.setExpanded(2, true), 2);
        QCOMPARE(rows.rebuild(3), 3);
        rows.setViewOrder(TreeNode::SortName, false);
        QCOMPARE(rowTexts(rows), (QStringList{"My List", "  Priority 2", "    c", "    a", "  Priority 1"}));
        QCOMPARE(Outline::names(document.root()->children()), (QStringList{"a", "c"}));
    }

    void switchBackOpensAncestors()
    {
        Document document;
        Outline::build(document.root(), R"(
a
  b
    c
      deep | cat=Deep
  x
y
)");
        document.root()->setExpanded(true);
        Item *deep = Outline::find(document.root(), QStringLiteral("deep"));
        document.setCurrent(deep);
        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  y"}));

        const int grouped = rows.setViewMode(GroupView::ByCategory, deep);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  [No Category]", "  Deep", "    deep"}));
        QCOMPARE(grouped, 3);
        QVERIFY(!Outline::find(document.root(), QStringLiteral("a"))->isExpanded());

        const int back = rows.setViewMode(0, deep);
        QCOMPARE(document.viewMode, 0);
        QVERIFY(!rows.isGrouped());
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    b", "      c", "        deep", "    x", "  y"}));
        QCOMPARE(back, 4);
    }
};

QTEST_GUILESS_MAIN(TestGroupView)
#include "tst_groupview.moc"
