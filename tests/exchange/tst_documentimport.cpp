#include "exchange/documentimport.h"
#include "support/exchangetest.h"
#include "support/outline.h"
#include "platform/collation.h"

#include <QTemporaryDir>
#include <QTest>

using namespace ExchangeTest;

// Another document's items join a target as new children do: notes converted, order and progress kept.
class TestDocumentImport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void joinsLikeNewChildren()
    {
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("other.qbx"));
        Document other;
        other.noteType = Document::RichText;
        Outline::build(other.root(), "b | prog=100\na\n");
        other.root()->child(0)->setNote("{\\rtf1 hi}");
        QVERIFY(DocumentFile::save(other, path));

        Document document; // plain text notes
        Outline::build(document.root(), "target\n  d\n  c | prog=100\n");
        Item *target = document.root()->child(0);
        target->setSort(TreeNode::SortName);
        target->setAutoProgress(true);
        // A file that does not load changes nothing about the target.
        const QString damaged = dir.filePath(QStringLiteral("damaged.qbx"));
        QVERIFY(QFile::copy(path, damaged) && QFile::resize(damaged, QFileInfo(damaged).size() - 3));
        QCOMPARE(DocumentImport::importInto(&document, target, damaged, {}), DocumentFile::Damaged);
        QCOMPARE(describe(target), QStringLiteral("target(d,c)"));
        QVERIFY(!target->isExpanded());

        QCOMPARE(DocumentImport::importInto(&document, target, path, {}), DocumentFile::Loaded);
        QCOMPARE(describe(target), QStringLiteral("target(a,b,c,d)"));
        QCOMPARE(target->progress(), 50);
        QVERIFY(target->isExpanded());
        QCOMPARE(target->child(1)->note(), note(u"hi"));
    }
};

QTEST_GUILESS_MAIN(TestDocumentImport)
#include "tst_documentimport.moc"
