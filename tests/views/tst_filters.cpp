#include "support/outline.h"

#include "platform/collation.h"
#include "views/visibilityfilter.h"

#include <QTest>

using Outline::rowTexts;

class TestFilters : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void visibleByItself()
    {
        const struct {
            bool hideCompleted;
            uint hideBits;
            int statusType, progress;
            bool visible;
        } cases[] = {{false, 0u, 1, 100, true},   {true, 0u, 0, 100, false},    {true, 0u, 2, 99, true},
                     {false, 0x20u, 1, 0, false}, {false, 0x10u, 0, 50, false}, {false, 0x10u, 2, 50, true},
                     {false, 0x40u, 2, 0, false}, {false, 0x40u, 1, 0, true},   {false, 0xFFFFFF8Fu, 1, 0, true},
                     {false, 0x70u, 3, 0, true}};
        for (const auto &c : cases) {
            Outline::Doc document(
                QStringLiteral("x | st=%1 prog=%2").arg(c.statusType).arg(c.progress).toUtf8().constData());
            document.hideCompleted = c.hideCompleted;
            document.hideByStatus = c.hideBits;
            const VisibilityFilter filter(document);
            QCOMPARE(filter.isVisible(document["x"]), c.visible);
            QCOMPARE(filter.isShown(document["x"]), c.visible);
        }
    }

    void hiddenParentHidesBranch()
    {
        Outline::Doc document("done | prog=100 exp\n  open | prog=20 exp\n    deeper\nnext");
        document.root()->setExpanded(true);
        document.hideCompleted = true;
        const VisibilityFilter filter(document);
        QVERIFY(filter.isVisible(document["deeper"]) && !filter.isShown(document["deeper"]));

        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  next"}));
        // In a grouped view the unfinished children of a hidden parent are hidden as well, though their heading stays.
        rows.setViewMode(4, document.root());
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  0%", "    next", "  20%", "  100%"}));
        QVERIFY(!rows.row(3).expandable);

        document.hideCompleted = false;
        document.hideByStatus = Document::HideNoStatus | Document::HideCheckBox | Document::HideProgressBar;
        rows.rebuild(0);
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  0%", "  20%", "  100%"}));
        rows.setViewMode(0, document.root());
        QCOMPARE(rowTexts(rows), (QStringList{"Root"}));
        QVERIFY(!rows.row(0).expandable); // nothing under the title row
    }

    void togglesAndCollapse()
    {
        Outline::Doc document("a | exp\n  b | prog=100\n  c\nd");
        document.root()->setExpanded(true);
        ViewRows rows(document);
        QVERIFY(!rows.toggle(VisibilityFilter::ShowDueDate)); // display toggles change no row

        QVERIFY(rows.toggle(VisibilityFilter::HideCompleted));
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  d"})); // collapsed to the top level
        QCOMPARE(rows.reveal(document["b"]), -1);                      // hidden: nothing opens
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    c", "  d"}));

        QVERIFY(rows.toggle(VisibilityFilter::HideCheckBox));
        QCOMPARE(rowTexts(rows), (QStringList{"Root"}));
        QVERIFY(rows.toggle(VisibilityFilter::HideCheckBox) && rows.toggle(VisibilityFilter::HideCompleted));
        QCOMPARE(document.hideByStatus, 0u);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  d"}));

        // Only the bits of the three entries flip; others are kept as read.
        document.hideByStatus = 0x80000001;
        VisibilityFilter::toggle(document, VisibilityFilter::HideProgressBar);
        QCOMPARE(document.hideByStatus, 0x80000041u);
    }

    void nearestShownRow()
    {
        // Grouped by priority, expanded: Root, Priority 1, a, c, Priority 2, b, b1, b2, d.
        const struct {
            int mode;
            const char *current, *completed, *expected;
        } cases[] = {{0, "c", "c", "d"}, {0, "d", "d", "c"}, {0, "b", "b", "a"},          {0, "b1", "b", "c"},
                     {0, "c", "d", "c"}, {3, "a", "a", "c"}, {3, "c", "c", "Priority 2"}, {3, "b1", "b", "d"}};
        for (const auto &c : cases) {
            Outline::Doc document("a | pri=1\nb | pri=2 exp\n  b1 | pri=2\n  b2 | pri=2\nc | pri=1\nd | pri=2");
            document.root()->setExpanded(true);
            document.hideCompleted = true;
            ViewRows rows(document);
            rows.setViewMode(quint16(c.mode), document.root());
            rows.expandAll();
            const int before = rows.indexOf(document[c.current]);
            document[c.completed]->setProgress(100);
            QCOMPARE(rows.text(rows.rebuild(before)), QLatin1String(c.expected));
        }
    }

    void branchViewEmptiesWhenHidden()
    {
        Outline::Doc document("top | exp\n  child");
        Item *top = document["top"];
        document.hideCompleted = true;
        ViewRows branch(document, top);
        QCOMPARE(rowTexts(branch), (QStringList{"top", "  child"}));
        document["child"]->setProgress(100);
        QCOMPARE(branch.rebuild(1), 0); // the nearest row left is the branch's item
        top->setProgress(100);
        QCOMPARE(branch.rebuild(0), -1);
        QVERIFY(branch.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestFilters)
#include "tst_filters.moc"
