#include "support/shellfixture.h"

#include "model/editing.h"
#include "noteeditor/notepane.h"
#include "notes/notetext.h"
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"
#include "platform/messages.h"
#include "shell/dialogs/applyattributesdialog.h"
#include "shell/dialogs/itempickerdialog.h"
#include "shell/dialogs/itempropertiesdialog.h"
#include "shell/dialogs/linkspage.h"
#include "shell/widgets/colourcombo.h"
#include "shell/widgets/nodetree.h"
#include "storage/template.h"
#include "storage/templatefile.h"

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
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>

namespace {

// Root > Work (Alpha (Sketch), Beta, Gamma), Home; Home is current.
std::unique_ptr<ShellFixture> sample(quint16 noteType = Document::PlainText, const QByteArray &homeNote = {})
{
    auto f = std::make_unique<ShellFixture>();
    auto document = std::make_unique<Document>();
    document->noteType = noteType;
    Item *work = add(document->root(), QStringLiteral("Work"));
    add(add(work, QStringLiteral("Alpha")), QStringLiteral("Sketch"));
    add(work, QStringLiteral("Beta"));
    add(work, QStringLiteral("Gamma"));
    add(document->root(), QStringLiteral("Home"))->setNote(homeNote);
    if (!f->open(std::move(document)))
        return nullptr;
    f->select(f->at({1}));
    return f;
}

LinksPage *page(QDialog *d)
{
    return d->findChild<LinksPage *>();
}
void trigger(QDialog *d, const char *action)
{
    page(d)->action(QString::fromLatin1(action))->trigger();
}
void selectRow(QDialog *d, int row)
{
    page(d)->list()->setCurrentItem(page(d)->list()->topLevelItem(row));
}

} // namespace

// The dialogs of one item: its properties and links, "Apply Attributes" to its children, and the item templates.
class TestItemDialogs : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void generalPage();
    void detailsPage_data();
    void detailsPage();
    void newItemGoesWhereAsked_data();
    void newItemGoesWhereAsked();
    void notePage();
    void wordProcessor_data();
    void wordProcessor();
    void linksPage();
    void itemLinks();
    void applyAttributes();
    void templates();
};

