#include "model/item.h"
#include "shell/document/itemmenu.h"
#include "support/scriptedprompts.h"

#include <QMenu>
#include <QTest>

namespace {

QHash<QString, ScriptedPrompts::ActionState> statesOf(const ItemMenu::State &state)
{
    std::unique_ptr<QMenu> menu(ItemMenu::build(state, nullptr));
    return ScriptedPrompts::actionStates(menu.get());
}

QStringList enabledNames(const QHash<QString, ScriptedPrompts::ActionState> &states)
{
    QStringList names;
    for (auto it = states.cbegin(); it != states.cend(); ++it)
        if (it->enabled)
            names.append(it.key());
    names.sort();
    return names;
}

QStringList checkedNames(const QHash<QString, ScriptedPrompts::ActionState> &states)
{
    QStringList names;
    for (auto it = states.cbegin(); it != states.cend(); ++it)
        if (it->checked)
            names.append(it.key());
    names.sort();
    return names;
}

QStringList range(int first, int last)
{
    QStringList names;
    for (int id = first; id <= last; ++id)
        names.append(QStringLiteral("action%1").arg(id));
    return names;
}

} // namespace

// The item menu's greying and marks in the grouped views, where the
// document view cannot reach every row kind on its own.
class TestItemMenu : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void grouped_data();
    void grouped();
    void otherRowsGreyEverything();
    void twentyPrioritiesInTwoColumns();
};

void TestItemMenu::grouped_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("children");
    QTest::addColumn<QStringList>("enabled");
    QTest::addColumn<QStringList>("checked");

    // A heading: only the view's direction can change; the keys show the view's order.
    QTest::newRow("heading") << int(ItemMenu::RowKind::Title) << false
                             << QStringList{"actionAscending", "actionDescending"}
                             << QStringList{"actionOrderByTaskDueDate", "actionDescending"};
    // An item: no apply attributes, ordering, move, copy or paste.
    QStringList item =
        range(20100, 20119) + range(20200, 20235) +
        QStringList{"actionRename",     "actionChangeIcon",        "actionShowIcon",    "actionItalicStyle",
                    "actionNoStatus",   "actionCheckBox",          "actionProgressBar", "actionCreateCopy",
                    "actionCreateTask", "actionCreateAppointment", "actionDeleteItem"};
    item.sort();
    QTest::newRow("item") << int(ItemMenu::RowKind::Item) << true << item
                          << QStringList{"actionPriority5", "actionColour2", "actionShowIcon", "actionProgressBar",
                                         "actionOrderManual"};
}

void TestItemMenu::grouped()
{
    QFETCH(int, kind);
    QFETCH(bool, children);
    QFETCH(QStringList, enabled);
    QFETCH(QStringList, checked);
    Item node(QStringLiteral("Task"));
    node.setPriority(5);
    node.setColour(2);
    node.setStatusType(Item::ProgressBar);
    if (children)
        node.appendChild(new Item(QStringLiteral("child")));
    ItemMenu::State state;
    state.kind = ItemMenu::RowKind(kind);
    state.grouped = true;
    state.node = state.kind == ItemMenu::RowKind::Item ? &node : nullptr;
    state.viewOrder = 4;
    state.viewAscending = false;
    state.canPaste = true; // a marked item never makes Paste available in a grouped view
    const auto states = statesOf(state);
    QCOMPARE(enabledNames(states), enabled);
    QCOMPARE(checkedNames(states), checked);
}

void TestItemMenu::otherRowsGreyEverything()
{
    ItemMenu::State state;
    state.kind = ItemMenu::RowKind::Other;
    state.canPaste = true;
    const auto states = statesOf(state);
    QCOMPARE(states.size(), 80);
    QCOMPARE(enabledNames(states), QStringList());
}

void TestItemMenu::twentyPrioritiesInTwoColumns()
{
    Item node(QStringLiteral("Task"));
    ItemMenu::State state;
    state.node = &node;
    std::unique_ptr<QMenu> menu(ItemMenu::build(state, nullptr));
    auto *priority = menu->findChild<QMenu *>(QStringLiteral("menuPriority"));
    QVERIFY(priority);
    QList<QWidget *> buttons;
    for (int p = 1; p <= 20; ++p) {
        auto *action = menu->findChild<QAction *>(QStringLiteral("action%1").arg(20099 + p));
        QCOMPARE(action->text(), QString::number(p));
        QCOMPARE(action->data().toInt(), 20099 + p);
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
