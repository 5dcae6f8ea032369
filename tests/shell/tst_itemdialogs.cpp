#include "support/shellfixture.h"

#include "model/editing.h"
#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"
#include "shell/dialogs/applyattributesdialog.h"
#include "shell/dialogs/itempickerdialog.h"
#include "shell/dialogs/itempropertiesdialog.h"
#include "shell/dialogs/linkspage.h"
#include "shell/widgets/colourcombo.h"
#include "shell/widgets/nodetree.h"
#include "storage/template.h"
#include "storage/templatefile.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDateTimeEdit>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>

namespace {

// Root > Work (Alpha (Sketch), Beta, Gamma) > Home
std::unique_ptr<Document> sample(quint16 noteType = Document::PlainText)
{
    auto document = std::make_unique<Document>();
    document->noteType = noteType;
    Item *work = add(document->root(), QStringLiteral("Work"));
    add(add(work, QStringLiteral("Alpha")), QStringLiteral("Sketch"));
    add(work, QStringLiteral("Beta"));
    add(work, QStringLiteral("Gamma"));
    add(document->root(), QStringLiteral("Home"));
    return document;
}

LinksPage *page(QDialog *d)
{
    return d->findChild<LinksPage *>();
}

QStringList rowTexts(QDialog *d)
{
    QStringList texts;
    QTreeWidget *list = page(d)->list();
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        texts.append(list->topLevelItem(i)->text(0));
    return texts;
}

void trigger(QDialog *d, const char *action)
{
    page(d)->action(QString::fromLatin1(action))->trigger();
}

void selectRow(QDialog *d, int row)
{
    page(d)->list()->setCurrentItem(page(d)->list()->topLevelItem(row));
}

QString templatePath(const ShellFixture &f)
{
    return f.dir.filePath(QStringLiteral("QuillboxTemplates.qbt"));
}

} // namespace

// The dialogs of one item: its properties and links, "Apply Attributes" to
// its children, and the item templates.
class TestItemDialogs : public QObject {
    Q_OBJECT

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
    void deadItemLinksReportedAndDroppedOnStore();
    void addUrlRefusesEmptyText();
    void fileLinksInsideTheDocumentsFolderAreRelative();
    void itemLinkPickerRefusesTheListTitle();
    void modifyAndDelete();
    void followingALink();
    void followingAnItemLinkSelectsItsTarget();
    void changingAValueTicksItsBox();
    void appliedToChildrenOrToEverythingBelow_data();
    void appliedToChildrenOrToEverythingBelow();
    void addEditAndDelete();
    void newItemsFromTemplates();
};

void TestItemDialogs::generalPage()
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

void TestItemDialogs::detailsPage_data()
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

void TestItemDialogs::detailsPage()
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

void TestItemDialogs::newItemGoesWhereAsked_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("parentName");
    QTest::addColumn<int>("index");
    QTest::newRow("same") << QStringLiteral("insertSame") << QStringLiteral("Root") << 1;
    QTest::newRow("child") << QStringLiteral("insertChild") << QStringLiteral("Work") << 0;
    QTest::newRow("top") << QStringLiteral("insertTop") << QStringLiteral("Root") << 2;
    QTest::newRow("cancelled") << QString() << QString() << -1;
}

void TestItemDialogs::newItemGoesWhereAsked()
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

void TestItemDialogs::templateFillsEveryControl()
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

void TestItemDialogs::notePage()
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

void TestItemDialogs::editInWord_data()
{
    QTest::addColumn<bool>("ok");
    QTest::newRow("ok") << true;
    QTest::newRow("cancel") << false;
}

void TestItemDialogs::editInWord()
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

void TestItemDialogs::modifyNoteGoesToTheWordProcessorWhenChosen_data()
{
    QTest::addColumn<quint16>("noteType");
    QTest::addColumn<bool>("external");
    QTest::newRow("rich text, option on") << quint16(Document::RichText) << true;
    QTest::newRow("plain text keeps the note page") << quint16(Document::PlainText) << false;
}

void TestItemDialogs::modifyNoteGoesToTheWordProcessorWhenChosen()
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

void TestItemDialogs::deadItemLinksReportedAndDroppedOnStore()
{
    // Which links are dead is the core's rule: the page reports the count and OK stores the rest.
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *home = f.at({1});
    Item *alpha = f.at({0, 0});
    Item *beta = f.at({0, 1});
    home->setLinks({beta->linkText(), alpha->linkText()});
    Editing::deleteItem(*f.document(), alpha, &f.view()->clip());
    f.select(home);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(rowTexts(d), QStringList{QStringLiteral("Beta")});
        press(d);
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.shown.size(), 1);
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Exclamation);
    QCOMPARE(f.prompts.shown[0].text,
             QStringLiteral("1 item link(s) are no longer valid because they have been deleted.  These links will be "
                            "removed."));
    QCOMPARE(home->links(), QStringList{beta->linkText()});
}

