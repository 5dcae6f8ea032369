#include "support/outline.h"

#include "platform/collation.h"
#include "views/viewrows.h"
#include "views/visibilityfilter.h"

#include <QTest>

class TestFilters : public QObject {
    Q_OBJECT

private:
    static QStringList rowTexts(const ViewRows &rows)
    {
        QStringList out;
        for (int i = 0; i < rows.count(); ++i)
            out.append(QString(rows.row(i).level * 2, QLatin1Char(' ')) + rows.text(i));
        return out;
    }

private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void visibleByItself_data()
    {
        QTest::addColumn<bool>("hideCompleted");
        QTest::addColumn<uint>("hideBits");
        QTest::addColumn<int>("statusType");
        QTest::addColumn<int>("progress");
        QTest::addColumn<bool>("visible");
        auto row = [](const char *tag, bool hideCompleted, uint bits, int status, int progress, bool visible) {
            QTest::newRow(tag) << hideCompleted << bits << status << progress << visible;
        };
        row("no filter", false, 0u, 1, 100, true);
        row("completed, no status", true, 0u, 0, 100, false);
        row("99 percent", true, 0u, 2, 99, true);
        row("check box hidden at 0", false, 0x20u, 1, 0, false);
        row("no status hidden", false, 0x10u, 0, 50, false);
        row("no status bit spares bars", false, 0x10u, 2, 50, true);
        row("bar hidden", false, 0x40u, 2, 0, false);
        row("bar bit spares check boxes", false, 0x40u, 1, 0, true);
        row("other bits mean nothing", false, 0xFFFFFF8Fu, 1, 0, true);
        row("unknown status type", false, 0x70u, 3, 0, true);
    }

    void visibleByItself()
    {
        QFETCH(bool, hideCompleted);
        QFETCH(uint, hideBits);
        QFETCH(int, statusType);
        QFETCH(int, progress);
        QFETCH(bool, visible);
        Document document;
        document.hideCompleted = hideCompleted;
        document.hideByStatus = hideBits;
        auto *item = new Item(QStringLiteral("x"));
        item->setStatusType(quint16(statusType));
        item->storeProgress(quint16(progress));
        document.root()->appendChild(item);
        const VisibilityFilter filter(document);
        QCOMPARE(filter.isVisible(item), visible);
        QCOMPARE(filter.isShown(item), visible);
        QVERIFY(filter.isVisible(document.root()));
    }

    void hiddenParentHidesBranch()
    {
        Document document;
        Outline::build(document.root(), R"(
done | prog=100 exp
  open | prog=20 exp
    deeper
next
)");
        document.root()->setExpanded(true);
        document.hideCompleted = true;
        const VisibilityFilter filter(document);
        Item *deeper = Outline::find(document.root(), QStringLiteral("deeper"));
        QVERIFY(filter.isVisible(deeper));
        QVERIFY(!filter.isShown(deeper));

        ViewRows rows(document);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  next"}));
        // In a grouped view the unfinished children of a hidden parent are hidden
        // as well, though their heading stays.
        rows.setViewMode(4, document.root());
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  0%", "    next", "  20%", "  100%"}));
        QVERIFY(!rows.row(3).expandable);

        // Every status hidden: nothing under the root, but every heading stays.
        document.hideCompleted = false;
        document.hideByStatus = Document::HideNoStatus | Document::HideCheckBox | Document::HideProgressBar;
        rows.rebuild(0);
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  0%", "  20%", "  100%"}));
        rows.setViewMode(0, document.root());
        QCOMPARE(rowTexts(rows), (QStringList{"Root"}));
        QVERIFY(!rows.row(0).expandable);
    }