void TestItemDialogs::generalPage()
{
    auto f = sample();
    Item *beta = f->at({0, 1});
    f->select(beta);
    f->prompts.icons.enqueue(42);
    f->prompts.dialogs.enqueue([](QDialog *d) {
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
    QVERIFY(f->run("actionModifyItem"));
    QCOMPARE(f->prompts.dialogsRun, QStringList{"itemProperties"});
    QCOMPARE(beta->name(), QStringLiteral("Beta two"));
    QCOMPARE(beta->priority(), quint16(3)); // the list shows priority - 1
    QCOMPARE(beta->category(), QStringLiteral("Errands"));
    QCOMPARE(f->document()->categories, QStringList{"Errands"});
    QCOMPARE(beta->image(), quint16(42));
    QCOMPARE(beta->colour(), quint16(18));
    QCOMPARE(beta->statusType(), quint16(Item::ProgressBar));
    QCOMPARE(beta->progress(), quint16(40));
    QVERIFY(beta->isItalic() && !beta->showIcon());
}

void TestItemDialogs::detailsPage_data()
{
    QTest::addColumn<SystemTime>("storedDue");
    QTest::addColumn<QDate>("dueDate"); // invalid: the box unticked
    QTest::addColumn<SystemTime>("expectedDue");
    QTest::addColumn<QDateTime>("reminder");
    QTest::addColumn<SystemTime>("expectedReminder");

    const SystemTime none;
    // 2024-03-05 was a Tuesday (day of week 2).
    const SystemTime march5{2024, 3, 2, 5, 0, 0, 0, 0};
    const SystemTime march5Evening{2024, 3, 2, 5, 18, 30, 0, 0};
    const SystemTime march9{2024, 3, 6, 9, 0, 0, 0, 0};
    const QDateTime noReminder;
    QTest::newRow("new due date") << none << QDate(2024, 3, 5) << march5 << noReminder << none;
    QTest::newRow("changed date starts the day") << march5Evening << QDate(2024, 3, 9) << march9 << noReminder << none;
    QTest::newRow("untouched date keeps its time")
        << march5Evening << QDate(2024, 3, 5) << march5Evening << noReminder << none;
    // A reminder set here is pending: its seconds field is 1.
    QTest::newRow("cleared, with a reminder") << march5 << QDate() << none << QDateTime(QDate(2024, 3, 4), QTime(8, 15))
                                              << SystemTime{2024, 3, 1, 4, 8, 15, 1, 0};
}

void TestItemDialogs::detailsPage()
{
    QFETCH(SystemTime, storedDue);
    QFETCH(QDate, dueDate);
    QFETCH(SystemTime, expectedDue);
    QFETCH(QDateTime, reminder);
    QFETCH(SystemTime, expectedReminder);
    auto f = sample();
    Item *home = f->at({1});
    home->setDueDate(storedDue);
    f->prompts.dialogs.enqueue([&](QDialog *d) {
        child<QCheckBox>(d, "hasDueDate")->setChecked(dueDate.isValid());
        if (dueDate.isValid())
            child<QDateEdit>(d, "dueDate")->setDate(dueDate);
        // The task time box takes seven characters.
        QTest::keyClicks(child<QLineEdit>(d, "taskTime"), QStringLiteral("1.5123456789"));
        child<QComboBox>(d, "taskTimeUnit")->setCurrentIndex(2);
        child<QCheckBox>(d, "hasReminder")->setChecked(reminder.isValid());
        if (reminder.isValid())
            child<QDateTimeEdit>(d, "reminder")->setDateTime(reminder);
        press(d);
    });
    QVERIFY(f->run("actionModifyItem"));
    QCOMPARE(home->dueDate(), expectedDue);
    QCOMPARE(home->taskTime(), QStringLiteral("1.51234"));
    QCOMPARE(home->taskTimeType(), quint16(2));
    QCOMPARE(home->reminderTime(), expectedReminder);
}

void TestItemDialogs::newItemGoesWhereAsked_data()
{
    QTest::addColumn<QString>("button"); // empty: cancelled
    QTest::addColumn<QList<int>>("path");
    QTest::newRow("same") << "insertSame" << QList<int>{1};
    QTest::newRow("child") << "insertChild" << QList<int>{0, 0};
    QTest::newRow("top") << "insertTop" << QList<int>{2};
    QTest::newRow("cancelled") << "" << QList<int>{};
}

void TestItemDialogs::newItemGoesWhereAsked()
{
    QFETCH(QString, button);
    QFETCH(QList<int>, path);
    auto f = sample();
    f->select(f->at({0}));
    f->prompts.dialogs.enqueue([&](QDialog *d) {
        QTest::keyClicks(child<QLineEdit>(d, "name"), QStringLiteral("Fresh"));
        child<QComboBox>(d, "priority")->setCurrentIndex(0);
        if (!button.isEmpty())
            clickButton(d->findChild<QRadioButton *>(button));
        press(d, button.isEmpty() ? QDialogButtonBox::Cancel : QDialogButtonBox::Ok);
    });
    QVERIFY(f->run("actionNew"));
    QCOMPARE(f->find(QStringLiteral("Fresh")) != nullptr, !path.isEmpty());
    if (path.isEmpty())
        return;
    Item *fresh = path.size() == 1 ? f->at({path[0]}) : f->at({path[0], path[1]});
    QCOMPARE(fresh->name(), QStringLiteral("Fresh"));
    QCOMPARE(fresh->priority(), quint16(1));
    QCOMPARE(f->current(), fresh);
}

void TestItemDialogs::notePage()
{
    // Modify Note opens the properties on the note page; Cancel keeps the old note.
    auto f = sample(Document::PlainText, NoteText::toPlainNote(QStringLiteral("old")));
    for (bool ok : {false, true}) {
        f->prompts.dialogs.enqueue([ok](QDialog *d) {
            QCOMPARE(child<QTabWidget>(d, "pages")->currentIndex(), int(ItemPropertiesDialog::NotePage));
            auto *editor = child<QPlainTextEdit>(d, "plainNoteEditor");
            QCOMPARE(editor->toPlainText(), QStringLiteral("old"));
            editor->selectAll();
            QTest::keyClicks(editor, QStringLiteral("Buy milk"));
            press(d, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
        });
        QVERIFY(f->run("actionModifyNote"));
        QCOMPARE(f->view()->notePane()->plainText(), ok ? QStringLiteral("Buy milk") : QStringLiteral("old"));
    }
    QCOMPARE(NoteText::plainText(f->at({1})->note(), Document::PlainText), QStringLiteral("Buy milk"));
}

void TestItemDialogs::wordProcessor_data()
{
    QTest::addColumn<bool>("option"); // the word processor option: Modify Note goes straight to it
    QTest::addColumn<bool>("ok");     // the answer to "tap OK to update"
    QTest::newRow("from the note page, OK") << false << true;
    QTest::newRow("from the note page, cancelled") << false << false;
    QTest::newRow("straight, by the option") << true << true;
}

void TestItemDialogs::wordProcessor()
{
    QFETCH(bool, option);
    QFETCH(bool, ok);
    auto f = sample(Document::RichText, RtfWriter::fromPlainText(QStringLiteral("draft")));
    f->window->settings().setFlag(Settings::ExternalRichEditor, option);
    QString exchangeFile;
    QByteArray handedOver;
    f->prompts.whenOpened = [&](const QUrl &url) {
        exchangeFile = url.toLocalFile();
        QFile file(exchangeFile);
        QVERIFY(file.open(QIODevice::ReadWrite));
        handedOver = file.readAll();
        file.resize(0);
        file.write("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\\f0 final \\b text\\b0\\par}");
    };
    f->prompts.okCancel.enqueue(ok);
    f->prompts.dialogs.enqueue([](QDialog *d) {
        QTest::mouseClick(child<QPushButton>(d, "editInWord"), Qt::LeftButton);
        press(d);
    });
    QVERIFY(f->run("actionModifyNote"));
    QCOMPARE(f->prompts.dialogsRun.size(), option ? 0 : 1);
    QVERIFY(QFileInfo(exchangeFile).fileName().startsWith(QLatin1String("qlb")));
    QVERIFY(exchangeFile.endsWith(QLatin1String(".rtf")) && !QFile::exists(exchangeFile));
    QCOMPARE(RtfReader::plainText(handedOver), QStringLiteral("draft"));
    QCOMPARE(f->shownTexts(),
             QStringList{"When finished editing and saving the note in Pocket Word, tap OK to update Quillbox."});
    QCOMPARE(RtfReader::plainText(f->at({1})->note()), ok ? QStringLiteral("final text") : QStringLiteral("draft"));
    QCOMPARE(f->view()->notePane()->plainText(), RtfReader::plainText(f->at({1})->note()));
}

void TestItemDialogs::linksPage()
{
    // Add: an empty text is refused; a phone number is stored with its prefix.
    auto f = sample();
    Item *home = f->at({1});
    const QString shed = f->dir.filePath(QStringLiteral("plans/shed.txt"));
    f->prompts.fileNames.enqueue(shed);
    f->prompts.texts << ""
                     << "http://example.org/seeds"
                     << "555 0100";
    f->prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionAddUrl");
        trigger(d, "actionAddPhone");
        trigger(d, "actionAddFileLink");
        press(d);
    });
    QVERIFY(f->run("actionLinks"));
    QCOMPARE(f->prompts.textPrompts, (QStringList{"Enter URL:", "Enter a phone number:"}));
    QCOMPARE(f->prompts.textPrefills, (QStringList{"http://", ""}));
    QCOMPARE(f->shownTexts(), QStringList{"Please enter some text."});
    QCOMPARE(f->prompts.shown[0].icon, Prompts::Icon::Exclamation);
    // A file inside the documents folder is kept relative to it.
    QCOMPARE(home->links(), (QStringList{"http://example.org/seeds", "ph:555 0100", "plans/shed.txt"}));

    // Modify opens each link's box with its text; Delete asks, No keeps it; Return on a row follows it.
    f->prompts.shown.clear();
    f->prompts.textPrompts.clear();
    f->prompts.texts << "555 0199";
    f->prompts.yesNo << false << true << false << true;
    f->prompts.dialogs.enqueue([](QDialog *d) {
        selectRow(d, 1);
        trigger(d, "actionModifyLink");
        selectRow(d, 0);
        trigger(d, "actionDeleteLink");
        trigger(d, "actionDeleteLink");
        page(d)->list()->setFocus();
        QTest::keyClick(page(d)->list(), Qt::Key_Return);
        page(d)->follow(1);
        press(d);
    });
    QVERIFY(f->run("actionLinks"));
    QCOMPARE(f->prompts.textPrompts, QStringList{"Enter a phone number:"});
    QCOMPARE(f->prompts.opened, (QList<QUrl>{QUrl("tel:555 0199"), QUrl::fromLocalFile(shed)}));
    QCOMPARE(home->links(), (QStringList{"ph:555 0199", "plans/shed.txt"}));
    // "All Links" asks once; No keeps every row.
    f->prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionDeleteAllLinks");
        QCOMPARE(page(d)->list()->topLevelItemCount(), 2);
        trigger(d, "actionDeleteAllLinks");
        press(d);
    });
    QVERIFY(f->run("actionLinks"));
    QCOMPARE(f->shownTexts(), (QStringList{Messages::AskDeleteLink, Messages::AskDeleteLink,
                                           Messages::AskDeleteAllLinks, Messages::AskDeleteAllLinks}));
    QVERIFY(home->links().isEmpty());
}