void TestItemDialogs::addUrlRefusesEmptyText()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *alpha = f.at({0, 0});
    f.select(alpha);
    f.prompts.texts.append({QString(), QStringLiteral("http://example.org/seeds"),
                            QStringLiteral("mailto:ann@example.org"), QStringLiteral("+44 20 7946 0000")});
    f.prompts.dialogs.enqueue([](QDialog *d) {
        screenshot(d, QStringLiteral("item-properties-links-empty"));
        trigger(d, "actionAddUrl");
        trigger(d, "actionAddUrl");
        trigger(d, "actionAddPhone");
        screenshot(d, QStringLiteral("item-properties-links"));
        QCOMPARE(rowTexts(d),
                 (QStringList{QStringLiteral("http://example.org/seeds"), QStringLiteral("mailto:ann@example.org"),
                              QStringLiteral("+44 20 7946 0000")}));
        press(d);
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.textPrompts, (QStringList{QStringLiteral("Enter URL:"), QStringLiteral("Enter URL:"),
                                                 QStringLiteral("Enter a phone number:")}));
    QCOMPARE(f.prompts.textPrefills, (QStringList{QStringLiteral("http://"), QStringLiteral("http://"), QString()}));
    QCOMPARE(f.shownTexts(), QStringList{QStringLiteral("Please enter some text.")});
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Exclamation);
    QCOMPARE(alpha->links(),
             (QStringList{QStringLiteral("http://example.org/seeds"), QStringLiteral("mailto:ann@example.org"),
                          QStringLiteral("ph:+44 20 7946 0000")}));
}

void TestItemDialogs::fileLinksInsideTheDocumentsFolderAreRelative()
{
    // Which paths are relative is the core's rule; the page stores and follows them by it.
    ShellFixture f;
    QVERIFY(f.open(sample()));
    const QString chosen = f.dir.filePath(QStringLiteral("plans/shed.txt"));
    f.select(f.at({1}));
    f.prompts.fileNames.enqueue(chosen);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionAddFileLink");
        press(d);
    });
    f.run("actionLinks");
    QCOMPARE(f.at({1})->links(), QStringList{QStringLiteral("plans/shed.txt")});
    // Both forms lead to the same file.
    f.prompts.dialogs.enqueue([](QDialog *d) { page(d)->follow(0); });
    f.run("actionLinks");
    QCOMPARE(f.prompts.opened, QList<QUrl>{QUrl::fromLocalFile(chosen)});
}

void TestItemDialogs::itemLinkPickerRefusesTheListTitle()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *home = f.at({1});
    Item *beta = f.at({0, 1});
    f.select(home);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionAddItemLink");
        press(d);
    });
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        auto *picker = qobject_cast<ItemPickerDialog *>(d);
        QVERIFY(picker);
        press(d); // the root is current: refused, the picker stays open
        QVERIFY(d->isVisible());
        QVERIFY(picker->selectNode(beta));
        screenshot(d, QStringLiteral("item-picker"));
        press(d);
        QVERIFY(!d->isVisible());
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.dialogsRun, (QStringList{QStringLiteral("itemProperties"), QStringLiteral("itemPicker")}));
    QCOMPARE(f.shownTexts(), QStringList{QStringLiteral("List title cannot be linked. Please choose an item.")});
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Exclamation);
    QCOMPARE(home->links(), QStringList{beta->linkText()});
}

