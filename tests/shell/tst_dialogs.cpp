#include "support/shellfixture.h"

#include "model/editing.h"
#include "notes/notetext.h"
#include "shell/dialogs/finddialog.h"
#include "shell/dialogs/passworddialog.h"
#include "shell/dialogs/searchresultsdialog.h"
#include "shell/widgets/colourcombo.h"
#include "storage/password.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSettings>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>

namespace {

// Root > Xabcx (priority 3, note "Call the bank", done) > ABC child
//      > abacus
//      > Plain (note "bank holiday")
std::unique_ptr<Document> sample()
{
    auto document = std::make_unique<Document>();
    Item *x = add(document->root(), QStringLiteral("Xabcx"));
    x->setPriority(3);
    x->setNote(NoteText::toPlainNote(QStringLiteral("Call the bank")));
    x->storeProgress(100);
    add(x, QStringLiteral("ABC child"));
    add(document->root(), QStringLiteral("abacus"));
    add(document->root(), QStringLiteral("Plain"))->setNote(NoteText::toPlainNote(QStringLiteral("bank holiday")));
    return document;
}

QStringList rows(QDialog *d)
{
    QStringList names;
    auto *list = child<QTreeWidget>(d, "resultList");
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        names.append(list->topLevelItem(i)->text(0));
    return names;
}

void check(QDialog *d, const char *name, bool on)
{
    child<QCheckBox>(d, name)->setChecked(on);
}

void choose(QDialog *d, const char *name, int index)
{
    child<QComboBox>(d, name)->setCurrentIndex(index);
}

Settings stored(const ShellFixture &f)
{
    QSettings store(f.dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    Settings s;
    s.load(store);
    return s;
}

void type(QDialog *d, const char *box, const QString &text)
{
    auto *edit = child<QLineEdit>(d, box);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

} // namespace

// The Find, Options and Password dialogs.
class TestDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void widgetsMapToTheCriteria();
    void hiddenItemsAreLeftOut();
    void chosenResultBecomesCurrent();
    void findResultIsOfferedWhileAResultIsKept();
    void criteriaPresetTheNextFind();
    void everyPageMapsToTheSettings();
    void cancelKeepsTheSettings();
    void unknownCodePageIsRefused();
    void setMode_data();
    void setMode();
    void boxesTakeFifteenCharacters();
    void enterMode();
    void protectedDocumentOpensOnlyWithItsPassword();
};

void TestDialogs::widgetsMapToTheCriteria()
{
    // Which items match is the finder's rule; the dialog only fills the criteria.
    FindDialog dialog(FindCriteria(), {QStringLiteral("Work"), QStringLiteral("Home")});
    QCOMPARE(dialog.criteria().flags, 0u);
    QTest::keyClicks(child<QLineEdit>(&dialog, "findName"), QStringLiteral("ab"));
    child<QComboBox>(&dialog, "findPriority")->setCurrentIndex(3);
    child<QComboBox>(&dialog, "findCategory")->setEditText(QStringLiteral("work"));
    child<QCheckBox>(&dialog, "findHasDate")->setChecked(true);
    child<QDateEdit>(&dialog, "findDate")->setDate(QDate(2024, 5, 11));
    child<QComboBox>(&dialog, "findDateOperator")->setCurrentIndex(FindCriteria::GreaterThan);
    QTest::keyClicks(child<QLineEdit>(&dialog, "findNotePhrase"), QStringLiteral("bank"));
    child<QCheckBox>(&dialog, "findCompleted")->setCheckState(Qt::Unchecked);
    child<ColourCombo>(&dialog, "findColour")->setColour(4);
    child<QCheckBox>(&dialog, "findItalic")->setCheckState(Qt::Checked);
    child<QCheckBox>(&dialog, "findShowIcon")->setCheckState(Qt::Unchecked);
    child<QCheckBox>(&dialog, "findCaseInsensitive")->setChecked(true);
    const FindCriteria c = dialog.criteria();
    QCOMPARE(c.flags, 0x1FFu);
    QCOMPARE(c.name, QStringLiteral("ab"));
    QCOMPARE(c.priority, quint16(3));
    QCOMPARE(c.category, QStringLiteral("work"));
    QCOMPARE(c.date, (SystemTime{2024, 5, 6, 11, 0, 0, 0, 0}));
    QCOMPARE(c.dateOperator, FindCriteria::GreaterThan);
    QCOMPARE(c.notePhrase, QStringLiteral("bank"));
    QCOMPARE(c.progress, quint16(0));
    QCOMPARE(c.colour, quint16(4));
    QVERIFY(c.italic && !c.showIcon && c.caseInsensitive);
    // The boxes' third state is "any"; a checked "Completed" looks for 100%.
    child<QCheckBox>(&dialog, "findCompleted")->setCheckState(Qt::Checked);
    QCOMPARE(dialog.criteria().progress, quint16(100));
    child<QCheckBox>(&dialog, "findItalic")->setCheckState(Qt::PartiallyChecked);
    QVERIFY(!dialog.criteria().has(FindCriteria::Italic));

    // A dialog preset with criteria shows them again.
    FindDialog again(dialog.criteria(), {});
    const FindCriteria d = again.criteria();
    QCOMPARE(d.flags, dialog.criteria().flags);
    QCOMPARE(d.date, c.date);
    QCOMPARE(d.category, c.category);
    QCOMPARE(d.progress, quint16(100));
    QVERIFY(!d.showIcon && d.caseInsensitive);
    // Clear empties every field but keeps the case option.
    QTest::mouseClick(child<QPushButton>(&again, "findClear"), Qt::LeftButton);
    QCOMPARE(again.criteria().flags, 0u);
    QVERIFY(again.criteria().caseInsensitive);
}

void TestDialogs::hiddenItemsAreLeftOut()
{
    ShellFixture f;
    auto document = sample();
    document->hideCompleted = true;
    QVERIFY(f.open(std::move(document)));
    QStringList listed;
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d); });
    f.prompts.dialogs.enqueue([&](QDialog *d) { listed = rows(d); });
    f.run("actionFindItem");
    QCOMPARE(listed, (QStringList{QStringLiteral("abacus"), QStringLiteral("Plain")}));
}