void TestItemDialogs::itemLinks()
{
    // Which links are dead is the core's rule: the page reports the count and OK stores the rest.
    auto f = sample();
    Item *home = f->at({1});
    Item *alpha = f->at({0, 0});
    Item *beta = f->at({0, 1});
    Item *gamma = f->at({0, 2});
    home->setLinks({alpha->linkText(), gamma->linkText()});
    Editing::deleteItem(*f->document(), gamma, &f->view()->clip());
    f->prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(page(d)->list()->topLevelItemCount(), 1);
        trigger(d, "actionAddItemLink");
        selectRow(d, 0);
        trigger(d, "actionModifyLink");
        page(d)->follow(1);
    });
    // The picker refuses the list title; modifying opens it at the present target.
    f->prompts.dialogs.enqueue([&](QDialog *d) {
        press(d);
        QVERIFY(d->isVisible());
        QVERIFY(qobject_cast<ItemPickerDialog *>(d)->selectNode(f->at({0, 1})));
        press(d);
    });
    f->prompts.dialogs.enqueue([&](QDialog *d) {
        auto *picker = qobject_cast<ItemPickerDialog *>(d);
        QCOMPARE(picker->tree()->currentItem()->text(0), QStringLiteral("Alpha"));
        picker->selectNode(f->at({0, 0, 0}));
        press(d);
    });
    QVERIFY(f->run("actionLinks"));
    QCOMPARE(f->shownTexts(), (QStringList{"1 item link(s) are no longer valid because they have been deleted.  These "
                                           "links will be removed.",
                                           "List title cannot be linked. Please choose an item."}));
    // Following an item link selects its target and closes the dialog as OK would.
    QCOMPARE(f->current(), beta);
    QCOMPARE(home->links(), (QStringList{f->at({0, 0, 0})->linkText(), beta->linkText()}));
}

