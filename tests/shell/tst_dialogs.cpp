#include "support/shellfixture.h"

#include "shell/dialogs/finddialog.h"
#include "shell/widgets/colourcombo.h"
#include "storage/password.h"

#include <QDateEdit>
#include <QListWidget>
#include <QSettings>

namespace {

// Root > Xabcx (note "Call the bank", done) > ABC child; abacus; Plain (note "bank holiday")
const char *const Sample = "Xabcx | note=Call_the_bank prog=100\n  ABC child\nabacus\nPlain | note=bank_holiday\n";

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
    void findWidgetsMapToTheCriteria()
    {
        // Which items match is the finder's rule; the dialog only fills the criteria.
        FindDialog dialog(FindCriteria(), {QStringLiteral("Work"), QStringLiteral("Home")});
        QTest::keyClicks(child<QLineEdit>(&dialog, "findName"), QStringLiteral("ab"));
        child<QComboBox>(&dialog, "findPriority")->setCurrentIndex(3);
        child<QComboBox>(&dialog, "findCategory")->setEditText(QStringLiteral("work"));
        child<QCheckBox>(&dialog, "findHasDate")->setChecked(true);
        child<QDateEdit>(&dialog, "findDate")->setDate(QDate(2024, 5, 11));
        child<QComboBox>(&dialog, "findDateOperator")->setCurrentIndex(FindCriteria::GreaterThan);
        QTest::keyClicks(child<QLineEdit>(&dialog, "findNotePhrase"), QStringLiteral("bank"));
        child<QCheckBox>(&dialog, "findCompleted")->setCheckState(Qt::Checked);
        child<ColourCombo>(&dialog, "findColour")->setColour(4);
        child<QCheckBox>(&dialog, "findItalic")->setCheckState(Qt::Checked);
        child<QCheckBox>(&dialog, "findShowIcon")->setCheckState(Qt::Unchecked);
        child<QCheckBox>(&dialog, "findCaseInsensitive")->setChecked(true);
        // A dialog preset with criteria shows them again.
        FindDialog again(dialog.criteria(), {});
        const FindCriteria c = again.criteria();
        QCOMPARE(c.flags, 0x1FFu);
        QCOMPARE(c.name, QStringLiteral("ab"));
        QCOMPARE(c.priority, quint16(3));
        QCOMPARE(c.category, QStringLiteral("work"));
        QCOMPARE(c.date, (SystemTime{2024, 5, 6, 11, 0, 0, 0, 0}));
        QCOMPARE(c.dateOperator, FindCriteria::GreaterThan);
        QCOMPARE(c.notePhrase, QStringLiteral("bank"));
        QCOMPARE(c.progress, quint16(100)); // a checked "Completed" looks for 100%
        QCOMPARE(c.colour, quint16(4));
        QVERIFY(c.italic && !c.showIcon && c.caseInsensitive);
        // The boxes' third state is "any"; Clear empties every field but keeps the case option.
        child<QCheckBox>(&again, "findItalic")->setCheckState(Qt::PartiallyChecked);
        QVERIFY(!again.criteria().has(FindCriteria::Italic));
        QTest::mouseClick(child<QPushButton>(&again, "findClear"), Qt::LeftButton);
        QCOMPARE(again.criteria().flags, 0u);
        QVERIFY(again.criteria().caseInsensitive);
    }

