#include "support/shellfixture.h"

#include "model/childorder.h"
#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"
#include "shell/dialogs/itempropertiesdialog.h"
#include "shell/widgets/colourcombo.h"
#include "storage/template.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDateTimeEdit>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextEdit>

class TestItemProperties : public QObject {
    Q_OBJECT

private:
    // Root > Work (Alpha, Beta, Gamma) > Home
    std::unique_ptr<Document> sample(quint16 noteType = Document::PlainText)
    {
        auto document = std::make_unique<Document>();
        document->noteType = noteType;
        Item *work = add(document->root(), QStringLiteral("Work"));
        add(work, QStringLiteral("Alpha"));
        add(work, QStringLiteral("Beta"));
        add(work, QStringLiteral("Gamma"));
        add(document->root(), QStringLiteral("Home"));
        return document;
    }

private Q_SLOTS:
    void generalPage();
    void detailsPage_data();
    void detailsPage();
    void newItemGoesWhereAsked_data();
    void newItemGoesWhereAsked();
    void templateFillsEveryControl();
    void notePage();
    void editInWord_data();
    void editInWord();
    void modifyNoteGoesToTheWordProcessorWhenChosen_data();
    void modifyNoteGoesToTheWordProcessorWhenChosen();
};

void TestItemProperties::generalPage()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *beta = f.at({0, 1});
    f.select(beta);
    f.prompts.icons.enqueue(42);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        screenshot(d, QStringLiteral("item-properties-general"));
        auto *name = child<QLineEdit>(d, "name");
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("Beta two"));
        child<QComboBox>(d, "priority")->setCurrentIndex(2);
        child<QComboBox>(d, "category")->setEditText(QStringLiteral("Errands"));
        QTest::mouseClick(child<QAbstractButton>(d, "icon"), Qt::LeftButton);
        child<ColourCombo>(d, "colour")->setColour(18);
        child<QComboBox>(d, "statusType")->setCurrentIndex(2);
        child<QSpinBox>(d, "progress")->setValue(40);
        child<QCheckBox>(d, "italic")->setChecked(true);
        child<QCheckBox>(d, "showIcon")->setChecked(false);
        press(d);
    });
    f.run("actionModifyItem");
    QCOMPARE(f.prompts.dialogsRun, QStringList{QStringLiteral("itemProperties")});
    // Cancel storing nothing is the note page's check below.
    QCOMPARE(beta->name(), QStringLiteral("Beta two"));
    QCOMPARE(beta->priority(), quint16(3)); // the list shows priority - 1
    QCOMPARE(beta->category(), QStringLiteral("Errands"));
    QCOMPARE(f.document()->categories, QStringList{QStringLiteral("Errands")});
    QCOMPARE(beta->image(), quint16(42));
    QCOMPARE(beta->colour(), quint16(18));
    QCOMPARE(beta->statusType(), quint16(Item::ProgressBar));
    QCOMPARE(beta->progress(), quint16(40));
    QVERIFY(beta->isItalic());
    QVERIFY(!beta->showIcon());
    QCOMPARE(f.current(), beta);
}

void TestItemProperties::detailsPage_data()
{
    QTest::addColumn<SystemTime>("storedDue");
    QTest::addColumn<bool>("dueOn");
    QTest::addColumn<QDate>("dueDate");
    QTest::addColumn<SystemTime>("expectedDue");
    QTest::addColumn<QString>("taskTime");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QDateTime>("reminder");
    QTest::addColumn<SystemTime>("expectedReminder");

    const SystemTime none;
    // 2024-03-05 was a Tuesday (day of week 2).
    const SystemTime march5{2024, 3, 2, 5, 0, 0, 0, 0};
    const SystemTime march5Evening{2024, 3, 2, 5, 18, 30, 0, 0};
    const SystemTime march9{2024, 3, 6, 9, 0, 0, 0, 0};
    // A reminder set here is pending: its seconds field is 1.
    const SystemTime reminder{2024, 3, 1, 4, 8, 15, 1, 0};
    QTest::newRow("new due date") << none << true << QDate(2024, 3, 5) << march5 << QStringLiteral("90") << 1
                                  << QDateTime() << none;
    QTest::newRow("changed date starts the day")
        << march5Evening << true << QDate(2024, 3, 9) << march9 << QString() << 0 << QDateTime() << none;
    QTest::newRow("untouched date keeps its time") << march5Evening << true << QDate(2024, 3, 5) << march5Evening
                                                   << QStringLiteral("2") << 5 << QDateTime() << none;
    QTest::newRow("cleared") << march5 << false << QDate(2024, 3, 5) << none << QString() << 0 << QDateTime() << none;
    QTest::newRow("reminder") << none << false << QDate() << none << QStringLiteral("1.5") << 2
                              << QDateTime(QDate(2024, 3, 4), QTime(8, 15)) << reminder;
}