void TestItemDialogs::applyAttributes()
{
    // Changing a value ticks its box.
    ScriptedPrompts prompts;
    prompts.icons.enqueue(12);
    ApplyAttributesDialog dialog({QStringLiteral("Home"), QStringLiteral("Away")}, {}, &prompts);
    dialog.show();
    QTest::keyClick(child<QComboBox>(&dialog, "priority"), Qt::Key_Down);
    QTest::keyClicks(child<QComboBox>(&dialog, "category")->lineEdit(), QStringLiteral("Garden"));
    QTest::mouseClick(child<QToolButton>(&dialog, "icon"), Qt::LeftButton);
    QTest::keyClick(child<ColourCombo>(&dialog, "colour"), Qt::Key_Down);
    child<QSpinBox>(&dialog, "progress")->selectAll();
    QTest::keyClicks(child<QSpinBox>(&dialog, "progress"), QStringLiteral("5"));
    QTest::keyClick(child<QComboBox>(&dialog, "italic"), Qt::Key_Down);
    const AttributeSet set = dialog.attributes();
    QCOMPARE(set.flags, quint32(AttributeSet::Priority | AttributeSet::Category | AttributeSet::Icon |
                                AttributeSet::Colour | AttributeSet::Progress | AttributeSet::Italic));
    QCOMPARE(set.priority, quint16(11));
    QCOMPARE(set.category, QStringLiteral("Garden"));
    QCOMPARE(set.icon, quint16(12));
    QCOMPARE(set.colour, quint16(1));
    QCOMPARE(set.progress, quint16(5));
    QVERIFY(set.italic && !set.allSubItems);
    // "100%" sets the progress and ticks its box too.
    child<QCheckBox>(&dialog, "setProgress")->setChecked(false);
    QTest::mouseClick(child<QAbstractButton>(&dialog, "progress100"), Qt::LeftButton);
    QVERIFY(dialog.attributes().has(AttributeSet::Progress));
    QCOMPARE(dialog.attributes().progress, quint16(100));

    // The command applies them to the children, or to everything below; the item itself keeps its own.
    auto f = sample();
    Item *work = f->at({0});
    f->select(work);
    for (bool all : {true, false}) {
        f->prompts.dialogs.enqueue([all](QDialog *d) {
            child<QComboBox>(d, "category")->setEditText(all ? QStringLiteral("Deep") : QStringLiteral("Garden"));
            child<QCheckBox>(d, "allSubItems")->setChecked(all);
            press(d);
        });
        QVERIFY(f->run("actionApplyAttributes"));
    }
    QCOMPARE(f->at({0, 0, 0})->category(), QStringLiteral("Deep"));
    QCOMPARE(f->at({0, 1})->category(), QStringLiteral("Garden"));
    QCOMPARE(work->category(), QString());
    QCOMPARE(f->document()->categories, (QStringList{"Deep", "Garden"}));
}