void TestItemDialogs::modifyAndDelete()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *home = f.at({1});
    Item *alpha = f.at({0, 0});
    Item *beta = f.at({0, 1});
    home->setLinks({QStringLiteral("ph:555 0100"), QStringLiteral("http://a.example"), alpha->linkText(),
                        QStringLiteral("notes.txt")});
    f.select(home);
    f.prompts.texts.append({QStringLiteral("555 0199"), QStringLiteral("http://b.example")});
    f.prompts.yesNo.append({false, true});
    f.prompts.dialogs.enqueue([](QDialog *d) {
        selectRow(d, 0);
        trigger(d, "actionModifyLink");
        selectRow(d, 1);
        trigger(d, "actionModifyLink");
        selectRow(d, 2);
        trigger(d, "actionModifyLink");
        selectRow(d, 3);
        trigger(d, "actionDeleteLink"); // No: kept
        trigger(d, "actionDeleteLink"); // Yes: gone
        press(d);
    });
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        auto *picker = qobject_cast<ItemPickerDialog *>(d);
        // The picker opens at the present target.
        QCOMPARE(picker->tree()->currentItem()->text(0), QStringLiteral("Alpha"));
        picker->selectNode(beta);
        press(d);
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.textPrompts,
             (QStringList{QStringLiteral("Enter a phone number:"), QStringLiteral("Enter URL:")}));
    QCOMPARE(f.prompts.textPrefills, (QStringList{QStringLiteral("555 0100"), QStringLiteral("http://a.example")}));
    QCOMPARE(f.shownTexts(), (QStringList{QStringLiteral("Are you sure to delete this link?"),
                                          QStringLiteral("Are you sure to delete this link?")}));
    QCOMPARE(home->links(),
             (QStringList{QStringLiteral("ph:555 0199"), QStringLiteral("http://b.example"), beta->linkText()}));

    // "All Links" asks once; No keeps every row.
    f.prompts.shown.clear();
    f.prompts.yesNo.append({false, true});
    f.prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionDeleteAllLinks");
        QCOMPARE(rowTexts(d).size(), 3);
        trigger(d, "actionDeleteAllLinks");
        QVERIFY(rowTexts(d).isEmpty());
        press(d);
    });
    f.run("actionLinks");
    QCOMPARE(f.shownTexts(), (QStringList{QStringLiteral("Are you sure to delete all links?"),
                                          QStringLiteral("Are you sure to delete all links?")}));
    QVERIFY(home->links().isEmpty());
}

void TestItemDialogs::followingALink()
{
    // The link's target is the core's rule; Return on a row opens it.
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.at({1})->setLinks({QStringLiteral("ph:555 0100")});
    f.select(f.at({1}));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QTreeWidget *list = page(d)->list();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Return);
        press(d, QDialogButtonBox::Cancel);
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.opened, QList<QUrl>{QUrl(QStringLiteral("tel:555 0100"))});
}

void TestItemDialogs::followingAnItemLinkSelectsItsTarget()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *home = f.at({1});
    Item *beta = f.at({0, 1});
    home->setLinks({QStringLiteral("http://a.example"), beta->linkText()});
    f.select(home);
    f.prompts.texts.append({QStringLiteral("http://new.example")});
    f.prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionAddUrl");
        page(d)->follow(1);
    });
    f.run("actionLinks");
    QVERIFY(f.prompts.opened.isEmpty());
    QCOMPARE(f.current(), beta);
    // Following closes the dialog as OK would: the added link is kept.
    QCOMPARE(home->links(), (QStringList{QStringLiteral("http://a.example"), beta->linkText(),
                                             QStringLiteral("http://new.example")}));
}

void TestItemDialogs::changingAValueTicksItsBox()
{
    ScriptedPrompts prompts;
    prompts.icons.enqueue(12);
    ApplyAttributesDialog dialog({QStringLiteral("Home"), QStringLiteral("Away")}, {}, &prompts);
    dialog.show();
    QCOMPARE(dialog.attributes().flags, 0u);

    auto *priority = child<QComboBox>(&dialog, "priority");
    priority->setFocus();
    QTest::keyClick(priority, Qt::Key_Down);
    QVERIFY(child<QCheckBox>(&dialog, "setPriority")->isChecked());

    QTest::keyClicks(child<QComboBox>(&dialog, "category")->lineEdit(), QStringLiteral("Garden"));
    QTest::mouseClick(child<QToolButton>(&dialog, "icon"), Qt::LeftButton);
    auto *colour = child<ColourCombo>(&dialog, "colour");
    QTest::keyClick(colour, Qt::Key_Down);
    auto *progress = child<QSpinBox>(&dialog, "progress");
    progress->selectAll();
    QTest::keyClicks(progress, QStringLiteral("5"));
    auto *italic = child<QComboBox>(&dialog, "italic");
    QTest::keyClick(italic, Qt::Key_Down);
    screenshot(&dialog, QStringLiteral("apply-attributes"));

    const AttributeSet set = dialog.attributes();
    QCOMPARE(set.flags, quint32(AttributeSet::Priority | AttributeSet::Category | AttributeSet::Icon |
                                AttributeSet::Colour | AttributeSet::Progress | AttributeSet::Italic));
    QCOMPARE(set.priority, quint16(11));
    QCOMPARE(set.category, QStringLiteral("Garden"));
    QCOMPARE(set.icon, quint16(12));
    QCOMPARE(set.colour, quint16(1));
    QCOMPARE(set.progress, quint16(5));
    QVERIFY(set.italic);
    QVERIFY(!set.allSubItems);

    // "0%" and "100%" set the progress and tick its box too.
    child<QCheckBox>(&dialog, "setProgress")->setChecked(false);
    QTest::mouseClick(child<QAbstractButton>(&dialog, "progress100"), Qt::LeftButton);
    QVERIFY(dialog.attributes().has(AttributeSet::Progress));
    QCOMPARE(dialog.attributes().progress, quint16(100));
}