    void togglesAndCollapse()
    {
        Document document;
        Outline::build(document.root(), R"(
a | exp
  b | prog=100
  c
d
)");
        document.root()->setExpanded(true);
        ViewRows rows(document);
        QVERIFY(!rows.toggle(VisibilityFilter::ShowDueDate)); // display toggles change no row
        QVERIFY(document.showDueDate);
        QCOMPARE(rows.count(), 5);

        QVERIFY(rows.toggle(VisibilityFilter::HideCompleted));
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  d"}));                  // collapsed to the top level
        QCOMPARE(rows.reveal(Outline::find(document.root(), QStringLiteral("b"))), -1); // hidden: nothing opens
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  d"}));
        rows.expandAll();
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    c", "  d"}));

        QVERIFY(rows.toggle(VisibilityFilter::HideCheckBox));
        QCOMPARE(document.hideByStatus, quint32(Document::HideCheckBox));
        QVERIFY(!VisibilityFilter::isOn(document, VisibilityFilter::HideNoStatus));
        QCOMPARE(rowTexts(rows), (QStringList{"Root"}));
        QVERIFY(rows.toggle(VisibilityFilter::HideCheckBox));
        QVERIFY(rows.toggle(VisibilityFilter::HideCompleted));
        QCOMPARE(document.hideByStatus, 0u);
        QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  d"}));

        // Only the bits of the three entries flip; others are kept as read.
        document.hideByStatus = 0x80000001;
        VisibilityFilter::toggle(document, VisibilityFilter::HideProgressBar);
        VisibilityFilter::toggle(document, VisibilityFilter::HideNoStatus);
        QCOMPARE(document.hideByStatus, 0x80000051u);
    }

    void nearestShownRow_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("current");
        QTest::addColumn<QString>("completed");
        QTest::addColumn<QString>("expected");
        auto row = [](const char *tag, int mode, const char *current, const char *completed, const char *expected) {
            QTest::newRow(tag) << mode << QString::fromUtf8(current) << QString::fromUtf8(completed)
                               << QString::fromUtf8(expected);
        };
        // Rows: Root, a, b, b1, b2, c, d
        row("the row below", 0, "c", "c", "d");
        row("the last row gives the row above", 0, "d", "d", "c");
        row("the row above is nearer than the next sibling", 0, "b", "b", "a");
        row("equally near: the row below wins", 0, "b1", "b", "c");
        row("still shown stays", 0, "c", "d", "c");
        // Grouped by priority, expanded: Root, Priority 1, a, c, Priority 2, b, b1, b2, d
        row("grouped: next in the group", 3, "a", "a", "c");
        row("grouped: next heading", 3, "c", "c", "Priority 2");
        row("grouped: branch goes", 3, "b1", "b", "d");
    }

    void nearestShownRow()
    {
        QFETCH(int, mode);
        QFETCH(QString, current);
        QFETCH(QString, completed);
        QFETCH(QString, expected);
        Document document;
        Outline::build(document.root(), R"(
a | pri=1
b | pri=2 exp
  b1 | pri=2
  b2 | pri=2
c | pri=1
d | pri=2
)");
        document.root()->setExpanded(true);
        document.hideCompleted = true;
        ViewRows rows(document);
        rows.setViewMode(quint16(mode), document.root());
        rows.expandAll();
        const int before = rows.indexOf(Outline::find(document.root(), current));
        QVERIFY(before > 0);
        Outline::find(document.root(), completed)->setProgress(100);
        const int after = rows.rebuild(before);
        QVERIFY(after >= 0);
        QCOMPARE(rows.text(after), expected);
    }

    void branchViewEmptiesWhenHidden()
    {
        Document document;
        Outline::build(document.root(), R"(
top | exp
  child
)");
        Item *top = Outline::find(document.root(), QStringLiteral("top"));
        document.hideCompleted = true;
        ViewRows branch(document, top);
        QCOMPARE(rowTexts(branch), (QStringList{"top", "  child"}));
        Outline::find(document.root(), QStringLiteral("child"))->setProgress(100);
        QCOMPARE(branch.rebuild(1), 0); // the nearest row left is the branch's item
        top->setProgress(100);
        QCOMPARE(branch.rebuild(0), -1);
        QVERIFY(branch.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestFilters)
#include "tst_filters.moc"
