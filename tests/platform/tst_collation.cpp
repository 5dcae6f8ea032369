#include "platform/collation.h"

#include <QTest>

namespace {
int sign(int value)
{
    return (value > 0) - (value < 0);
}
} // namespace

// Names compare as the locale's plain string comparison: case, accents, digits and punctuation all count as they are.
class TestCollation : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void compare();
};

void TestCollation::compare()
{
    Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    const Collation &collation = Collation::instance();
    const struct {
        QString a, b;
        int order;
    } rows[] = {
        {"apple", "banana", -1},
        {"apple", "Apple", -1}, // lower case first
        {"resume", "résumé", -1},
        {"Item 10", "Item 9", -1}, // digits one by one, not as numbers
        {"a-c", "ab", -1},         // punctuation is not ignored
        {"Shopping list", "Shopping list", 0},
    };
    for (const auto &row : rows) {
        QCOMPARE(sign(collation.compare(row.a, row.b)), row.order);
        QCOMPARE(sign(collation.compare(row.b, row.a)), -row.order);
        QCOMPARE(collation.equal(row.a, row.b), row.order == 0);
        QCOMPARE(sign(collation.sortKey(row.a).compare(collation.sortKey(row.b))), row.order);
    }
}

QTEST_GUILESS_MAIN(TestCollation)
#include "tst_collation.moc"