void TestItemDialogs::appliedToChildrenOrToEverythingBelow_data()
{
    QTest::addColumn<bool>("allSubItems");
    QTest::addColumn<bool>("ok");
    QTest::newRow("children") << false << true;
    QTest::newRow("all sub-items") << true << true;
    QTest::newRow("cancelled") << true << false;
}

void TestItemDialogs::appliedToChildrenOrToEverythingBelow()
{
    QFETCH(bool, allSubItems);
    QFETCH(bool, ok);
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *work = f.at({0});
    f.select(work);
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        child<QComboBox>(d, "category")->setEditText(QStringLiteral("Garden"));
        child<QSpinBox>(d, "progress")->setValue(100);
        child<QCheckBox>(d, "allSubItems")->setChecked(allSubItems);
        press(d, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    });
    f.run("actionApplyAttributes");
    const QString changed = ok ? QStringLiteral("Garden") : QString();
    QCOMPARE(f.at({0, 0})->category(), changed);
    QCOMPARE(f.at({0, 1})->category(), changed);
    QCOMPARE(f.at({0, 0})->progress(), quint16(ok ? 100 : 0));
    QCOMPARE(f.at({0, 0, 0})->category(), allSubItems && ok ? QStringLiteral("Garden") : QString());
    // The item the command was given on keeps its own attributes.
    QCOMPARE(work->category(), QString());
    QCOMPARE(work->progress(), quint16(0));
    QCOMPARE(f.document()->categories, ok ? QStringList{QStringLiteral("Garden")} : QStringList());
}

void TestItemDialogs::addEditAndDelete()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    // Opening a document made the missing template file, empty.
    QVERIFY(QFile::exists(templatePath(f)));

    f.prompts.dialogs.enqueue([](QDialog *d) {
        QTest::mouseClick(child<QPushButton>(d, "newTemplate"), Qt::LeftButton);
        screenshot(d, QStringLiteral("item-templates"));
        QCOMPARE(child<QTreeWidget>(d, "templateList")->topLevelItem(0)->text(0), QStringLiteral("Weekly"));
        // A new template whose properties are cancelled is not kept.
        QTest::mouseClick(child<QPushButton>(d, "newTemplate"), Qt::LeftButton);
        QCOMPARE(child<QTreeWidget>(d, "templateList")->topLevelItemCount(), 1);
        QTest::mouseClick(child<QPushButton>(d, "editTemplate"), Qt::LeftButton);
        QTest::mouseClick(child<QPushButton>(d, "deleteTemplate"), Qt::LeftButton); // No
        QCOMPARE(child<QTreeWidget>(d, "templateList")->topLevelItemCount(), 1);
        press(d, QDialogButtonBox::Close);
    });
    // The name dialog refuses an empty name.
    f.prompts.dialogs.enqueue([](QDialog *d) {
        screenshot(d, QStringLiteral("template-name"));
        QCOMPARE(child<QComboBox>(d, "templateNoteType")->currentIndex(), int(Document::PlainText));
        press(d);
        QVERIFY(d->isVisible());
        QTest::keyClicks(child<QLineEdit>(d, "templateNameEdit"), QStringLiteral("Weekly report for the whole team!"));
        QCOMPARE(child<QLineEdit>(d, "templateNameEdit")->text().size(), 32);
        child<QLineEdit>(d, "templateNameEdit")->setText(QStringLiteral("Weekly"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) {
        // A template has no links.
        QVERIFY(!child<QTabWidget>(d, "pages")->isTabVisible(2));
        child<QLineEdit>(d, "name")->setText(QStringLiteral("Report"));
        child<QComboBox>(d, "priority")->setCurrentIndex(2);
        child<QComboBox>(d, "category")->setEditText(QStringLiteral("Reports"));
        QTest::keyClicks(d->findChild<QPlainTextEdit *>(QStringLiteral("plainNoteEditor")), QStringLiteral("agenda"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) {
        child<QLineEdit>(d, "templateNameEdit")->setText(QStringLiteral("Other"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) { press(d, QDialogButtonBox::Cancel); });
    // Edit: the note type stays, the priority changes.
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QVERIFY(!child<QComboBox>(d, "templateNoteType")->isEnabled());
        QCOMPARE(child<QLineEdit>(d, "templateNameEdit")->text(), QStringLiteral("Weekly"));
        press(d);
    });
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QComboBox>(d, "category")->currentText(), QStringLiteral("Reports"));
        child<QComboBox>(d, "priority")->setCurrentIndex(4);
        press(d);
    });
    f.prompts.yesNo.enqueue(false);
    f.run("actionItemTemplates");
    QCOMPARE(f.shownTexts(), (QStringList{QStringLiteral("Please enter a name."),
                                          QStringLiteral("Are you sure to delete template 'Weekly'?")}));
    // The template's category is not one of the document's.
    QVERIFY(f.document()->categories.isEmpty());

    TemplateFile stored;
    QVERIFY(stored.load(templatePath(f)));
    QCOMPARE(stored.count(), 1);
    const Template *weekly = stored.at(0);
    QCOMPARE(weekly->templateName(), QStringLiteral("Weekly"));
    QCOMPARE(weekly->templateNoteType(), quint16(Document::PlainText));
    QCOMPARE(weekly->name(), QStringLiteral("Report"));
    QCOMPARE(weekly->priority(), quint16(5));
    QCOMPARE(weekly->category(), QStringLiteral("Reports"));
    QCOMPARE(NoteText::plainText(weekly->note(), Document::PlainText), QStringLiteral("agenda"));

    // Yes deletes, and the file follows.
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QTest::mouseClick(child<QPushButton>(d, "deleteTemplate"), Qt::LeftButton);
        QCOMPARE(child<QTreeWidget>(d, "templateList")->topLevelItemCount(), 0);
        press(d, QDialogButtonBox::Close);
    });
    f.run("actionItemTemplates");
    QVERIFY(stored.load(templatePath(f)));
    QCOMPARE(stored.count(), 0);
}

