#include "exchange/documentimport.h"
#include "support/exchangetest.h"
#include "model/document.h"
#include "platform/collation.h"
#include "storage/documentfile.h"

#include <QTemporaryDir>
#include <QTest>

using namespace ExchangeTest;

// Import File joins another document's items to a target the way any new
// children join: converted notes, the target's order and automatic progress.
class TestDocumentImport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void joinsLikeNewChildren();
};

void TestDocumentImport::joinsLikeNewChildren()
{
    Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("other.qbx"));
    Document other;
    other.noteType = Document::RichText;
    auto *b = new Item(QStringLiteral("b"));
    b->storeProgress(100);
    b->setNote("{\\rtf1 hi}");
    other.root()->appendChild(b);
    other.root()->appendChild(new Item(QStringLiteral("a")));
    QVERIFY(DocumentFile::save(other, path));

    Document document; // plain text notes
    auto *target = new Item(QStringLiteral("target"));
    document.root()->appendChild(target);
    target->appendChild(new Item(QStringLiteral("d")));
    target->appendChild(new Item(QStringLiteral("c")));
    target->child(1)->storeProgress(100);
    target->setSort(TreeNode::SortName);
    target->setAutoProgress(true);

    // A file that does not load changes nothing about the target.
    const QString damaged = dir.filePath(QStringLiteral("damaged.qbx"));
    QVERIFY(QFile::copy(path, damaged));
    QVERIFY(QFile::resize(damaged, QFileInfo(damaged).size() - 3));
    QCOMPARE(DocumentImport::importInto(&document, target, damaged, {}), DocumentFile::Damaged);
    QCOMPARE(describe(target), QStringLiteral("target(d,c)"));
    QVERIFY(!target->isExpanded());

    QCOMPARE(DocumentImport::importInto(&document, target, path, {}), DocumentFile::Loaded);
    QCOMPARE(describe(target), QStringLiteral("target(a,b,c,d)"));
    QCOMPARE(target->progress(), 50);
    QVERIFY(target->isExpanded());
    QCOMPARE(target->child(1)->note(), note(u"hi"));
}

QTEST_GUILESS_MAIN(TestDocumentImport)
#include "tst_documentimport.moc"
