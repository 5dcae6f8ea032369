#include "support/shellfixture.h"

#include "notes/notetext.h"
#include "storage/templatefile.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTreeWidget>

class TestTemplatesDialog : public QObject {
    Q_OBJECT

private:
    static QString templatePath(const ShellFixture &f)
    {
        return f.dir.filePath(QStringLiteral("QuillboxTemplates.qbt"));
    }

    static std::unique_ptr<Document> plainDocument()
    {
        auto document = std::make_unique<Document>();
        add(document->root(), QStringLiteral("Monday"));
        return document;
    }

private Q_SLOTS:
    void addEditAndDelete();
    void newItemsFromTemplates();
};

void TestTemplatesDialog::addEditAndDelete()
{
    ShellFixture f;
    QVERIFY(f.open(plainDocument()));
    // Opening a document made the missing template file, empty.
    QVERIFY(QFile::exists(templatePath(f)));

    f.prompts.dialogs.enqueue([](QDialog *d) {
        QTest::mouseClick(child<QPushButton>(d, "newTemplate"), Qt::LeftButton);
        screenshot(d, QStringLiteral("item-templates"));
        QCOMPARE(child<QTreeWidget>(d, "templateList")->topLevelItem(0)->text(0), QStringLiteral("Weekly"));
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

void TestTemplatesDialog::newItemsFromTemplates()
{
    ShellFixture f;
    {
        TemplateFile file;
        auto rich = std::make_unique<Template>(Document::RichText);
        rich->setTemplateName(QStringLiteral("Rich one"));
        file.add(std::move(rich));
        for (int i = 1; i <= 11; ++i) {
            auto entry = std::make_unique<Template>(Document::PlainText);
            entry->setTemplateName(QStringLiteral("Plain %1").arg(i));
            entry->setName(QStringLiteral("Task %1").arg(i));
            entry->setPriority(quint16(i));
            entry->setStatusType(Item::ProgressBar);
            entry->setNote(NoteText::toPlainNote(QStringLiteral("steps")));
            file.add(std::move(entry));
        }
        QVERIFY(file.save(templatePath(f)));
    }
    QVERIFY(f.open(plainDocument()));
    f.window->resize(1180, 420);
    f.window->show();
    screenshot(f.window.get(), QStringLiteral("main-window"));
    QAction *newAction = f.command("actionNew");
    QMenu *menu = newAction->menu<QMenu *>();
    QVERIFY(menu);
    Q_EMIT menu->aboutToShow();
    QStringList offered;
    for (QAction *action : menu->actions()) {
        if (!action->isSeparator())
            offered.append(action->text());
    }
    QStringList expected{QStringLiteral("New Item...")};
    for (int i = 1; i <= 10; ++i)
        expected.append(QStringLiteral("Plain %1").arg(i));
    QCOMPARE(offered, expected); // no rich-text template, no eleventh one
    QCOMPARE(menu->actions().at(2)->objectName(), QStringLiteral("action40126"));
    QVERIFY(!menu->findChild<QAction *>(QStringLiteral("action40125"))); // the rich-text template

    f.select(f.at({0}));
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(child<QComboBox>(d, "template")->currentText(), QStringLiteral("Plain 3"));
        screenshot(d, QStringLiteral("new-item-from-template"));
        press(d);
    });
    menu->actions().at(4)->trigger(); // "Plain 3"
    auto *made = static_cast<Item *>(f.current());
    QCOMPARE(made->name(), QStringLiteral("Task 3"));
    QCOMPARE(made->priority(), quint16(3));
    QCOMPARE(made->statusType(), quint16(Item::ProgressBar));
    QCOMPARE(NoteText::plainText(made->note(), Document::PlainText), QStringLiteral("steps"));
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

QTEST_MAIN(TestTemplatesDialog)
#include "tst_templatesdialog.moc"
