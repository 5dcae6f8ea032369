#include "model/document.h"
#include "storage/password.h"

#include <QTest>

class TestPassword : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void digestCheckAndChange();
};

void TestPassword::digestCheckAndChange()
{
    // MD5 over the UTF-16LE bytes: "abc" is 61 00 62 00 63 00.
    const struct {
        const char *password, *md5;
    } rows[] = {{"abc", "ce1473cf80c6b3fda8e3dfc006adc315"},
                {"ABC", "716774b53a92b98525bba179a159cc71"},
                {"", "d41d8cd98f00b204e9800998ecf8427e"}};
    for (const auto &row : rows) {
        const QByteArray md5 = QByteArray::fromHex(row.md5);
        QCOMPARE(Password::digest(QLatin1String(row.password)), md5);
        QVERIFY(Password::matches(md5, QLatin1String(row.password)));
        // Length counts: the same bytes with one more or one less never match.
        QVERIFY(!Password::matches(md5 + '\0', QLatin1String(row.password)));
        QVERIFY(!Password::matches(md5.chopped(1), QLatin1String(row.password)));
    }

    Document doc;
    QCOMPARE(Password::check(doc, QStringLiteral("anything")), Password::Result::Accepted);
    doc.passwordHash = Password::digest(QStringLiteral("abc"));
    QCOMPARE(Password::check(doc, QStringLiteral("ABC")), Password::Result::NotCorrect);
    QCOMPARE(Password::check(doc, QString()), Password::Result::NotCorrect);

    using R = Password::Result;
    const struct {
        const char *existing; // "": no password yet
        const char *current, *newPassword, *confirmation;
        R result;
        const char *protectedBy; // the password afterwards, "" for none
    } changes[] = {
        {"", "", "abc", "abc", R::Accepted, "abc"},
        {"", "junk", "abc", "abc", R::Accepted, "abc"}, // the current box is ignored without a password
        {"", "", "abc", "ABC", R::Mismatch, ""},
        {"", "", "123456789012345", "123456789012345", R::Accepted, "123456789012345"},
        {"", "", "1234567890123456", "1234567890123456", R::TooLong, ""},
        {"abc", "abc", "new", "new", R::Accepted, "new"},
        {"abc", "ABC", "x", "y", R::NotCorrect, "abc"}, // refused before the new one is looked at
        {"abc", "abc", "x", "y", R::Mismatch, "abc"},
        {"abc", "abc", "", "", R::Removed, ""},
        {"abc", "", "", "", R::NotCorrect, "abc"},
    };
    for (const auto &row : changes) {
        Document doc;
        if (*row.existing)
            doc.passwordHash = Password::digest(QLatin1String(row.existing));
        const R result = Password::change(&doc, QLatin1String(row.current), QLatin1String(row.newPassword),
                                          QLatin1String(row.confirmation));
        QVERIFY2(result == row.result, row.newPassword);
        QCOMPARE(doc.passwordHash, *row.protectedBy ? Password::digest(QLatin1String(row.protectedBy)) : QByteArray());
    }
}

QTEST_GUILESS_MAIN(TestPassword)
#include "tst_password.moc"
