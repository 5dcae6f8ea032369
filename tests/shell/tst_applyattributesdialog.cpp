#include "support/shellfixture.h"

#include "shell/dialogs/applyattributesdialog.h"
#include "shell/widgets/colourcombo.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QToolButton>

class TestApplyAttributesDialog : public QObject {
    Q_OBJECT

private:
    // Root > Plan (Design (Sketch), Build)
    std::unique_ptr<Document> sample()
    {
        auto document = std::make_unique<Document>();
        Item *plan = add(document->root(), QStringLiteral("Plan"));
        Item *design = add(plan, QStringLiteral("Design"));
        add(design, QStringLiteral("Sketch"));
        add(plan, QStringLiteral("Build"));
        return document;
    }

private Q_SLOTS:
    void changingAValueTicksItsBox();
    void appliedToChildrenOrToEverythingBelow_data();
    void appliedToChildrenOrToEverythingBelow();
};

void TestApplyAttributesDialog::changingAValueTicksItsBox()
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

void TestApplyAttributesDialog::appliedToChildrenOrToEverythingBelow_data()
{
    QTest::addColumn<bool>("allSubItems");
    QTest::addColumn<bool>("ok");
    QTest::newRow("children") << false << true;
    QTest::newRow("all sub-items") << true << true;
    QTest::newRow("cancelled") << true << false;
}

void TestApplyAttributesDialog::appliedToChildrenOrToEverythingBelow()
{
    QFETCH(bool, allSubItems);
    QFETCH(bool, ok);
    ShellFixture f;
    QVERIFY(f.open(sample()));
    Item *plan = f.at({0});
    f.select(plan);
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
    QCOMPARE(plan->category(), QString());
    QCOMPARE(plan->progress(), quint16(0));
    QCOMPARE(f.document()->categories, ok ? QStringList{QStringLiteral("Garden")} : QStringList());
}

QTEST_MAIN(TestApplyAttributesDialog)
#include "tst_applyattributesdialog.moc"