void TestItemProperties::detailsPage()
{
    QFETCH(SystemTime, storedDue);
    QFETCH(bool, dueOn);
    QFETCH(QDate, dueDate);
    QFETCH(SystemTime, expectedDue);
    QFETCH(QString, taskTime);
    QFETCH(int, unit);
    QFETCH(QDateTime, reminder);
    QFETCH(SystemTime, expectedReminder);

    ShellFixture f;
    auto document = sample();
    document->root()->child(1)->setDueDate(storedDue);
    QVERIFY(f.open(std::move(document)));
    Item *home = f.at({1});
    f.select(home);
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        child<QTabWidget>(d, "pages")->setCurrentIndex(ItemPropertiesDialog::DetailsPage);
        screenshot(d, QStringLiteral("item-properties-details"));
        child<QCheckBox>(d, "hasDueDate")->setChecked(dueOn);
        if (dueDate.isValid())
            child<QDateEdit>(d, "dueDate")->setDate(dueDate);
        QTest::keyClicks(child<QLineEdit>(d, "taskTime"), taskTime + QStringLiteral("123456789"));
        child<QComboBox>(d, "taskTimeUnit")->setCurrentIndex(unit);
        child<QCheckBox>(d, "hasReminder")->setChecked(reminder.isValid());
        if (reminder.isValid())
            child<QDateTimeEdit>(d, "reminder")->setDateTime(reminder);
        press(d);
    });
    f.run("actionModifyItem");
    QCOMPARE(home->dueDate(), expectedDue);
    // The task time box takes seven characters.
    QCOMPARE(home->taskTime(), (taskTime + QStringLiteral("123456789")).left(7));
    QCOMPARE(home->taskTimeType(), quint16(unit));
    QCOMPARE(home->reminderTime(), expectedReminder);
}

void TestItemProperties::newItemGoesWhereAsked_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("parentName");
    QTest::addColumn<int>("index");
    QTest::newRow("same") << QStringLiteral("insertSame") << QStringLiteral("Root") << 1;
    QTest::newRow("child") << QStringLiteral("insertChild") << QStringLiteral("Work") << 0;
    QTest::newRow("top") << QStringLiteral("insertTop") << QStringLiteral("Root") << 2;
    QTest::newRow("cancelled") << QString() << QString() << -1;
}

void TestItemProperties::newItemGoesWhereAsked()
{
    QFETCH(QString, button);
    QFETCH(QString, parentName);
    QFETCH(int, index);
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.select(f.at({0}));
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        if (button.isEmpty()) {
            QTest::keyClicks(child<QLineEdit>(d, "name"), QStringLiteral("Never"));
            press(d, QDialogButtonBox::Cancel);
            return;
        }
        screenshot(d, QStringLiteral("new-item"));
        QTest::keyClicks(child<QLineEdit>(d, "name"), QStringLiteral("Fresh"));
        child<QComboBox>(d, "priority")->setCurrentIndex(0);
        clickButton(d->findChild<QRadioButton *>(button));
        press(d);
    });
    f.run("actionNew");
    if (index < 0) {
        QCOMPARE(f.document()->root()->childCount(), 2);
        QCOMPARE(f.at({0})->childCount(), 3);
        return;
    }
    auto *fresh = static_cast<Item *>(f.current());
    QCOMPARE(fresh->name(), QStringLiteral("Fresh"));
    QCOMPARE(fresh->priority(), quint16(1));
    QCOMPARE(fresh->parent()->name(), parentName);
    QCOMPARE(fresh->parent()->indexOf(fresh), index);
}

void TestItemProperties::templateFillsEveryControl()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Template templ(Document::PlainText);
    templ.setTemplateName(QStringLiteral("Report"));
    templ.setName(QStringLiteral("Weekly report"));
    templ.setImage(7);
    templ.setPriority(3);
    templ.setCategory(QStringLiteral("Reports"));
    templ.setStatusType(Item::ProgressBar);
    templ.setAutoProgress(true);
    templ.setColour(5);
    templ.setItalic(true);
    templ.setTaskTime(QStringLiteral("2"));
    templ.setTaskTimeType(2);
    templ.setNote(NoteText::toPlainNote(QStringLiteral("Sections: done, next, risks")));

    Item fresh;
    ItemPropertiesDialog::Context context;
    context.document = f.document();
    context.prompts = &f.prompts;
    context.templates = {{QStringLiteral("Report"), &templ}};
    ItemPropertiesDialog dialog(context, &fresh, true);
    auto *choice = child<QComboBox>(&dialog, "template");
    QVERIFY(choice->isVisible() || !choice->isHidden());
    QCOMPARE(choice->itemText(1), QStringLiteral("Report"));
    QTest::keyClick(choice, Qt::Key_Down); // chooses the template as a person would
    QCOMPARE(child<QLineEdit>(&dialog, "name")->text(), QStringLiteral("Weekly report"));
    QCOMPARE(child<QComboBox>(&dialog, "priority")->currentText(), QStringLiteral("3"));
    QCOMPARE(child<QComboBox>(&dialog, "category")->currentText(), QStringLiteral("Reports"));
    QVERIFY(child<QRadioButton>(&dialog, "automatic")->isChecked());
    dialog.store();
    QCOMPARE(fresh.name(), QStringLiteral("Weekly report"));
    QCOMPARE(fresh.image(), quint16(7));
    QCOMPARE(fresh.statusType(), quint16(Item::ProgressBar));
    QCOMPARE(fresh.colour(), quint16(5));
    QVERIFY(fresh.isItalic());
    QCOMPARE(fresh.taskTimeType(), quint16(2));
    QCOMPARE(NoteText::plainText(fresh.note(), Document::PlainText), QStringLiteral("Sections: done, next, risks"));
    // Links are never part of a template.
    QVERIFY(fresh.links().isEmpty());
}

