#include "model/item.h"
#include "support/shellfixture.h"
#include "views/viewrows.h"

#include <QMenu>
#include <QTest>

namespace {

QStringList namesWhere(const QHash<QString, ScriptedPrompts::ActionState> &states, bool checked)
{
    QStringList names;
    for (auto it = states.cbegin(); it != states.cend(); ++it)
        if (checked ? it->checked : it->enabled)
            names.append(it.key());
    names.sort();
    return names;
}

QStringList range(const char *pattern, int first, int last)
{
    QStringList names;
    for (int i = first; i <= last; ++i)
        names.append(QString::fromLatin1(pattern).arg(i));
    return names;
}

// Root > Task (priority 5, colour 2, progress bar, due, with a child).
std::unique_ptr<Document> sample()
{
    auto doc = std::make_unique<Document>();
    auto *task = new Item(QStringLiteral("Task"));
    task->setPriority(5);
    task->setColour(2);
    task->setStatusType(Item::ProgressBar);
    task->appendChild(new Item(QStringLiteral("child")));
    doc->root()->appendChild(task);
    return doc;
}

} // namespace

// The item menu's greying and marks in the grouped views, and its layout.
class TestItemMenu : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void grouped_data();
    void grouped();
    void twentyPrioritiesInTwoColumns();
};

void TestItemMenu::grouped_data()
{
    QTest::addColumn<bool>("heading");
    QTest::addColumn<QStringList>("enabled");
    QTest::addColumn<QStringList>("checked");

    // A heading: only the view's direction can change; the keys show the view's order.
    QTest::newRow("heading") << true << QStringList{"actionAscending", "actionDescending"}
                             << QStringList{"actionDescending", "actionOrderByTaskDueDate"};
    // An item: no apply attributes, ordering, move, copy or paste.
    QStringList item = range("actionPriority%1", 1, 20) + range("actionColour%1", 0, 35) +
                       QStringList{"actionRename",   "actionChangeIcon", "actionShowIcon",   "actionItalicStyle",
                                   "actionNoStatus", "actionCheckBox",   "actionProgressBar", "actionCreateCopy",
                                   "actionCreateTask", "actionCreateAppointment", "actionDeleteItem"};
    item.sort();
    QTest::newRow("item") << false << item
                          << QStringList{"actionColour2", "actionOrderManual", "actionPriority5", "actionProgressBar",
                                         "actionShowIcon"};
}

void TestItemMenu::grouped()
{
    QFETCH(bool, heading);
    QFETCH(QStringList, enabled);
    QFETCH(QStringList, checked);
    ShellFixture f;
    auto doc = sample();
    doc->viewMode = Document::ByDueDate;
    doc->viewOrder = 4;
    doc->viewAscending = false;
    QVERIFY(f.open(std::move(doc)));
    // A marked item never makes Paste available in a grouped view.
    f.view()->clip().markCopy(f.at({0, 0}));
    ViewRows *rows = f.view()->rows();
    QVERIFY(rows->isGrouped());
    f.view()->expandAll();
    int row = -1;
    for (int r = 0; r < rows->count() && row < 0; ++r) {
        const bool isHeading = rows->row(r).kind == ViewRows::Kind::Heading;
        if (heading ? isHeading : rows->row(r).node == f.at({0}))
            row = r;
    }
    QVERIFY(row >= 0);
    Q_EMIT f.view()->treePane()->contextMenuRequested(row, QPoint());
    QCOMPARE(namesWhere(f.prompts.lastMenu, false), enabled);
    QCOMPARE(namesWhere(f.prompts.lastMenu, true), checked);
}

void TestItemMenu::twentyPrioritiesInTwoColumns()
{
    ShellFixture f;
    QVERIFY(f.open(sample()));
    f.select(f.at({0}));
    QMenu *menu = nullptr;
    f.prompts.onMenu = [&menu](QMenu *shown) { menu = shown; };
    Q_EMIT f.view()->treePane()->contextMenuRequested(1, QPoint());
    QVERIFY(menu);
    auto *priority = menu->findChild<QMenu *>(QStringLiteral("menuPriority"));
    QVERIFY(priority);
    QList<QWidget *> buttons;
    for (int p = 1; p <= 20; ++p) {
        auto *action = priority->findChild<QAction *>(QStringLiteral("actionPriority%1").arg(p));
        QCOMPARE(action->text(), QString::number(p));
        QCOMPARE(action->associatedObjects().size(), 1); // its button in the grid
        buttons.append(qobject_cast<QWidget *>(action->associatedObjects().first()));
    }
    priority->adjustSize();
    // 1 to 10 down the first column, 11 to 20 down the second.
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(buttons[i + 10]->y(), buttons[i]->y());
        QVERIFY(buttons[i + 10]->x() > buttons[i]->x());
        if (i > 0)
            QVERIFY(buttons[i]->y() > buttons[i - 1]->y());
    }
}

QTEST_MAIN(TestItemMenu)
#include "tst_itemmenu.moc"
