#include "support/shellfixture.h"

#include "model/editing.h"
#include "shell/dialogs/itempickerdialog.h"
#include "shell/dialogs/itempropertiesdialog.h"
#include "shell/dialogs/linkspage.h"
#include "shell/widgets/nodetree.h"

#include <QAction>
#include <QTreeWidget>
#include <QUrl>

class TestLinksPage : public QObject {
    Q_OBJECT

private:
    // Root > Projects (Garden, Kitchen) > Contacts
    std::unique_ptr<Document> sample()
    {
        auto document = std::make_unique<Document>();
        Item *projects = add(document->root(), QStringLiteral("Projects"));
        add(projects, QStringLiteral("Garden"));
        add(projects, QStringLiteral("Kitchen"));
        add(document->root(), QStringLiteral("Contacts"));
        return document;
    }

    static LinksPage *page(QDialog *d) { return d->findChild<LinksPage *>(); }
    static QStringList rowTexts(QDialog *d)
    {
        QStringList texts;
        QTreeWidget *list = page(d)->list();
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            texts.append(list->topLevelItem(i)->text(0));
        return texts;
    }
    static void trigger(QDialog *d, const char *action) { page(d)->action(QString::fromLatin1(action))->trigger(); }
    static void selectRow(QDialog *d, int row) { page(d)->list()->setCurrentItem(page(d)->list()->topLevelItem(row)); }

private Q_SLOTS:
    void deadItemLinksReportedAndDroppedOnStore();
    void addUrlRefusesEmptyText();
    void fileLinksInsideTheDocumentsFolderAreRelative();
    void itemLinkPickerRefusesTheListTitle();
    void modifyAndDelete();
    void followingALink();
    void followingAnItemLinkSelectsItsTarget();
};

void TestLinksPage::deadItemLinksReportedAndDroppedOnStore()
{
    // Which links are dead is the core's rule: the page reports the count and OK stores the rest.
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *contacts = f.at({1});
    Item *garden = f.at({0, 0});
    Item *kitchen = f.at({0, 1});
    contacts->setLinks({kitchen->linkText(), garden->linkText()});
    Editing::deleteItem(*f.document(), garden, &f.view()->clip());
    f.select(contacts);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        QCOMPARE(rowTexts(d), QStringList{QStringLiteral("Kitchen")});
        press(d);
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.shown.size(), 1);
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Exclamation);
    QCOMPARE(f.prompts.shown[0].text,
             QStringLiteral("1 item link(s) are no longer valid because they have been deleted.  These links will be "
                            "removed."));
    QCOMPARE(contacts->links(), QStringList{kitchen->linkText()});
}

void TestLinksPage::addUrlRefusesEmptyText()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *garden = f.at({0, 0});
    f.select(garden);
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
    QCOMPARE(garden->links(),
             (QStringList{QStringLiteral("http://example.org/seeds"), QStringLiteral("mailto:ann@example.org"),
                          QStringLiteral("ph:+44 20 7946 0000")}));
}

void TestLinksPage::fileLinksInsideTheDocumentsFolderAreRelative()
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

void TestLinksPage::itemLinkPickerRefusesTheListTitle()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *contacts = f.at({1});
    Item *kitchen = f.at({0, 1});
    f.select(contacts);
    f.prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionAddItemLink");
        press(d);
    });
    f.prompts.dialogs.enqueue([&](QDialog *d) {
        auto *picker = qobject_cast<ItemPickerDialog *>(d);
        QVERIFY(picker);
        press(d); // the root is current: refused, the picker stays open
        QVERIFY(d->isVisible());
        QVERIFY(picker->selectNode(kitchen));
        screenshot(d, QStringLiteral("item-picker"));
        press(d);
        QVERIFY(!d->isVisible());
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.dialogsRun, (QStringList{QStringLiteral("itemProperties"), QStringLiteral("itemPicker")}));
    QCOMPARE(f.shownTexts(), QStringList{QStringLiteral("List title cannot be linked. Please choose an item.")});
    QCOMPARE(f.prompts.shown[0].icon, Prompts::Icon::Exclamation);
    QCOMPARE(contacts->links(), QStringList{kitchen->linkText()});
}

void TestLinksPage::modifyAndDelete()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *contacts = f.at({1});
    Item *garden = f.at({0, 0});
    Item *kitchen = f.at({0, 1});
    contacts->setLinks({QStringLiteral("ph:555 0100"), QStringLiteral("http://a.example"), garden->linkText(),
                        QStringLiteral("notes.txt")});
    f.select(contacts);
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
        QCOMPARE(picker->tree()->currentItem()->text(0), QStringLiteral("Garden"));
        picker->selectNode(kitchen);
        press(d);
    });
    f.run("actionLinks");
    QCOMPARE(f.prompts.textPrompts,
             (QStringList{QStringLiteral("Enter a phone number:"), QStringLiteral("Enter URL:")}));
    QCOMPARE(f.prompts.textPrefills, (QStringList{QStringLiteral("555 0100"), QStringLiteral("http://a.example")}));
    QCOMPARE(f.shownTexts(), (QStringList{QStringLiteral("Are you sure to delete this link?"),
                                          QStringLiteral("Are you sure to delete this link?")}));
    QCOMPARE(contacts->links(),
             (QStringList{QStringLiteral("ph:555 0199"), QStringLiteral("http://b.example"), kitchen->linkText()}));

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
    QVERIFY(contacts->links().isEmpty());
}

void TestLinksPage::followingALink()
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

void TestLinksPage::followingAnItemLinkSelectsItsTarget()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *contacts = f.at({1});
    Item *kitchen = f.at({0, 1});
    contacts->setLinks({QStringLiteral("http://a.example"), kitchen->linkText()});
    f.select(contacts);
    f.prompts.texts.append({QStringLiteral("http://new.example")});
    f.prompts.dialogs.enqueue([](QDialog *d) {
        trigger(d, "actionAddUrl");
        page(d)->follow(1);
    });
    f.run("actionLinks");
    QVERIFY(f.prompts.opened.isEmpty());
    QCOMPARE(f.current(), kitchen);
    // Following closes the dialog as OK would: the added link is kept.
    QCOMPARE(contacts->links(), (QStringList{QStringLiteral("http://a.example"), kitchen->linkText(),
                                             QStringLiteral("http://new.example")}));
}

QTEST_MAIN(TestLinksPage)
#include "tst_linkspage.moc"