void TestItemProperties::notePage()
{
    ShellFixture f;
    auto document = sample();
    document->root()->child(1)->setNote(NoteText::toPlainNote(QStringLiteral("old")));
    QVERIFY(f.open(std::move(document)));
    Item *home = f.at({1});
    f.select(home);
    for (bool ok : {false, true}) {
        f.prompts.dialogs.enqueue([ok](QDialog *d) {
            QCOMPARE(child<QTabWidget>(d, "pages")->currentIndex(), int(ItemPropertiesDialog::NotePage));
            auto *editor = d->findChild<QPlainTextEdit *>(QStringLiteral("plainNoteEditor"));
            QCOMPARE(editor->toPlainText(), QStringLiteral("old"));
            editor->selectAll();
            QTest::keyClicks(editor, QStringLiteral("Buy milk"));
            if (ok)
                screenshot(d, QStringLiteral("item-properties-note"));
            press(d, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
        });
        f.run("actionModifyNote");
        const QString expected = ok ? QStringLiteral("Buy milk") : QStringLiteral("old");
        QCOMPARE(NoteText::plainText(home->note(), Document::PlainText), expected);
        QCOMPARE(f.view()->notePane()->plainText(), expected);
    }
}

void TestItemProperties::editInWord_data()
{
    QTest::addColumn<bool>("ok");
    QTest::newRow("ok") << true;
    QTest::newRow("cancel") << false;
}

void TestItemProperties::editInWord()
{
    QFETCH(bool, ok);
    ShellFixture f;
    auto document = sample(Document::RichText);
    document->root()->child(1)->setNote(RtfWriter::fromPlainText(QStringLiteral("draft")));
    QVERIFY(f.open(std::move(document)));
    Item *home = f.at({1});
    f.select(home);
    QString exchangeFile;
    QByteArray handedOver;
    f.prompts.whenOpened = [&](const QUrl &url) {
        exchangeFile = url.toLocalFile();
        QFile file(exchangeFile);
        QVERIFY(file.open(QIODevice::ReadWrite));
        handedOver = file.readAll();
        // The word processor saves its own RTF.
        file.resize(0);
        file.write("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\\f0 final \\b text\\b0\\par}");
    };
    f.prompts.okCancel.enqueue(ok);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QTest::mouseClick(child<QPushButton>(d, "editInWord"), Qt::LeftButton);
        press(d);
    });
    f.run("actionModifyNote");
    QVERIFY(exchangeFile.endsWith(QLatin1String(".rtf")));
    QVERIFY(QFileInfo(exchangeFile).fileName().startsWith(QLatin1String("qlb")));
    QCOMPARE(RtfReader::plainText(handedOver), QStringLiteral("draft"));
    QVERIFY(!QFile::exists(exchangeFile));
    QCOMPARE(f.prompts.shown.last().text,
             QStringLiteral("When finished editing and saving the note in Pocket Word, tap OK to update Quillbox."));
    QCOMPARE(RtfReader::plainText(home->note()), ok ? QStringLiteral("final text") : QStringLiteral("draft"));
}

void TestItemProperties::modifyNoteGoesToTheWordProcessorWhenChosen_data()
{
    QTest::addColumn<quint16>("noteType");
    QTest::addColumn<bool>("external");
    QTest::newRow("rich text, option on") << quint16(Document::RichText) << true;
    QTest::newRow("plain text keeps the note page") << quint16(Document::PlainText) << false;
}

void TestItemProperties::modifyNoteGoesToTheWordProcessorWhenChosen()
{
    QFETCH(quint16, noteType);
    QFETCH(bool, external);
    ShellFixture f;
    f.window->settings().setFlag(Settings::ExternalRichEditor, true);
    auto document = sample(noteType);
    document->root()->child(1)->setNote(NoteText::fromText(QStringLiteral("draft"), noteType));
    QVERIFY(f.open(std::move(document)));
    Item *home = f.at({1});
    f.select(home);
    f.prompts.whenOpened = [](const QUrl &url) {
        QFile file(url.toLocalFile());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("{\\rtf1\\ansi edited\\par}");
    };
    f.run("actionModifyNote");
    QCOMPARE(f.prompts.dialogsRun.isEmpty(), external);
    QCOMPARE(f.prompts.opened.size(), external ? 1 : 0);
    QCOMPARE(NoteText::plainText(home->note(), noteType),
             external ? QStringLiteral("edited") : QStringLiteral("draft"));
    QCOMPARE(f.view()->notePane()->plainText(), external ? QStringLiteral("edited") : QStringLiteral("draft"));
}

QTEST_MAIN(TestItemProperties)
#include "tst_itemproperties.moc"