void TestItemDialogs::newItemsFromTemplates()
{
    // Which templates the menu offers is the template file's rule; the menu shows them and runs one.
    ShellFixture f;
    {
        TemplateFile file;
        auto rich = std::make_unique<Template>(Document::RichText);
        rich->setTemplateName(QStringLiteral("Rich one"));
        file.add(std::move(rich));
        for (int i = 1; i <= 2; ++i) {
            auto entry = std::make_unique<Template>(Document::PlainText);
            entry->setTemplateName(QStringLiteral("Plain %1").arg(i));
            entry->setName(QStringLiteral("Task %1").arg(i));
            entry->setPriority(quint16(i));
            file.add(std::move(entry));
        }
        QVERIFY(file.save(templatePath(f)));
    }
    QVERIFY(f.open(sample()));
    f.window->resize(1180, 420);
    f.window->show();
    screenshot(f.window.get(), QStringLiteral("main-window"));
    QMenu *menu = f.command("actionNew")->menu<QMenu *>();
    QVERIFY(menu);
    Q_EMIT menu->aboutToShow();
    QStringList offered;
    for (QAction *action : menu->actions()) {
        if (!action->isSeparator())
            offered.append(action->text());
    }
    QCOMPARE(offered,
             (QStringList{QStringLiteral("New Item..."), QStringLiteral("Plain 1"), QStringLiteral("Plain 2")}));

    f.select(f.at({0}));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QComboBox>(d, "template")->currentText(), QStringLiteral("Plain 2"));
        screenshot(d, QStringLiteral("new-item-from-template"));
        press(d);
    });
    menu->findChild<QAction *>(QStringLiteral("action40127"))->trigger(); // "Plain 2"
    auto *made = static_cast<Item *>(f.current());
    QCOMPARE(made->name(), QStringLiteral("Task 2"));
    QCOMPARE(made->priority(), quint16(2));
    QCOMPARE(made->parent(), f.document()->root());

    // The blank entry starts from nothing.
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QComboBox>(d, "template")->currentIndex(), 0);
        QCOMPARE(child<QLineEdit>(d, "name")->text(), QString());
        press(d, QDialogButtonBox::Cancel);
    });
    menu->findChild<QAction *>(QStringLiteral("action40124"))->trigger();
    QCOMPARE(f.prompts.dialogsRun.size(), 2);

    // Back at the document list, "New" makes documents and has no menu.
    f.window->closeDocument();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!f.command("actionNewDocument")->menu<QMenu *>());
}

QTEST_MAIN(TestItemDialogs)
#include "tst_itemdialogs.moc"
