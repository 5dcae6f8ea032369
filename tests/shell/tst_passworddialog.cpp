#include "support/shellfixture.h"

#include "shell/dialogs/passworddialog.h"
#include "storage/password.h"

#include <QLabel>
#include <QLineEdit>

class TestPasswordDialog : public QObject {
    Q_OBJECT

private:
    static void type(QDialog *d, const char *box, const QString &text)
    {
        auto *edit = child<QLineEdit>(d, box);
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    }

private Q_SLOTS:
    void setMode_data();
    void setMode();
    void boxesTakeFifteenCharacters();
    void enterMode();
    void protectedDocumentOpensOnlyWithItsPassword();
};

void TestPasswordDialog::setMode_data()
{
    QTest::addColumn<QString>("stored");    // empty: not protected
    QTest::addColumn<QStringList>("tries"); // current, new, confirmation; repeated per OK
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("result"); // the password afterwards; empty: none
    QTest::addColumn<bool>("accepted");

    const QString wrong = QStringLiteral("The password is not correct. Please enter the password and try again.");
    const QString mismatch = QStringLiteral("The new password and confirmation do not match. Please try again.");
    QTest::newRow("set") << QString() << QStringList{QString(), QStringLiteral("abc"), QStringLiteral("abc")}
                         << QStringList() << QStringLiteral("abc") << true;
    QTest::newRow("mismatch, then agreed")
        << QString() << QStringList{QString(), QStringLiteral("abc"), QStringLiteral("abd"),
                                    QString(), QStringLiteral("abc"), QStringLiteral("abc")}
        << QStringList{mismatch} << QStringLiteral("abc") << true;
    QTest::newRow("wrong current password is refused before the new one is looked at")
        << QStringLiteral("abc") << QStringList{QStringLiteral("ABC"), QStringLiteral("x"), QStringLiteral("y")}
        << QStringList{wrong} << QStringLiteral("abc") << false;
    QTest::newRow("both new boxes empty remove the protection")
        << QStringLiteral("abc") << QStringList{QStringLiteral("abc"), QString(), QString()} << QStringList()
        << QString() << true;
}

void TestPasswordDialog::setMode()
{
    QFETCH(QString, stored);
    QFETCH(QStringList, tries);
    QFETCH(QStringList, messages);
    QFETCH(QString, result);
    QFETCH(bool, accepted);
    ShellFixture f;
    auto document = std::make_unique<Document>();
    add(document->root(), QStringLiteral("Secret"));
    if (!stored.isEmpty())
        document->passwordHash = Password::digest(stored);
    f.prompts.passwords.enqueue(stored);
    QVERIFY(f.open(std::move(document)));
    bool closedWithOk = false;
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        QCOMPARE(child<QLabel>(d, "passwordMessage")->text(),
                 QStringLiteral("Enter a new password to protect this file. If this file already has a password, "
                                "please enter it to change."));
        QCOMPARE(child<QLineEdit>(d, "currentPassword")->isEnabled(), !stored.isEmpty());
        QVERIFY(child<QLineEdit>(d, "newPassword")->isEnabled());
        if (stored.isEmpty())
            screenshot(d, QStringLiteral("password-set"));
        for (qsizetype i = 0; i + 2 < tries.size(); i += 3) {
            if (!stored.isEmpty())
                type(d, "currentPassword", tries[i]);
            type(d, "newPassword", tries[i + 1]);
            type(d, "confirmPassword", tries[i + 2]);
            press(d);
        }
        closedWithOk = !d->isVisible() && d->result() == QDialog::Accepted;
    });
    f.run("actionSetPassword");
    QCOMPARE(f.shownTexts(), messages);
    for (const auto &shown : std::as_const(f.prompts.shown))
        QCOMPARE(shown.icon, Prompts::Icon::Stop);
    QCOMPARE(closedWithOk, accepted);
    QCOMPARE(f.document()->passwordHash, result.isEmpty() ? QByteArray() : Password::digest(result));
}

void TestPasswordDialog::boxesTakeFifteenCharacters()
{
    ScriptedPrompts prompts;
    Document document;
    PasswordDialog dialog(&document, &prompts);
    dialog.show();
    const QString sixteen = QStringLiteral("0123456789abcdef");
    QTest::keyClicks(dialog.newEdit(), sixteen);
    QTest::keyClicks(dialog.confirmEdit(), sixteen);
    QCOMPARE(dialog.newEdit()->text(), sixteen.left(15));
    press(&dialog);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(document.passwordHash, Password::digest(sixteen.left(15)));
    QCOMPARE(dialog.currentEdit()->maxLength(), 15);
}

void TestPasswordDialog::enterMode()
{
    ScriptedPrompts prompts;
    const QByteArray hash = Password::digest(QStringLiteral("abc"));
    PasswordDialog dialog([&hash](const QString &text) { return Password::matches(hash, text); }, &prompts);
    dialog.show();
    QCOMPARE(child<QLabel>(&dialog, "passwordMessage")->text(),
             QStringLiteral("This Quillbox file is protected with a password. Please enter a valid password."));
    QVERIFY(dialog.currentEdit()->isEnabled());
    QVERIFY(!dialog.newEdit()->isEnabled());
    QVERIFY(!dialog.confirmEdit()->isEnabled());
    screenshot(&dialog, QStringLiteral("password-enter"));
    // Wrong passwords may be tried again without limit.
    for (const char *attempt : {"ABC", "ab", ""}) {
        type(&dialog, "currentPassword", QString::fromLatin1(attempt));
        press(&dialog);
        QVERIFY(dialog.isVisible());
    }
    QCOMPARE(prompts.shown.size(), 3);
    type(&dialog, "currentPassword", QStringLiteral("abc"));
    press(&dialog);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void TestPasswordDialog::protectedDocumentOpensOnlyWithItsPassword()
{
    ShellFixture f;
    auto document = std::make_unique<Document>();
    add(document->root(), QStringLiteral("Diary"));
    QVERIFY(f.open(std::move(document), QStringLiteral("diary.qbx")));
    const QString path = f.document()->path;
    f.prompts.dialogs.enqueue([](QDialog *d) {
        type(d, "newPassword", QStringLiteral("abc"));
        type(d, "confirmPassword", QStringLiteral("abc"));
        press(d);
    });
    f.run("actionSetPassword");
    f.window->closeDocument();
    QVERIFY(!f.view());

    QVERIFY(!f.window->openDocument(path)); // cancelled
    QVERIFY(!f.view());
    f.prompts.passwords.append({QStringLiteral("ABC"), QStringLiteral("abd")});
    QVERIFY(!f.window->openDocument(path));
    QVERIFY(!f.view());
    f.prompts.passwords.append({QStringLiteral("ABC"), QStringLiteral("abc")});
    QVERIFY(f.window->openDocument(path));
    QCOMPARE(f.at({0})->name(), QStringLiteral("Diary"));
}

QTEST_MAIN(TestPasswordDialog)
#include "tst_passworddialog.moc"
