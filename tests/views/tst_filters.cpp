#include "outline.h"

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
    void initTestCase();
    void visibleByItself_data();
    void visibleByItself();
    void hiddenParentHidesBranch();
    void everyStatusHidden();
    void togglesAndCollapse();
    void nearestShownRow_data();
    void nearestShownRow();
    void branchViewEmptiesWhenHidden();
};

void TestFilters::initTestCase()
{
    Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestFilters::visibleByItself_data()
{
    QTest::addColumn<bool>("hideCompleted");
    QTest::addColumn<uint>("hideBits");
    QTest::addColumn<int>("statusType");
    QTest::addColumn<int>("progress");
    QTest::addColumn<bool>("visible");

    QTest::newRow("no filter") << false << 0u << 1 << 100 << true;
    QTest::newRow("completed check box") << true << 0u << 1 << 100 << false;
    QTest::newRow("completed no status") << true << 0u << 0 << 100 << false;
    QTest::newRow("99 percent") << true << 0u << 2 << 99 << true;
    QTest::newRow("check box hidden at 100") << false << 0x20u << 1 << 100 << false;
    QTest::newRow("check box hidden at 0") << false << 0x20u << 1 << 0 << false;
    QTest::newRow("no status hidden") << false << 0x10u << 0 << 50 << false;
    QTest::newRow("no status bit spares bars") << false << 0x10u << 2 << 50 << true;
    QTest::newRow("bar hidden") << false << 0x40u << 2 << 0 << false;
    QTest::newRow("bar bit spares check boxes") << false << 0x40u << 1 << 0 << true;
    QTest::newRow("other bits mean nothing") << false << 0xFFFFFF8Fu << 1 << 0 << true;
    QTest::newRow("unknown status type") << false << 0x70u << 3 << 0 << true;
}

void TestFilters::visibleByItself()
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

void TestFilters::hiddenParentHidesBranch()
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
    QVERIFY(!filter.isShown(Outline::find(document.root(), QStringLiteral("open"))));

    ViewRows rows(document);
    QCOMPARE(rowTexts(rows), (QStringList{"Root", "  next"}));
    // In a grouped view the unfinished children of a hidden parent are hidden
    // as well, though their heading stays.
    rows.setViewMode(4, document.root());
    rows.expandAll();
    QCOMPARE(rowTexts(rows), (QStringList{"Root", "  0%", "    next", "  20%", "  100%"}));
    QVERIFY(!rows.row(3).expandable);
}

void TestFilters::everyStatusHidden()
{
    Document document;
    Outline::build(document.root(), R"(
a | st=0 cat=A exp
  b | st=1 cat=B
c | st=2 cat=C
)");
    document.root()->setExpanded(true);
    document.hideByStatus = Document::HideNoStatus | Document::HideCheckBox | Document::HideProgressBar;
    ViewRows rows(document);
    QCOMPARE(rowTexts(rows), (QStringList{"Root"}));
    QVERIFY(!rows.row(0).expandable);
    rows.setViewMode(1, document.root());
    rows.expandAll();
    QCOMPARE(rowTexts(rows), (QStringList{"Root", "  A", "  B", "  C"}));
}

void TestFilters::togglesAndCollapse()
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
    QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    b", "    c", "  d"}));

    QVERIFY(!rows.toggle(VisibilityFilter::ShowDueDate));
    QVERIFY(document.showDueDate);
    QVERIFY(VisibilityFilter::isOn(document, VisibilityFilter::ShowDueDate));
    QVERIFY(!rows.toggle(VisibilityFilter::ShowStatistics));
    QVERIFY(document.showStatistics);
    QCOMPARE(rows.count(), 5); // display toggles change no row

    QVERIFY(rows.toggle(VisibilityFilter::HideCompleted));
    QVERIFY(document.hideCompleted);
    QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  d"})); // collapsed to the top level
    rows.expandAll();
    QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "    c", "  d"}));

    QVERIFY(rows.toggle(VisibilityFilter::HideCheckBox));
    QCOMPARE(document.hideByStatus, quint32(Document::HideCheckBox));
    QVERIFY(VisibilityFilter::isOn(document, VisibilityFilter::HideCheckBox));
    QVERIFY(!VisibilityFilter::isOn(document, VisibilityFilter::HideNoStatus));
    QCOMPARE(rowTexts(rows), (QStringList{"Root"}));
    QVERIFY(rows.toggle(VisibilityFilter::HideCheckBox));
    QVERIFY(rows.toggle(VisibilityFilter::HideCompleted));
    QCOMPARE(document.hideByStatus, 0u);
    QVERIFY(!document.hideCompleted);
    QCOMPARE(rowTexts(rows), (QStringList{"Root", "  a", "  d"}));

    // Only the bits of the three entries flip; others are kept as read.
    document.hideByStatus = 0x80000001;
    VisibilityFilter::toggle(document, VisibilityFilter::HideProgressBar);
    QCOMPARE(document.hideByStatus, 0x80000041u);
    VisibilityFilter::toggle(document, VisibilityFilter::HideNoStatus);
    QCOMPARE(document.hideByStatus, 0x80000051u);
}

void TestFilters::nearestShownRow_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("completed");
    QTest::addColumn<QString>("expected");

    // Rows: Root, a, b, b1, b2, c, d
    QTest::newRow("the row below") << 0 << "c"
                                   << "c"
                                   << "d";
    QTest::newRow("the last row gives the row above") << 0 << "d"
                                                      << "d"
                                                      << "c";
    QTest::newRow("the row above is nearer than the next sibling") << 0 << "b"
                                                                   << "b"
                                                                   << "a";
    QTest::newRow("equally near: the row below wins") << 0 << "b1"
                                                      << "b"
                                                      << "c";
    QTest::newRow("still shown stays") << 0 << "c"
                                       << "d"
                                       << "c";
    // Grouped by priority, expanded: Root, Priority 1, a, c, Priority 2, b, b1, b2, d
    QTest::newRow("grouped: next in the group") << 3 << "a"
                                                << "a"
                                                << "c";
    QTest::newRow("grouped: next heading") << 3 << "c"
                                           << "c"
                                           << "Priority 2";
    QTest::newRow("grouped: branch goes") << 3 << "b1"
                                          << "b"
                                          << "d";
}

void TestFilters::nearestShownRow()
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
    Item *done = Outline::find(document.root(), completed);
    done->setProgress(100);
    const int after = rows.rebuild(before);
    QVERIFY(after >= 0);
    QCOMPARE(rows.text(after), expected);
}

void TestFilters::branchViewEmptiesWhenHidden()
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
    QCOMPARE(branch.rebuild(1), 1);

    Outline::find(document.root(), QStringLiteral("child"))->setProgress(100);
    QCOMPARE(branch.rebuild(1), 0); // the nearest row left is the branch's item
    top->setProgress(100);
    QCOMPARE(branch.rebuild(0), -1);
    QVERIFY(branch.isEmpty());
}

QTEST_GUILESS_MAIN(TestFilters)
#include "tst_filters.moc"
