#include "rows/rowgeometry.h"

#include <QTest>

// Hit codes: 0 outside, 1 glyph, 2 status control, 3 icon, 4 text, 5 in front of the glyph.
class TestRowGeometry : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void hitTest_data();
    void hitTest();
    void columnsFollowEachOther();
};

void TestRowGeometry::hitTest_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("baseLevel");
    QTest::addColumn<bool>("flat");
    QTest::addColumn<int>("dateWidth"); // 0: no date column
    QTest::addColumn<bool>("status");
    QTest::addColumn<bool>("icon");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("code");

    // w = 16, rows of 17 pixels at y 100, 300 wide.
    // Level 1: glyph 0-15, status 16-31, icon 32-47, one pixel gap, text from 49.
    QTest::newRow("glyph last pixel") << 1 << 0 << false << 0 << true << true << QPoint(15, 108) << 1;
    QTest::newRow("status") << 1 << 0 << false << 0 << true << true << QPoint(16, 108) << 2;
    QTest::newRow("icon") << 1 << 0 << false << 0 << true << true << QPoint(40, 108) << 3;
    QTest::newRow("gap after icon is text") << 1 << 0 << false << 0 << true << true << QPoint(48, 108) << 4;
    QTest::newRow("above the row") << 1 << 0 << false << 0 << true << true << QPoint(5, 99) << 0;
    QTest::newRow("right of the row") << 1 << 0 << false << 0 << true << true << QPoint(300, 108) << 0;
    // Level 3 is indented by two columns.
    QTest::newRow("indentation") << 3 << 0 << false << 0 << true << true << QPoint(31, 108) << 5;
    QTest::newRow("indented glyph") << 3 << 0 << false << 0 << true << true << QPoint(32, 108) << 1;
    // The base level counts: level 3 under base 2 is not indented.
    QTest::newRow("base level") << 3 << 2 << false << 0 << true << true << QPoint(5, 108) << 1;
    // Without a status control the icon sits right after the glyph column.
    QTest::newRow("no status: icon") << 1 << 0 << false << 0 << false << true << QPoint(20, 108) << 3;
    QTest::newRow("no status, no icon") << 1 << 0 << false << 0 << false << false << QPoint(20, 108) << 4;
    QTest::newRow("no icon: text after status") << 1 << 0 << false << 0 << true << false << QPoint(33, 108) << 4;
    // A flat row keeps the glyph column empty, and has no indentation.
    QTest::newRow("flat glyph column") << 4 << 0 << true << 0 << true << true << QPoint(5, 108) << 5;
    QTest::newRow("flat status") << 4 << 0 << true << 0 << true << true << QPoint(20, 108) << 2;
    // The date column comes first.
    QTest::newRow("date column") << 1 << 0 << false << 40 << true << true << QPoint(10, 108) << 5;
    QTest::newRow("glyph after date") << 1 << 0 << false << 40 << true << true << QPoint(45, 108) << 1;
}

void TestRowGeometry::hitTest()
{
    QFETCH(int, level);
    QFETCH(int, baseLevel);
    QFETCH(bool, flat);
    QFETCH(int, dateWidth);
    QFETCH(bool, status);
    QFETCH(bool, icon);
    QFETCH(QPoint, point);
    QFETCH(int, code);
    RowGeometry::Input in;
    in.rect = QRect(0, 100, 300, 17);
    in.level = level;
    in.baseLevel = baseLevel;
    in.flat = flat;
    in.dateColumn = dateWidth > 0;
    in.dateWidth = dateWidth;
    in.columnWidth = 16;
    in.statusColumn = status;
    in.iconColumn = icon;
    QCOMPARE(int(RowGeometry(in).hitTest(point)), code);
}

void TestRowGeometry::columnsFollowEachOther()
{
    RowGeometry::Input in;
    in.rect = QRect(10, 0, 400, 21);
    in.level = 2;
    in.columnWidth = 20;
    in.dateColumn = true;
    in.dateWidth = 50;
    in.statusColumn = true;
    in.iconColumn = true;
    const RowGeometry g(in);
    QCOMPARE(g.dateRect(), QRect(10, 0, 50, 21));
    QCOMPARE(g.glyphRect(), QRect(80, 0, 20, 21));
    QCOMPARE(g.statusRect(), QRect(100, 0, 20, 21));
    QCOMPARE(g.iconRect(), QRect(120, 0, 20, 21));
    QCOMPARE(g.textRect().left(), 141);
    QCOMPARE(g.textRect().right(), 409);
}

QTEST_MAIN(TestRowGeometry)
#include "tst_rowgeometry.moc"
