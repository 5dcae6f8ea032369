#include "platform/collation.h"

#include <QTest>

namespace {
int sign(int value)
{
    return (value > 0) - (value < 0);
}
} // namespace

// Names and categories compare as the locale's plain string comparison: case,
// accents, digits and punctuation all count, each as the character it is.
class TestCollation : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void compare_data();
    void compare();
};

void TestCollation::compare_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("order");

    QTest::newRow("letters") << "apple" << "banana" << -1;
    QTest::newRow("case counts, lower case first") << "apple" << "Apple" << -1;
    QTest::newRow("accents count") << "resume" << QString::fromUtf8("résumé") << -1;
    QTest::newRow("digits one by one, not as numbers") << "Item 10" << "Item 9" << -1;
    QTest::newRow("punctuation is not ignored") << "a-c" << "ab" << -1;
    QTest::newRow("same text") << "Shopping list" << "Shopping list" << 0;
}

void TestCollation::compare()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, order);
    const Collation &collation = Collation::instance();
    QCOMPARE(sign(collation.compare(a, b)), order);
    QCOMPARE(sign(collation.compare(b, a)), -order);
    QCOMPARE(collation.equal(a, b), order == 0);
    QCOMPARE(sign(collation.sortKey(a).compare(collation.sortKey(b))), order);
}

QTEST_GUILESS_MAIN(TestCollation)
#include "tst_collation.moc"
