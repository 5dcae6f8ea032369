#include "support/outline.h"

#include "model/childorder.h"
#include "model/editing.h"
#include "platform/collation.h"
#include "views/groupview.h"

#include <QLocale>
#include <QTest>

using Outline::rowTexts;

class TestGroupView : public QObject {
    Q_OBJECT

private:
    static QStringList layout(const GroupView &view)
    {
        QStringList out;
        for (const GroupHeading *heading : view.headings())
            out.append(heading->text() + QStringLiteral(": ") +
                       Outline::names(heading->items()).join(QStringLiteral(", ")));
        return out;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void groupsAndOrders()
    {
        // Parents and children fall into groups side by side, whatever their depth.
        Outline::Doc document("a | cat=Work pri=10 due=2024-03-05T09:00 prog=30\n"
                              "  b | pri=5 prog=0\n"
                              "    c | cat=Home pri=1 due=2024-03-04T23:59 prog=0\n"
                              "  d | cat=Home pri=1 due=2024-03-05T18:00 prog=100\n"
                              "e | pri=10 due=2024-03-05T00:00 prog=30\n"
                              "  f | cat=work pri=10 due=2024-03-04T08:00 prog=0\n"
                              "g | cat=Work pri=5 prog=100");
        const struct {
            int mode, orderKey;
            bool ascending;
            const char *layout;
        } cases[] = {
            {1, 0, true, "[No Category]: b, e | Home: c, d | work: f | Work: a, g"},
            {1, 1, false, "Work: a, g | work: f | Home: c, d | [No Category]: e, b"},
            {2, 0, true, "Monday, March 4, 2024: c, f | Tuesday, March 5, 2024: a, d, e | [No Task/Due Date]: b, g"},
            {3, 0, false, "Priority 10: f, e, a | Priority 5: g, b | Priority 1: d, c"},
            {3, 3, true, "Priority 1: c, d | Priority 5: b, g | Priority 10: f, a, e"},
            {4, 0, true, "0%: b, c, f | 30%: a, e | 100%: d, g"}};
        for (const auto &c : cases) {
            document.viewOrder = quint16(c.orderKey);
            document.viewAscending = c.ascending;
            QCOMPARE(layout(GroupView(document, quint16(c.mode))).join(QStringLiteral(" | ")), QLatin1String(c.layout));
        }
    }

    void insertIntoGroupedView()
    {
        Outline::Doc document("m | cat=Home\nk | cat=Work");
        document.viewMode = GroupView::ByCategory;
        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  Home", "  Work"}));

        document.setCurrent(document["m"]);
        auto *a = new Item(QStringLiteral("a"));
        a->setCategory(QStringLiteral("Home"));
        Editing::insertItem(document, a, InsertPosition::Same);
        QCOMPARE(rows.itemInserted(a), 2);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  Home", "    a", "    m", "  Work"}));

        auto *z = new Item(QStringLiteral("z"));
        z->setCategory(QStringLiteral("Inbox"));
        Editing::insertItem(document, z, InsertPosition::Top);
        QCOMPARE(rows.itemInserted(z), 5);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  Home", "    a", "    m", "  Inbox", "    z", "  Work"}));
        QVERIFY(rows.groupView()->heading(QStringLiteral("Inbox"))->isExpanded() &&
                !rows.groupView()->heading(QStringLiteral("Work"))->isExpanded());
        // On its own, the grouped view opens a heading it makes for an item.
        GroupView view(document, GroupView::ByCategory);
        document.root()->appendChild(new Item(QStringLiteral("y")));
        QVERIFY(view.insertItem(document["y"]).heading->isExpanded());
    }

    void defaultViewRows()
    {
        Outline::Doc document("a | exp\n  b | exp\n    c\n  d\ne\n  f");
        document.root()->setExpanded(true);
        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    b", "      c", "    d", "  e"}));
        QVERIFY(rows.row(5).expandable && !rows.row(4).expandable);
        // Parents (the title row for a top item), rows below (none below d, then its parent's sibling e).
        QCOMPARE(QList<int>({rows.parentIndex(3), rows.parentIndex(1), rows.rowsBelow(1), rows.rowsBelow(4)}),
                 QList<int>({2, 0, 3, 0}));
        QCOMPARE(QList<int>({rows.setExpanded(5, true), rows.setExpanded(1, false)}), QList<int>({1, 3}));
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  e", "    f"}));
        // A collapsed parent keeps its children's own state.
        QCOMPARE(QList<int>({rows.rowsOnExpand(1), rows.setExpanded(1, true), rows.rowsOnExpand(1)}),
                 QList<int>({3, 3, 0}));
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    b", "      c", "    d", "  e", "    f"}));

        rows.collapseAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  e"}));
        QVERIFY(!document["b"]->isExpanded());
        QCOMPARE(rows.reveal(document["c"]), 3); // its ancestors open
        rows.expandAll();
        QCOMPARE(rows.setExpanded(0, false), 6);

        ViewRows branch(document, document["a"]);
        QCOMPARE(rowTexts(branch), (QStringList{"a", "  b", "    c", "  d"}));
        // Revealing opens the ancestors inside the branch, none above it; a current row past the old rows falls to
        // the first row.
        QCOMPARE(QList<int>({branch.setExpanded(1, false), branch.reveal(document["c"]), branch.rebuild(99)}),
                 QList<int>({1, 2, 0}));
        QVERIFY(!document.root()->isExpanded());
    }

    void groupedViewRows()
    {
        Outline::Doc document("a | pri=2 exp\n  b | pri=1\nc | pri=2");
        document.root()->setName(QStringLiteral("My List"));
        ViewRows rows(document);
        QCOMPARE(rows.setViewMode(GroupView::ByPriority, document.root()), 0);
        QCOMPARE(rowTexts(rows), (QStringList{"My List", "  Priority 1", "  Priority 2"}));
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"My List", "  Priority 1", "    b", "  Priority 2", "    a", "    c"}));
        // Items have no rows under them in a grouped view, even when expanded.
        QVERIFY(!rows.row(4).expandable);
        QCOMPARE(QList<int>({rows.setExpanded(4, true), rows.setExpanded(3, false), rows.setExpanded(0, false)}),
                 QList<int>({0, 2, 3}));
        QCOMPARE(rows.indexOf(rows.groupView()->heading(QStringLiteral("Priority 1"))), -1);
        QCOMPARE(rows.setExpanded(0, true), 3); // the first heading was left open
        rows.setExpanded(0, false);
        rows.expandAll(); // the title row opens with the headings
        QCOMPARE(rows.count(), 6);

        // Heading expansion survives a rebuild and a new order, which turns the headings round too.
        rows.collapseAll();
        QCOMPARE(QList<int>({rows.setExpanded(2, true), rows.rebuild(3)}), QList<int>({2, 3}));
        rows.setViewOrder(TreeNode::SortName, false);
        QCOMPARE(rowTexts(rows), (QStringList{"My List", "  Priority 2", "    c", "    a", "  Priority 1"}));
    }

    void switchBackOpensAncestors()
    {
        Outline::Doc document("a\n  b\n    c\n      deep | cat=Deep\n  x\ny");
        document.root()->setExpanded(true);
        Item *deep = document["deep"];
        document.setCurrent(deep);
        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  y"}));

        QCOMPARE(rows.setViewMode(GroupView::ByCategory, deep), 3);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  [No Category]", "  Deep", "    deep"}));
        QVERIFY(!document["a"]->isExpanded());

        QCOMPARE(rows.setViewMode(0, deep), 4);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    b", "      c", "        deep", "    x", "  y"}));
    }
};

QTEST_GUILESS_MAIN(TestGroupView)
#include "tst_groupview.moc"
