#include "model/document.h"
#include "storage/password.h"

#include <QTest>

class TestPassword : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void digestOfUtf16LittleEndianUnits_data();
    void digestOfUtf16LittleEndianUnits();
    void change_data();
    void change();
    void savedPasswordIsAskedAndCaseCounts();
};

void TestPassword::digestOfUtf16LittleEndianUnits_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("md5");
    // MD5 over the UTF-16LE bytes: "abc" is 61 00 62 00 63 00.
    QTest::newRow("abc") << QStringLiteral("abc") << QByteArray("ce1473cf80c6b3fda8e3dfc006adc315");
    QTest::newRow("ABC") << QStringLiteral("ABC") << QByteArray("716774b53a92b98525bba179a159cc71");
    QTest::newRow("empty") << QString() << QByteArray("d41d8cd98f00b204e9800998ecf8427e");
}

void TestPassword::digestOfUtf16LittleEndianUnits()
{
    QFETCH(QString, password);
    QFETCH(QByteArray, md5);
    QCOMPARE(Password::digest(password).toHex(), md5);
    QVERIFY(Password::matches(QByteArray::fromHex(md5), password));
    // Length counts: the same bytes with one more or one less never match.
    QVERIFY(!Password::matches(QByteArray::fromHex(md5) + '\0', password));
    QVERIFY(!Password::matches(QByteArray::fromHex(md5).chopped(1), password));
}

void TestPassword::change_data()
{
    QTest::addColumn<QString>("existing"); // empty: no password yet
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("newPassword");
    QTest::addColumn<QString>("confirmation");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("protectedBy"); // the password afterwards, "" for none

    const int accepted = int(Password::Result::Accepted);
    const int removed = int(Password::Result::Removed);
    const int notCorrect = int(Password::Result::NotCorrect);
    const int mismatch = int(Password::Result::Mismatch);
    const int tooLong = int(Password::Result::TooLong);
    const QString abc = QStringLiteral("abc");
    const QString fifteen = QStringLiteral("123456789012345");
    const QString sixteen = fifteen + QLatin1Char('6');

    QTest::newRow("set on an open document") << QString() << QString() << abc << abc << accepted << abc;
    QTest::newRow("the current box is ignored without a password")
        << QString() << QStringLiteral("junk") << abc << abc << accepted << abc;
    QTest::newRow("confirmation differs in case")
        << QString() << QString() << abc << QStringLiteral("ABC") << mismatch << QString();
    QTest::newRow("fifteen characters") << QString() << QString() << fifteen << fifteen << accepted << fifteen;
    QTest::newRow("sixteen characters") << QString() << QString() << sixteen << sixteen << tooLong << QString();
    QTest::newRow("change with the right current")
        << abc << abc << QStringLiteral("new") << QStringLiteral("new") << accepted << QStringLiteral("new");
    QTest::newRow("wrong current is refused before the new one is looked at")
        << abc << QStringLiteral("ABC") << QStringLiteral("x") << QStringLiteral("y") << notCorrect << abc;
    QTest::newRow("right current, mismatch")
        << abc << abc << QStringLiteral("x") << QStringLiteral("y") << mismatch << abc;
    QTest::newRow("both new boxes empty removes the password")
        << abc << abc << QString() << QString() << removed << QString();
    QTest::newRow("removing needs the right current")
        << abc << QString() << QString() << QString() << notCorrect << abc;
}

void TestPassword::change()
{
    QFETCH(QString, existing);
    QFETCH(QString, current);
    QFETCH(QString, newPassword);
    QFETCH(QString, confirmation);
    QFETCH(int, result);
    QFETCH(QString, protectedBy);

    Document doc;
    if (!existing.isEmpty())
        doc.passwordHash = Password::digest(existing);
    QCOMPARE(int(Password::change(&doc, current, newPassword, confirmation)), result);
    if (protectedBy.isEmpty()) {
        QVERIFY(doc.passwordHash.isEmpty());
    } else {
        QCOMPARE(doc.passwordHash, Password::digest(protectedBy));
        QCOMPARE(Password::check(doc, protectedBy), Password::Result::Accepted);
    }
}

void TestPassword::savedPasswordIsAskedAndCaseCounts()
{
    Document doc;
    QCOMPARE(Password::check(doc, QStringLiteral("anything")), Password::Result::Accepted);
    doc.passwordHash = Password::digest(QStringLiteral("abc"));
    QCOMPARE(Password::check(doc, QStringLiteral("ABC")), Password::Result::NotCorrect);
    QCOMPARE(Password::check(doc, QString()), Password::Result::NotCorrect);
}

QTEST_GUILESS_MAIN(TestPassword)
#include "tst_password.moc"