void TestDialogs::chosenResultBecomesCurrent()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        screenshot(d, QStringLiteral("find"));
        QTest::keyClicks(child<QLineEdit>(d, "findName"), QStringLiteral("c"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(d->findChild<QTreeWidget *>()->headerItem()->text(0), QStringLiteral("Search Results"));
        screenshot(d, QStringLiteral("search-results"));
        auto *list = child<QTreeWidget>(d, "resultList");
        // Each result says where it lies.
        QCOMPARE(list->topLevelItem(0)->text(1), QString());
        QCOMPARE(list->topLevelItem(1)->text(1), QStringLiteral("Xabcx"));
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Return);
    });
    f.run("actionFindItem");
    // The child of a collapsed item is revealed and made current.
    QCOMPARE(f.current(), f.at({0, 0}));
}

void TestDialogs::findResultIsOfferedWhileAResultIsKept()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    QAction *again = f.command("actionFindResult");
    f.window->updateActions();
    QVERIFY(!again->isEnabled());

    f.prompts.dialogs.enqueue([](QDialog *d) {
        QTest::keyClicks(child<QLineEdit>(d, "findNotePhrase"), QStringLiteral("bank"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d, QDialogButtonBox::Cancel); });
    f.run("actionFindItem");
    QVERIFY(again->isEnabled());

    // The kept result leaves out a match deleted since.
    Editing::deleteItem(*f.document(), f.at({2}), &f.view()->clip());
    QStringList listed;
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        listed = rows(d);
        press(d);
    });
    f.run("actionFindResult");
    QCOMPARE(listed, QStringList{QStringLiteral("Xabcx")});
    QCOMPARE(f.current(), f.at({0}));

    // A search that finds nothing says so and keeps no result.
    f.prompts.dialogs.enqueue([](QDialog *d) {
        auto *name = child<QLineEdit>(d, "findName");
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("nowhere"));
        press(d);
    });
    f.run("actionFindItem");
    QCOMPARE(f.prompts.shown.size(), 1);
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Information);
    QCOMPARE(f.prompts.shown[0].text, QStringLiteral("No item matched the search criteria."));
    QVERIFY(!again->isEnabled());
    QCOMPARE(f.prompts.dialogsRun, (QStringList{QStringLiteral("findDialog"), QStringLiteral("searchResults"),
                                                QStringLiteral("searchResults"), QStringLiteral("findDialog")}));
}

