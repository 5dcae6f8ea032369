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

#include <QDateTimeEdit>

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
void click(QDialog *d, const char *button)
{
    QTest::mouseClick(child<QAbstractButton>(d, button), Qt::LeftButton);
}

} // namespace

// The dialogs of one item: its properties and links, "Apply Attributes" to its children, and the item templates.
class TestItemDialogs : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void generalAndDetailsPages()
    {
        auto f = sample();
        Item *home = f->at({1});
        home->setDueDate({2024, 3, 2, 5, 18, 30, 0, 0});
        f->prompts.icons.enqueue(42);
        f->prompts.dialogs.enqueue([](QDialog *d) {
            child<QLineEdit>(d, "name")->selectAll();
            QTest::keyClicks(child<QLineEdit>(d, "name"), QStringLiteral("Home two"));
            child<QComboBox>(d, "priority")->setCurrentIndex(2);
            child<QComboBox>(d, "category")->setEditText(QStringLiteral("Errands"));
            click(d, "icon");
            child<ColourCombo>(d, "colour")->setColour(18);
            child<QComboBox>(d, "statusType")->setCurrentIndex(2);
            child<QSpinBox>(d, "progress")->setValue(40);
            child<QCheckBox>(d, "italic")->setChecked(true);
            child<QCheckBox>(d, "showIcon")->setChecked(false);
            // A changed due date starts the day; the task time box takes seven characters.
            child<QDateEdit>(d, "dueDate")->setDate(QDate(2024, 3, 9));
            QTest::keyClicks(child<QLineEdit>(d, "taskTime"), QStringLiteral("1.5123456789"));
            child<QComboBox>(d, "taskTimeUnit")->setCurrentIndex(2);
            child<QCheckBox>(d, "hasReminder")->setChecked(true);
            child<QDateTimeEdit>(d, "reminder")->setDateTime(QDateTime(QDate(2024, 3, 4), QTime(8, 15)));
            press(d);
        });
        QVERIFY(f->run("actionModifyItem"));
        QCOMPARE(home->name(), QStringLiteral("Home two"));
        QCOMPARE(home->priority(), quint16(3)); // the list shows priority - 1
        QCOMPARE(home->category(), QStringLiteral("Errands"));
        QCOMPARE(home->image(), quint16(42));
        QCOMPARE(home->colour(), quint16(18));
        QCOMPARE(home->statusType(), quint16(Item::ProgressBar));
        QCOMPARE(home->progress(), quint16(40));
        QVERIFY(home->isItalic() && !home->showIcon());
        QCOMPARE(home->dueDate(), (SystemTime{2024, 3, 6, 9, 0, 0, 0, 0}));
        QCOMPARE(home->taskTime(), QStringLiteral("1.51234"));
        QCOMPARE(home->taskTimeType(), quint16(2));
        // A reminder set here is pending: its seconds field is 1.
        QCOMPARE(home->reminderTime(), (SystemTime{2024, 3, 1, 4, 8, 15, 1, 0}));
    }

    void wordProcessor()
    {
        // From the note page, OK or cancelled when done; or straight from Modify Note, by the option.
        for (const auto &[option, ok] : {std::pair{false, true}, std::pair{false, false}, std::pair{true, true}}) {
            auto f = sample(Document::RichText, RtfWriter::fromPlainText(QStringLiteral("draft")));
            f->window->settings().setFlag(Settings::ExternalRichEditor, option);
            QString exchangeFile;
            f->prompts.whenOpened = [&](const QUrl &url) {
                exchangeFile = url.toLocalFile();
                QFile file(exchangeFile);
                QVERIFY(file.open(QIODevice::ReadWrite));
                QCOMPARE(RtfReader::plainText(file.readAll()), QStringLiteral("draft"));
                file.resize(0);
                file.write("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\\f0 final \\b text\\b0\\par}");
            };
            f->prompts.okCancel.enqueue(ok);
            f->prompts.dialogs.enqueue([](QDialog *d) {
                QCOMPARE(child<QTabWidget>(d, "pages")->currentIndex(), int(ItemPropertiesDialog::NotePage));
                click(d, "editInWord");
                press(d);
            });
            QVERIFY(f->run("actionModifyNote"));
            QCOMPARE(f->prompts.dialogsRun.size(), option ? 0 : 1);
            QVERIFY(exchangeFile.endsWith(QLatin1String(".rtf")) && !QFile::exists(exchangeFile));
            QCOMPARE(
                f->shownTexts(),
                QStringList{"When finished editing and saving the note in Pocket Word, tap OK to update Quillbox."});
            QCOMPARE(f->view()->notePane()->plainText(), ok ? QStringLiteral("final text") : QStringLiteral("draft"));
        }
    }

    void linksPage()
    {
        // Add: an empty text is refused; a phone number gets its prefix; a file in the documents folder is relative.
        auto f = sample();
        Item *home = f->at({1});
        const QString shed = f->dir.filePath(QStringLiteral("plans/shed.txt"));
        f->prompts.fileNames << shed;
        f->prompts.texts.append({QString(), "http://example.org/seeds", "555 0100", "555 0199"});
        f->prompts.yesNo << false << true;
        f->prompts.dialogs.enqueue([](QDialog *d) {
            for (const char *action : {"actionAddUrl", "actionAddPhone", "actionAddFileLink"})
                trigger(d, action);
            // Modify opens a link's box with its text; Delete asks, No keeps it; Return on a row follows it.
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
        QCOMPARE(f->prompts.textPrompts, (QStringList{"Enter URL:", "Enter a phone number:", "Enter a phone number:"}));
        QCOMPARE(f->prompts.textPrefills, (QStringList{"http://", "", "555 0100"}));
        QCOMPARE(f->shownTexts(),
                 (QStringList{"Please enter some text.", Messages::AskDeleteLink, Messages::AskDeleteLink}));
        QCOMPARE(f->prompts.opened, (QList<QUrl>{QUrl("tel:555 0199"), QUrl::fromLocalFile(shed)}));
        QCOMPARE(home->links(), (QStringList{"ph:555 0199", "plans/shed.txt"}));
    }

    void itemLinks()
    {
        // Which links are dead is the core's rule: the page reports the count and OK stores the rest.
        auto f = sample();
        Item *home = f->at({1});
        home->setLinks({f->at({0, 0})->linkText(), f->at({0, 2})->linkText()});
        Editing::deleteItem(*f->document(), f->at({0, 2}), &f->view()->clip());
        f->prompts.dialogs.enqueue([](QDialog *d) {
            trigger(d, "actionAddItemLink");
            selectRow(d, 0);
            trigger(d, "actionModifyLink");
            page(d)->follow(1);
        });
        // The picker refuses the list title; modifying opens it at the present target.
        f->prompts.dialogs.enqueue([&](QDialog *d) {
            press(d);
            QVERIFY(qobject_cast<ItemPickerDialog *>(d)->selectNode(f->at({0, 1})));
            press(d);
        });
        f->prompts.dialogs.enqueue([&](QDialog *d) {
            QCOMPARE(qobject_cast<ItemPickerDialog *>(d)->tree()->currentItem()->text(0), QStringLiteral("Alpha"));
            qobject_cast<ItemPickerDialog *>(d)->selectNode(f->at({0, 0, 0}));
            press(d);
        });
        QVERIFY(f->run("actionLinks"));
        QCOMPARE(f->shownTexts(), (QStringList{"1 item link(s) are no longer valid because they have been deleted.  "
                                               "These links will be removed.",
                                               "List title cannot be linked. Please choose an item."}));
        // Following an item link selects its target and closes the dialog as OK would.
        QCOMPARE(f->current(), f->at({0, 1}));
        QCOMPARE(home->links(), (QStringList{f->at({0, 0, 0})->linkText(), f->at({0, 1})->linkText()}));
    }

    void applyAttributes()
    {
        // Changing a value ticks its box; the command applies them to the children, or to everything below.
        auto f = sample();
        f->select(f->at({0}));
        f->prompts.icons.enqueue(12);
        f->prompts.dialogs.enqueue([](QDialog *d) {
            QTest::keyClick(child<QComboBox>(d, "priority"), Qt::Key_Down);
            QTest::keyClicks(child<QComboBox>(d, "category")->lineEdit(), QStringLiteral("Deep"));
            click(d, "icon");
            QTest::keyClick(child<ColourCombo>(d, "colour"), Qt::Key_Down);
            click(d, "progress100");
            QTest::keyClick(child<QComboBox>(d, "italic"), Qt::Key_Down);
            child<QCheckBox>(d, "allSubItems")->setChecked(true);
            press(d);
        });
        f->prompts.dialogs.enqueue([](QDialog *d) {
            child<QComboBox>(d, "category")->setEditText(QStringLiteral("Garden"));
            press(d);
        });
        QVERIFY(f->run("actionApplyAttributes"));
        QVERIFY(f->run("actionApplyAttributes"));
        const Item *sketch = f->at({0, 0, 0});
        QCOMPARE(sketch->priority(), quint16(11));
        QCOMPARE(sketch->category(), QStringLiteral("Deep"));
        QCOMPARE(sketch->image(), quint16(12));
        QCOMPARE(sketch->colour(), quint16(1));
        QCOMPARE(sketch->progress(), quint16(100));
        QVERIFY(sketch->isItalic());
        QCOMPARE(f->at({0, 1})->category(), QStringLiteral("Garden"));
        QCOMPARE(f->at({0})->category(), QString()); // the item itself keeps its own
        QCOMPARE(f->document()->categories, (QStringList{"Deep", "Garden"}));
    }

    void templates()
    {
        // A new template: a name (an empty one refused), then the item's properties; the New menu offers it.
        auto f = sample();
        QVERIFY(QFile::exists(f->dir.filePath(QStringLiteral("QuillboxTemplates.qbt")))); // made on opening
        f->prompts.dialogs.enqueue([](QDialog *d) {
            click(d, "newTemplate");
            click(d, "deleteTemplate"); // No
            QCOMPARE(child<QTreeWidget>(d, "templateList")->topLevelItemCount(), 1);
        });
        f->prompts.dialogs.enqueue([](QDialog *d) {
            press(d);
            QTest::keyClicks(child<QLineEdit>(d, "templateNameEdit"), QStringLiteral("Weekly"));
            press(d);
        });
        f->prompts.dialogs.enqueue([](QDialog *d) {
            QVERIFY(!child<QTabWidget>(d, "pages")->isTabVisible(2)); // a template has no links
            child<QLineEdit>(d, "name")->setText(QStringLiteral("Report"));
            child<QComboBox>(d, "priority")->setCurrentIndex(4);
            child<QComboBox>(d, "category")->setEditText(QStringLiteral("Reports"));
            QTest::keyClicks(child<QPlainTextEdit>(d, "plainNoteEditor"), QStringLiteral("agenda"));
            press(d);
        });
        f->prompts.yesNo.enqueue(false);
        QVERIFY(f->run("actionItemTemplates"));
        QCOMPARE(f->shownTexts(), (QStringList{"Please enter a name.", "Are you sure to delete template 'Weekly'?"}));
        QVERIFY(f->document()->categories.isEmpty()); // the template's category is not one of the document's
        QMenu *menu = f->command("actionNew")->menu<QMenu *>();
        Q_EMIT menu->aboutToShow();
        f->prompts.dialogs.enqueue([](QDialog *d) { press(d); });
        menu->actions().last()->trigger();
        auto *made = static_cast<Item *>(f->current());
        QCOMPARE(made->name(), QStringLiteral("Report"));
        QCOMPARE(made->priority(), quint16(5));
        QCOMPARE(made->category(), QStringLiteral("Reports"));
        QCOMPARE(NoteText::plainText(made->note(), Document::PlainText), QStringLiteral("agenda"));
    }
};

QTEST_MAIN(TestItemDialogs)
#include "tst_itemdialogs.moc"
