#include "support/shellfixture.h"

#include "shell/widgets/colourcombo.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QSettings>
#include <QTabWidget>
#include <QToolButton>

class TestOptionsDialog : public QObject {
    Q_OBJECT

private:
    static void check(QDialog *d, const char *name, bool on) { child<QCheckBox>(d, name)->setChecked(on); }
    static void choose(QDialog *d, const char *name, int index) { child<QComboBox>(d, name)->setCurrentIndex(index); }

    static Settings stored(const ShellFixture &f)
    {
        QSettings store(f.dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
        Settings s;
        s.load(store);
        return s;
    }

private Q_SLOTS:
    void everyPageMapsToTheSettings();
    void cancelKeepsTheSettings();
    void unknownCodePageIsRefused();
};

void TestOptionsDialog::everyPageMapsToTheSettings()
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

void TestOptionsDialog::cancelKeepsTheSettings()
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

void TestOptionsDialog::unknownCodePageIsRefused()
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

QTEST_MAIN(TestOptionsDialog)
#include "tst_optionsdialog.moc"