void TestDialogs::criteriaPresetTheNextFind()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        // The case option starts from the settings (on by default).
        QVERIFY(child<QCheckBox>(d, "findCaseInsensitive")->isChecked());
        QCOMPARE(child<QComboBox>(d, "findCategory")->currentText(), QStringLiteral("[Any]"));
        QCOMPARE(child<QLineEdit>(d, "findName")->placeholderText(), QStringLiteral("[Any]"));
        QTest::keyClicks(child<QLineEdit>(d, "findName"), QStringLiteral("ab"));
        child<QComboBox>(d, "findPriority")->setCurrentIndex(3);
        child<QCheckBox>(d, "findItalic")->setCheckState(Qt::Unchecked);
        child<QCheckBox>(d, "findCaseInsensitive")->setChecked(false);
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d, QDialogButtonBox::Cancel); });
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QLineEdit>(d, "findName")->text(), QStringLiteral("ab"));
        QCOMPARE(child<QComboBox>(d, "findPriority")->currentText(), QStringLiteral("3"));
        QCOMPARE(child<QCheckBox>(d, "findItalic")->checkState(), Qt::Unchecked);
        QCOMPARE(child<QCheckBox>(d, "findCompleted")->checkState(), Qt::PartiallyChecked);
        QVERIFY(!child<QCheckBox>(d, "findCaseInsensitive")->isChecked());
        press(d, QDialogButtonBox::Cancel);
    });
    f.run("actionFindItem");
    QVERIFY(!f.window->settings().testFlag(Settings::CaseInsensitiveFind));
    f.run("actionFindItem");
    QCOMPARE(f.prompts.dialogsRun.size(), 3);
}

void TestDialogs::everyPageMapsToTheSettings()
{
    ShellFixture f;
    auto document = std::make_unique<Document>();
    add(document->root(), QStringLiteral("One"));
    QVERIFY(f.open(std::move(document)));
    f.prompts.icons.enqueue(9);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        auto *pages = child<QTabWidget>(d, "pages");
        const char *shots[] = {"options-display", "options-general", "options-defaults", "options-icons",
                               "options-import-export", "options-calendar"};
        for (int i = 0; i < pages->count(); ++i) {
            pages->setCurrentIndex(i);
            screenshot(d, QString::fromLatin1(shots[i]));
        }

        // Display
        auto *size = child<QComboBox>(d, "fontSize");
        QCOMPARE(size->currentText(), QStringLiteral("8 pt"));
        size->setCurrentIndex(size->findData(100));
        check(d, "bold", true);
        choose(d, "listStyle", 1);
        child<ColourCombo>(d, "progressColour")->setColour(5);
        check(d, "normalFontCompleted", true);
        check(d, "greyCompleted", true);
        check(d, "calendarCategories", true);
        // General
        QVERIFY(child<QCheckBox>(d, "caseInsensitive")->isChecked());
        check(d, "caseInsensitive", false);
        check(d, "longTapEdit", true);
        check(d, "externalEditor", true);
        auto *zoom = child<QComboBox>(d, "noteZoom");
        zoom->setCurrentIndex(zoom->findData(150));
        child<QSpinBox>(d, "undoLimit")->setValue(40);
        auto *sound = child<QComboBox>(d, "sound");
        QCOMPARE(sound->currentText(), QStringLiteral("Alarm1"));
        sound->setCurrentIndex(sound->findText(QStringLiteral("(None)")));
        child<QLineEdit>(d, "templateFile")->setText(QStringLiteral("/srv/templates.qbt"));
        // Defaults: the box shows the stored bit inverted.
        QVERIFY(!child<QCheckBox>(d, "deleteAfterExport")->isChecked());
        check(d, "deleteAfterExport", true);
        choose(d, "branchTab", 3);
        // Icons
        auto *icons = child<QListWidget>(d, "favouriteIcons");
        icons->item(3)->setCheckState(Qt::Checked);
        icons->item(1)->setCheckState(Qt::Checked);
        // Import/Export
        choose(d, "xmlEncoding", 2);
        choose(d, "indent", 1);
        choose(d, "separator", 4);
        child<QComboBox>(d, "codePage")->setEditText(QStringLiteral("windows-1250"));
        QTest::mouseClick(child<QToolButton>(d, "importIcon"), Qt::LeftButton);
        choose(d, "importNoteType", 2);
        // Calendar: a folder needs no account, a server does.
        auto *user = child<QLineEdit>(d, "calendarUser");
        QVERIFY(!user->isEnabled());
        child<QLineEdit>(d, "calendarStore")->setText(QStringLiteral(" https://dav.example.org/cal/tasks/ "));
        QVERIFY(user->isEnabled());
        user->setText(QStringLiteral("anna"));
        press(d);
    });
    f.run("actionOptions");

    for (const Settings &s : {f.window->settings(), stored(f)}) {
        QCOMPARE(s.fontSize, quint16(100));
        QCOMPARE(s.prgColour, quint16(5));
        QCOMPARE(s.noteZoom, quint16(150));
        QCOMPARE(s.undoLimit, quint16(40));
        QCOMPARE(s.sound, QStringLiteral("(None)"));
        QCOMPARE(s.templateFile, QStringLiteral("/srv/templates.qbt"));
        QCOMPARE(s.branchTab, quint16(3));
        QCOMPARE(s.favIcons, (QList<quint16>{1, 3}));
        QCOMPARE(s.xmlEncode, quint16(2));
        QCOMPARE(s.expViewSep, quint16(1));
        QCOMPARE(s.expOtherSep, quint16(4));
        QCOMPARE(s.ansiCodePage, QStringLiteral("windows-1250"));
        QCOMPARE(s.textImport, 0x00020009u);
        QCOMPARE(s.calendarStore, QStringLiteral("https://dav.example.org/cal/tasks/"));
        QCOMPARE(s.calendarUser, QStringLiteral("anna"));
        // Every bit but the reserved one: 4 calendar, 5 normal font, 6 bold,
        // 7 grey, 8 compact, 9 word processor, 3 long tap; 0 and 1 cleared.
        QCOMPARE(s.flags, 0x3F8u);
    }
}