    void findCommands()
    {
        ShellFixture f;
        QVERIFY(f.open(Sample));
        f.document()->hideCompleted = true;
        QVERIFY(!f.enabled("actionFindResult"));
        // The case option starts from the settings (on); hidden items are left out of the results.
        f.prompts.dialogs.enqueue([](QDialog *d) {
            QVERIFY(child<QCheckBox>(d, "findCaseInsensitive")->isChecked());
            QTest::keyClicks(child<QLineEdit>(d, "findName"), QStringLiteral("a"));
            check(d, "findCaseInsensitive", false);
            press(d);
        });
        f.prompts.dialogs.enqueue([](QDialog *d) {
            QCOMPARE(rows(d), (QStringList{"abacus", "Plain"}));
            press(d, QDialogButtonBox::Cancel);
        });
        QVERIFY(f.run("actionFindItem"));
        QVERIFY(!f.window->settings().testFlag(Settings::CaseInsensitiveFind));

        // The criteria preset the next search; the chosen result of a collapsed branch is revealed and made current.
        f.document()->hideCompleted = false;
        f.prompts.dialogs.enqueue([](QDialog *d) {
            QCOMPARE(child<QLineEdit>(d, "findName")->text(), QStringLiteral("a"));
            type(d, "findName", QStringLiteral("c"));
            press(d);
        });
        f.prompts.dialogs.enqueue([](QDialog *d) {
            auto *list = child<QTreeWidget>(d, "resultList");
            QCOMPARE(list->topLevelItem(1)->text(1), QStringLiteral("Xabcx")); // where each result lies
            list->setFocus();
            QTest::keyClick(list, Qt::Key_Down);
            QTest::keyClick(list, Qt::Key_Return);
        });
        QVERIFY(f.run("actionFindItem"));
        QCOMPARE(f.current(), f.at({0, 0}));
        // A search that finds nothing says so and keeps no result.
        f.prompts.dialogs.enqueue([](QDialog *d) {
            type(d, "findName", QStringLiteral("nowhere"));
            press(d);
        });
        QVERIFY(f.run("actionFindItem"));
        QCOMPARE(f.shownTexts(), QStringList{"No item matched the search criteria."});
        QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Information);
        QVERIFY(!f.enabled("actionFindResult"));
    }

    void optionsMapToTheSettings()
    {
        ShellFixture f;
        QVERIFY(f.open(std::make_unique<Document>()));
        f.window->settings().favIcons = {800, 2};
        f.prompts.icons.enqueue(9);
        f.prompts.dialogs.enqueue([](QDialog *d) {
            auto *size = child<QComboBox>(d, "fontSize");
            QCOMPARE(size->currentText(), QStringLiteral("8 pt"));
            size->setCurrentIndex(size->findData(100));
            for (const char *box : {"bold", "normalFontCompleted", "greyCompleted", "calendarCategories", "longTapEdit",
                                    "externalEditor", "deleteAfterExport"}) // the last shows the stored bit inverted
                check(d, box, true);
            check(d, "caseInsensitive", false);
            choose(d, "listStyle", 1);
            child<ColourCombo>(d, "progressColour")->setColour(5);
            auto *zoom = child<QComboBox>(d, "noteZoom");
            zoom->setCurrentIndex(zoom->findData(150));
            child<QSpinBox>(d, "undoLimit")->setValue(40);
            auto *sound = child<QComboBox>(d, "sound");
            QCOMPARE(sound->currentText(), QStringLiteral("Alarm1"));
            sound->setCurrentIndex(sound->findText(QStringLiteral("(None)")));
            child<QLineEdit>(d, "templateFile")->setText(QStringLiteral("/srv/templates.qbt"));
            choose(d, "branchTab", 3);
            child<QListWidget>(d, "favouriteIcons")->item(3)->setCheckState(Qt::Checked);
            choose(d, "xmlEncoding", 2);
            choose(d, "indent", 1);
            choose(d, "separator", 4);
            QTest::mouseClick(child<QToolButton>(d, "importIcon"), Qt::LeftButton);
            choose(d, "importNoteType", 2);
            // An unknown code page is refused, on its page.
            child<QComboBox>(d, "codePage")->setEditText(QStringLiteral("no-such-page"));
            press(d);
            QCOMPARE(child<QTabWidget>(d, "pages")->currentIndex(), 4);
            child<QComboBox>(d, "codePage")->setEditText(QStringLiteral("windows-1250"));
            // A calendar folder needs no account, a server does.
            auto *user = child<QLineEdit>(d, "calendarUser");
            QVERIFY(!user->isEnabled());
            child<QLineEdit>(d, "calendarStore")->setText(QStringLiteral(" https://dav.example.org/cal/tasks/ "));
            user->setText(QStringLiteral("anna"));
            press(d);
        });
        QVERIFY(f.run("actionOptions"));
        QCOMPARE(f.shownTexts(),
                 QStringList{"The code page 'no-such-page' is not known. Please choose one from the list."});
        // Every field once, the window's settings and the stored ones; a favourite beyond the chooser's pictures is
        // kept; the text import is icon 9 and note type 2 (0x20009); the flags 0x3F8 are bits 3 (long tap) to 9 (word
        // processor), with 0 (case) and 1 (delete after export) cleared.
        auto summary = [](const Settings &s) {
            QStringList values{s.sound, s.templateFile, s.ansiCodePage, s.calendarStore, s.calendarUser};
            for (quint32 n :
                 {quint32(s.fontSize), quint32(s.prgColour), quint32(s.noteZoom), quint32(s.undoLimit),
                  quint32(s.branchTab), quint32(s.xmlEncode), quint32(s.expViewSep), quint32(s.expOtherSep)})
                values << QString::number(n);
            for (quint16 icon : s.favIcons)
                values << QString::number(icon);
            return values.join(QLatin1Char('|')) +
                   QStringLiteral("|%1|%2").arg(s.textImport, 0, 16).arg(s.flags, 0, 16);
        };
        QSettings store(f.dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
        Settings stored;
        stored.load(store);
        const QString expected =
            QStringLiteral("(None)|/srv/templates.qbt|windows-1250|https://dav.example.org/cal/tasks/|"
                           "anna|100|5|150|40|3|2|1|4|800|2|3|20009|3f8");
        QCOMPARE(summary(f.window->settings()), expected);
        QCOMPARE(summary(stored), expected);
    }

    void setPassword()
    {
        const QString wrong = QStringLiteral("The password is not correct. Please enter the password and try again.");
        const QString mismatch = QStringLiteral("The new password and confirmation do not match. Please try again.");
        const struct {
            QString stored;    // empty: not protected
            QStringList tries; // current, new, confirmation; repeated per OK
            QStringList messages;
            QString result; // the password afterwards; empty: none
        } rows[] = {
            {"", {"", "0123456789abcdef", "0123456789abcdef"}, {}, "0123456789abcde"}, // 15 characters at most
            {"", {"", "abc", "abd", "", "abc", "abc"}, {mismatch}, "abc"},
            {"abc", {"ABC", "x", "x"}, {wrong}, "abc"}, // refused before the new one is looked at
            {"abc", {"abc", "", ""}, {}, ""},           // both new boxes empty remove the protection
        };
        for (const auto &row : rows) {
            ShellFixture f;
            auto document = std::make_unique<Document>();
            if (!row.stored.isEmpty())
                document->passwordHash = Password::digest(row.stored);
            f.prompts.passwords << row.stored;
            QVERIFY(f.open(std::move(document)));
            f.prompts.dialogs.enqueue([&](QDialog *d) {
                QCOMPARE(child<QLabel>(d, "passwordMessage")->text(),
                         QStringLiteral("Enter a new password to protect this file. If this file already has a "
                                        "password, please enter it to change."));
                QCOMPARE(child<QLineEdit>(d, "currentPassword")->isEnabled(), !row.stored.isEmpty());
                for (qsizetype i = 0; i + 2 < row.tries.size(); i += 3) {
                    type(d, "currentPassword", row.tries[i]);
                    type(d, "newPassword", row.tries[i + 1]);
                    type(d, "confirmPassword", row.tries[i + 2]);
                    press(d);
                }
            });
            QVERIFY(f.run("actionSetPassword"));
            QCOMPARE(f.shownTexts(), row.messages);
            QCOMPARE(f.document()->passwordHash, row.result.isEmpty() ? QByteArray() : Password::digest(row.result));
            // A protected document opens only with its password.
            f.window->closeDocument();
            f.prompts.passwords.clear();
            f.prompts.passwords << QStringLiteral("wrong") << row.result;
            QVERIFY(f.window->openDocument(f.dir.filePath(QStringLiteral("test.qbx"))));
            QCOMPARE(f.prompts.passwordAttempts, int(!row.stored.isEmpty()) + (row.result.isEmpty() ? 0 : 2));
        }
    }
};

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