void TestItemDialogs::templates()
{
    auto f = sample();
    const QString path = f->dir.filePath(QStringLiteral("QuillboxTemplates.qbt"));
    QVERIFY(QFile::exists(path)); // opening a document made the missing template file
    f->prompts.dialogs.enqueue([](QDialog *d) {
        auto *list = child<QTreeWidget>(d, "templateList");
        QTest::mouseClick(child<QPushButton>(d, "newTemplate"), Qt::LeftButton);
        // A new template whose properties are cancelled is not kept.
        QTest::mouseClick(child<QPushButton>(d, "newTemplate"), Qt::LeftButton);
        QCOMPARE(list->topLevelItemCount(), 1);
        QTest::mouseClick(child<QPushButton>(d, "editTemplate"), Qt::LeftButton);
        QTest::mouseClick(child<QPushButton>(d, "deleteTemplate"), Qt::LeftButton); // No
        QCOMPARE(list->topLevelItemCount(), 1);
        press(d, QDialogButtonBox::Close);
    });
    // The name dialog refuses an empty name and takes 32 characters.
    f->prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QComboBox>(d, "templateNoteType")->currentIndex(), int(Document::PlainText));
        press(d);
        QVERIFY(d->isVisible());
        QTest::keyClicks(child<QLineEdit>(d, "templateNameEdit"), QStringLiteral("Weekly report for the whole team!"));
        QCOMPARE(child<QLineEdit>(d, "templateNameEdit")->text().size(), 32);
        child<QLineEdit>(d, "templateNameEdit")->setText(QStringLiteral("Weekly"));
        press(d);
    });
    f->prompts.dialogs.enqueue([](QDialog *d) {
        QVERIFY(!child<QTabWidget>(d, "pages")->isTabVisible(2)); // a template has no links
        child<QLineEdit>(d, "name")->setText(QStringLiteral("Report"));
        child<QComboBox>(d, "category")->setEditText(QStringLiteral("Reports"));
        QTest::keyClicks(child<QPlainTextEdit>(d, "plainNoteEditor"), QStringLiteral("agenda"));
        press(d);
    });
    f->prompts.dialogs.enqueue([](QDialog *d) {
        child<QLineEdit>(d, "templateNameEdit")->setText(QStringLiteral("Other"));
        press(d);
    });
    f->prompts.dialogs.enqueue([](QDialog *d) { press(d, QDialogButtonBox::Cancel); });
    // Edit: the note type stays, the priority changes.
    f->prompts.dialogs.enqueue([](QDialog *d) {
        QVERIFY(!child<QComboBox>(d, "templateNoteType")->isEnabled());
        press(d);
    });
    f->prompts.dialogs.enqueue([](QDialog *d) {
        child<QComboBox>(d, "priority")->setCurrentIndex(4);
        press(d);
    });
    f->prompts.yesNo.enqueue(false);
    QVERIFY(f->run("actionItemTemplates"));
    QCOMPARE(f->shownTexts(), (QStringList{"Please enter a name.", "Are you sure to delete template 'Weekly'?"}));
    QVERIFY(f->document()->categories.isEmpty()); // the template's category is not one of the document's
    TemplateFile stored;
    QVERIFY(stored.load(path));
    QCOMPARE(stored.count(), 1);
    QCOMPARE(stored.at(0)->templateName(), QStringLiteral("Weekly"));
    QCOMPARE(stored.at(0)->name(), QStringLiteral("Report"));
    QCOMPARE(stored.at(0)->priority(), quint16(5));
    QCOMPARE(stored.at(0)->category(), QStringLiteral("Reports"));
    QCOMPARE(NoteText::plainText(stored.at(0)->note(), Document::PlainText), QStringLiteral("agenda"));

    // The New menu offers the templates of the document's note type; one fills the new item's dialog.
    QMenu *menu = f->command("actionNew")->menu<QMenu *>();
    Q_EMIT menu->aboutToShow();
    QCOMPARE(menu->actions().last()->text(), QStringLiteral("Weekly"));
    f->prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QComboBox>(d, "template")->currentText(), QStringLiteral("Weekly"));
        QCOMPARE(child<QComboBox>(d, "category")->currentText(), QStringLiteral("Reports"));
        press(d);
    });
    menu->actions().last()->trigger();
    auto *made = static_cast<Item *>(f->current());
    QCOMPARE(made->name(), QStringLiteral("Report"));
    QCOMPARE(made->priority(), quint16(5));
    QCOMPARE(NoteText::plainText(made->note(), Document::PlainText), QStringLiteral("agenda"));
    QVERIFY(made->links().isEmpty());

    // Yes deletes, and the file follows.
    f->prompts.dialogs.enqueue([](QDialog *d) {
        QTest::mouseClick(child<QPushButton>(d, "deleteTemplate"), Qt::LeftButton);
        press(d, QDialogButtonBox::Close);
    });
    QVERIFY(f->run("actionItemTemplates"));
    QVERIFY(stored.load(path));
    QCOMPARE(stored.count(), 0);
}

QTEST_MAIN(TestItemDialogs)
#include "tst_itemdialogs.moc"