void TestDialogs::cancelKeepsTheSettings()
{
    ShellFixture f;
    auto document = std::make_unique<Document>();
    QVERIFY(f.open(std::move(document)));
    f.window->settings().favIcons = {800, 2};
    f.window->saveSettings();
    const Settings before = f.window->settings();
    f.prompts.dialogs.enqueue([](QDialog *d) {
        check(d, "bold", true);
        choose(d, "xmlEncoding", 3);
        child<QListWidget>(d, "favouriteIcons")->item(2)->setCheckState(Qt::Unchecked);
        press(d, QDialogButtonBox::Cancel);
    });
    f.run("actionOptions");
    QCOMPARE(f.window->settings().flags, before.flags);
    QCOMPARE(f.window->settings().xmlEncode, before.xmlEncode);
    QCOMPARE(f.window->settings().favIcons, before.favIcons);

    // OK without changes keeps a favourite beyond the chooser's pictures.
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d); });
    f.run("actionOptions");
    QCOMPARE(stored(f).favIcons, (QList<quint16>{800, 2}));
}

void TestDialogs::unknownCodePageIsRefused()
{
    ShellFixture f;
    QVERIFY(f.open(std::make_unique<Document>()));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        child<QComboBox>(d, "codePage")->setEditText(QStringLiteral("no-such-page"));
        press(d);
        QVERIFY(d->isVisible());
        QCOMPARE(child<QTabWidget>(d, "pages")->currentIndex(), 4);
        child<QComboBox>(d, "codePage")->setEditText(QStringLiteral("windows-1251"));
        press(d);
    });
    f.run("actionOptions");
    QCOMPARE(f.shownTexts(), QStringList{QStringLiteral(
                                 "The code page 'no-such-page' is not known. Please choose one from the list.")});
    QCOMPARE(f.window->settings().ansiCodePage, QStringLiteral("windows-1251"));
}

void TestDialogs::setMode_data()
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

void TestDialogs::setMode()
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

void TestDialogs::boxesTakeFifteenCharacters()
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

void TestDialogs::enterMode()
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

void TestDialogs::protectedDocumentOpensOnlyWithItsPassword()
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
    f.prompts.passwords.append({QStringLiteral("ABC"), QStringLiteral("abc")});
    QVERIFY(f.window->openDocument(path));
    QCOMPARE(f.at({0})->name(), QStringLiteral("Diary"));
}

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
