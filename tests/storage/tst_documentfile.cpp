#include "support/filebytes.h"
#include "model/document.h"
#include "storage/documentfile.h"
#include "tools/documentgenerator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

using FB = FileBytes;

QList<Item *> preOrder(const TreeNode *top)
{
    QList<Item *> items;
    top->forEachDescendant([&items](Item *item) { items.append(item); });
    return items;
}

SystemTime st(quint16 y, quint16 mo, quint16 dow, quint16 d, quint16 h, quint16 mi, quint16 s, quint16 ms)
{
    return SystemTime{y, mo, dow, d, h, mi, s, ms};
}

// One plain 551 entry. noteSize and linkCount default to the real sizes; when
// given, they may claim more than the file holds.
struct Entry {
    quint32 depth = 1;
    quint32 number = 1;
    QString name = QStringLiteral("x");
    QStringList links = {};
    QString taskTime = {};
    QString category = {};
    QByteArray note = {};
    qint64 noteSize = -1;
    qint64 linkCount = -1;
};

FB &entry(FB &f, const Entry &e)
{
    f.u32(e.depth).u32(e.number).u16(0).str(e.name).u32(0).u32(2).u16(15).str(e.taskTime).u16(0);
    f.time(2024, 1, 1, 1, 0, 0, 0, 0).u16(0).u16(1).u32(1).str(e.category).u16(10).zeroTime().zeroTime();
    f.u32(quint32(e.noteSize < 0 ? e.note.size() : e.noteSize)).bytes(e.note);
    f.u32(quint32(e.linkCount < 0 ? e.links.size() : e.linkCount));
    for (const QString &link : e.links)
        f.str(link);
    return f;
}

// A 551 file: header, the root "Root" and the entries.
QByteArray file551(const QList<Entry> &entries, quint32 currentNumber = 0, quint16 noteType = 0, const char *hash = "")
{
    const QByteArray digest = QByteArray::fromHex(hash);
    FB f;
    f.u32(551).u16(quint16(digest.size())).bytes(digest).u32(0x82).u16(noteType).u16(0).u16(0).u32(0);
    f.u32(currentNumber).u16(0).str(QStringLiteral("Root")).u32(0).u32(2).u16(15);
    for (const Entry &e : entries)
        entry(f, e);
    return f;
}

// A 410 file with one record at depth 1.
QByteArray file410(const QString &taskTime, quint32 linkCount)
{
    FB f;
    f.u32(410).fixed(QString(), 16).u32(0).u32(0).u32(0).fixed(QStringLiteral("T"), 96);
    f.u32(0).fixed(QStringLiteral("x"), 96).u16(0).u16(0).fixed(QString(), 64).zeroTime().fixed(taskTime, 8);
    f.u16(0).u16(0).zeroTime().u32(1).u32(0).u32(0).u32(linkCount).u32(0);
    return f;
}

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    QFile file(dir.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return file.fileName();
}

QByteArray writtenBack(const QByteArray &file)
{
    Document doc;
    if (DocumentFile::loadFromBytes(file, &doc) != DocumentFile::Loaded)
        return "load failed";
    return DocumentFile::toBytes(doc);
}

} // namespace

class TestDocumentFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void emptyDocumentIsHeaderAndRootOnly();
    void version551EveryFieldUnusual();
    void version550HasNoReminderTime();
    void versions500And501_data();
    void versions500And501();
    void version410LegacyRecords();
    void damagedFilesAreRefused_data();
    void damagedFilesAreRefused();
    void everyTruncationIsDamageOrAnEarlierEnd();
    void linkRepairAndCurrentNumber();
    void writerNumbersCurrentAndLinkTargetsFirst();
    void categoriesAreCollectedCaseSensitively();
    void generatedDocumentRoundTrips();
    void chainOfAMillionLevels();
    void fileResults();
    void branchFile();
    void importIntoNode();
    void importConvertsNotesByDefault();
    void importRefusals();
};

void TestDocumentFile::emptyDocumentIsHeaderAndRootOnly()
{
    Document doc;
    const QByteArray expected = QByteArray::fromHex("27020000"                 // Version 551
                                                    "0000"                     // HashLength 0
                                                    "82000000"                 // ShowNoteWindow, ViewAscending
                                                    "000000000000"             // NoteType, ViewMode, ViewOrder
                                                    "00000000"                 // HideByStatus
                                                    "00000000"                 // CurrentNumber: the root
                                                    "0000"                     // Image
                                                    "0400000052006f006f007400" // "Root"
                                                    "00000000"                 // ExtraWord
                                                    "02000000"                 // Ascending, not expanded
                                                    "0f00");                   // manual order
    QCOMPARE(expected.size(), 24 + 16 + 2 * 4);
    QCOMPARE(DocumentFile::toBytes(doc), expected);

    Document loaded;
    QCOMPARE(DocumentFile::loadFromBytes(expected, &loaded), DocumentFile::Loaded);
    QCOMPARE(loaded.root()->name(), QStringLiteral("Root"));
    QVERIFY(!loaded.root()->hasChildren());
    QCOMPARE(loaded.current(), loaded.root());
}

void TestDocumentFile::version551EveryFieldUnusual()
{
    FB f;
    f.u32(551).u16(3).hex("abcdef").u32(0xFFFFFFFF).u16(2).u16(3).u16(5).u32(0xFFFFFF8F).u32(7);
    f.u16(0xFFFF).str(QStringLiteral("Wurzel ü")).u32(0xDEADBEEF).u32(3).u16(4);
    // A: depth 1, number 9.
    f.u32(1).u32(9).u16(0xFFFE).str(QString()).u32(0x80000001).u32(1).u16(5);
    f.str(QStringLiteral("1234567")).u16(0xFFFF).time(2004, 2, 0, 29, 23, 59, 59, 999).u16(250).u16(7).u32(0xFFFFFFF8);
    f.str(QStringLiteral("Öffentlich")).u16(0).time(0, 0, 1, 2, 3, 4, 5, 6);
    f.time(0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF).u32(5).hex("0102030405");
    f.u32(3).str(QStringLiteral("!7")).str(QStringLiteral("!99")).str(QStringLiteral("\\\\server\\share\\x.txt"));
    // B: depth 2, number 7, a negative NoteSize (no note, no bytes), a link back to A.
    f.u32(2).u32(7).u16(12).str(QStringLiteral("Kind")).u32(0).u32(2).u16(15);
    f.str(QString()).u16(35).time(1999, 12, 5, 31, 0, 0, 0, 0).u16(100).u16(1).u32(7);
    f.str(QStringLiteral("öffentlich")).u16(20).time(2025, 6, 0, 1, 0, 0, 0, 0).zeroTime().u32(0xFFFFFFFF);
    f.u32(1).str(QStringLiteral("!9"));

    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(f, &doc), DocumentFile::Loaded);
    // Every field read shows in the bytes written back; these are what the
    // writer cannot show: where the fields went and what they mean.
    QCOMPARE(doc.version, 551u);
    QVERIFY(doc.hideCompleted && doc.showNoteWindow && doc.showDueDate && doc.showStatistics && doc.viewAscending);
    QCOMPARE(doc.categories, QStringList({QStringLiteral("Öffentlich"), QStringLiteral("öffentlich")}));
    QCOMPARE(doc.root()->image(), quint16(826));
    const QList<Item *> items = preOrder(doc.root());
    QCOMPARE(items.size(), 2);
    const Item *a = items[0];
    const Item *b = items[1];
    QCOMPARE(b->parent(), a);
    QCOMPARE(doc.current(), b);
    QVERIFY(a->isExpanded() && !a->isAscending() && !b->isExpanded() && b->isAscending());
    QCOMPARE(a->taskTimeType(), quint16(0));
    QCOMPARE(a->colour(), quint16(0));
    QVERIFY(!a->showIcon() && !a->autoProgress() && !a->isItalic());
    QVERIFY(b->showIcon() && b->autoProgress() && b->isItalic());
    QVERIFY(!a->hasDueDate());
    QCOMPARE(b->noteSize(), 0);
    QCOMPARE(a->links(),
             QStringList({b->linkText(), QStringLiteral("!0"), QStringLiteral("\\\\server\\share\\x.txt")}));
    QCOMPARE(b->links(), QStringList{a->linkText()});

    // Written back: only the five document flags, 826 for the unset image, 0
    // for the unset colour, the current Item numbered 1, A numbered 2 when
    // met, the dead link as "!0".
    FB e;
    e.u32(551).u16(3).hex("abcdef").u32(0x8F).u16(2).u16(3).u16(5).u32(0xFFFFFF8F).u32(1);
    e.u16(826).str(QStringLiteral("Wurzel ü")).u32(0xDEADBEEF).u32(3).u16(4);
    e.u32(1).u32(2).u16(0xFFFE).str(QString()).u32(0x80000001).u32(1).u16(5);
    e.str(QStringLiteral("1234567")).u16(0).time(2004, 2, 0, 29, 23, 59, 59, 999).u16(250).u16(7).u32(0);
    e.str(QStringLiteral("Öffentlich")).u16(0).time(0, 0, 1, 2, 3, 4, 5, 6);
    e.time(0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF).u32(5).hex("0102030405");
    e.u32(3).str(QStringLiteral("!1")).str(QStringLiteral("!0")).str(QStringLiteral("\\\\server\\share\\x.txt"));
    e.u32(2).u32(1).u16(12).str(QStringLiteral("Kind")).u32(0).u32(2).u16(15);
    e.str(QString()).u16(35).time(1999, 12, 5, 31, 0, 0, 0, 0).u16(100).u16(1).u32(7);
    e.str(QStringLiteral("öffentlich")).u16(20).time(2025, 6, 0, 1, 0, 0, 0, 0).zeroTime().u32(0);
    e.u32(1).str(QStringLiteral("!2"));
    QCOMPARE(DocumentFile::toBytes(doc), e.data());
}

void TestDocumentFile::version550HasNoReminderTime()
{
    FB f;
    f.u32(550).u16(0).u32(0x04).u16(1).u16(2).u16(1).u32(0x40).u32(0);
    f.u16(3).str(QStringLiteral("R")).u32(0).u32(0).u16(0);
    f.u32(1).u32(4).u16(7).str(QStringLiteral("x")).u32(0).u32(2).u16(15);
    f.str(QStringLiteral("5")).u16(1).time(2010, 5, 1, 3, 4, 5, 6, 7).u16(50).u16(2).u32(1);
    f.str(QString()).u16(10).time(2011, 1, 6, 1, 0, 0, 0, 0).u32(2).hex("4100").u32(0);

    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(f, &doc), DocumentFile::Loaded);
    QCOMPARE(doc.version, 550u);
    QVERIFY(doc.showDueDate && !doc.showNoteWindow && !doc.viewAscending);
    const Item *item = doc.root()->child(0);
    QCOMPARE(item->dueDate(), st(2011, 1, 6, 1, 0, 0, 0, 0));
    QVERIFY(item->reminderTime().isZero());
    QCOMPARE(item->note(), QByteArray::fromHex("4100"));
    QVERIFY(!doc.root()->isAscending());

    FB e;
    e.u32(551).u16(0).u32(0x04).u16(1).u16(2).u16(1).u32(0x40).u32(0);
    e.u16(3).str(QStringLiteral("R")).u32(0).u32(0).u16(0);
    e.u32(1).u32(1).u16(7).str(QStringLiteral("x")).u32(0).u32(2).u16(15);
    e.str(QStringLiteral("5")).u16(1).time(2010, 5, 1, 3, 4, 5, 6, 7).u16(50).u16(2).u32(1);
    e.str(QString()).u16(10).time(2011, 1, 6, 1, 0, 0, 0, 0).zeroTime().u32(2).hex("4100").u32(0);
    QCOMPARE(writtenBack(f), e.data());
}

void TestDocumentFile::versions500And501_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<quint16>("loadedSort");
    QTest::newRow("500 reads Sort 5 as manual order") << 500u << quint16(15);
    QTest::newRow("501 keeps Sort 5") << 501u << quint16(5);
}

void TestDocumentFile::versions500And501()
{
    QFETCH(quint32, version);
    QFETCH(quint16, loadedSort);
    FB f;
    f.u32(version).str(QStringLiteral("abc")).u32(0x100 | 0x01).u16(1).u16(2).u32(0x20).u32(1);
    f.u16(5).str(QStringLiteral("R")).u32(0).u32(2).u16(5);
    f.u32(1).u32(1).u16(0).str(QStringLiteral("i")).u32(0).u32(2).u16(5);
    f.str(QString()).u16(0).zeroTime().u16(0).u16(1).u32(1).str(QStringLiteral("Work")).u16(10).zeroTime();
    f.u32(0).u32(0);

    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(f, &doc), DocumentFile::Loaded);
    QCOMPARE(doc.version, version);
    // The plain-text password of these versions becomes the digest of "abc".
    QCOMPARE(doc.passwordHash.toHex(), QByteArray("ce1473cf80c6b3fda8e3dfc006adc315"));
    QCOMPARE(doc.noteType, quint16(1)); // DocFlags bit 8
    QVERIFY(doc.hideCompleted && !doc.showNoteWindow && !doc.viewAscending);
    QCOMPARE(doc.root()->sort(), loadedSort);
    QCOMPARE(doc.root()->child(0)->sort(), loadedSort);
    QCOMPARE(doc.current(), doc.root()->child(0));

    FB e;
    e.u32(551).u16(16).hex("ce1473cf80c6b3fda8e3dfc006adc315").u32(0x01).u16(1).u16(1).u16(2).u32(0x20).u32(1);
    e.u16(5).str(QStringLiteral("R")).u32(0).u32(2).u16(loadedSort);
    e.u32(1).u32(1).u16(0).str(QStringLiteral("i")).u32(0).u32(2).u16(loadedSort);
    e.str(QString()).u16(0).zeroTime().u16(0).u16(1).u32(1).str(QStringLiteral("Work")).u16(10).zeroTime();
    e.zeroTime().u32(0).u32(0);
    QCOMPARE(writtenBack(f), e.data());
}

void TestDocumentFile::version410LegacyRecords()
{
    DocumentFile::setLegacyDocumentsFolder(QStringLiteral("/docs"));
    FB f;
    // HideCompleted, ShowDueDate, ViewAscending, ShowStatistics, hide bits
    // 14 and 16; bit 1 clear (note window shown), bit 9 clear (rich ink).
    f.u32(410).fixed(QStringLiteral("pw"), 16).u32(0x14415).u32(0x00010002).u32(3);
    f.fixed(QStringLiteral("Legacy title"), 96);
    const int headerSize = f.size();
    // Complete, expanded, current, progress bar, automatic.
    f.u32(0x395).fixed(QStringLiteral("Erledigt"), 96).u16(30).u16(4).fixed(QStringLiteral("Home"), 64);
    f.time(2003, 7, 2, 16, 0, 0, 0, 0).fixed(QStringLiteral("2h"), 8).u16(2).u16(9);
    f.time(2003, 1, 3, 2, 8, 15, 0, 0).u32(1).u32(5).u32(42);
    QCOMPARE(f.size() - headerSize, 392);
    f.u32(2).fixed(QStringLiteral("!6"), 260).fixed(QStringLiteral("\\My Documents\\Letters\\a.psw"), 260);
    f.u32(4).hex("41004200");
    // Bit 7 without bit 8 (bit 9, automatic, beside it): no status. Depth 3
    // right after depth 1 is tolerated here. Image (icon + 796) and Colour
    // are 0xFFFF, which this layout keeps.
    f.u32(0x280).fixed(QStringLiteral("Tief"), 96).u16(0xFFFF - 796).u16(9).fixed(QString(), 64);
    f.zeroTime().fixed(QString(), 8).u16(0).u16(0xFFFF).zeroTime().u32(3).u32(6).u32(42).u32(0).u32(0);
    // Plain check box with its own progress; depth 0 climbs to the top.
    // Bit 8 without bit 7 is still a check box.
    f.u32(0x100).fixed(QStringLiteral("Drei"), 96).u16(1).u16(0).fixed(QStringLiteral("Home"), 64);
    f.zeroTime().fixed(QString(), 8).u16(0).u16(0).zeroTime().u32(0).u32(7).u32(60);
    f.u32(2).fixed(QStringLiteral("/docs/Projects/x.txt"), 260).fixed(QStringLiteral("/docsother/y.txt"), 260);
    f.u32(0);

    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(f, &doc), DocumentFile::Loaded);
    QCOMPARE(doc.version, 410u);
    QCOMPARE(doc.passwordHash.toHex(), QByteArray("d29e9e1676c2b9d01b1e10adce084822"));
    QVERIFY(doc.hideCompleted && doc.showNoteWindow && doc.showDueDate && doc.viewAscending && doc.showStatistics);
    QCOMPARE(doc.noteType, quint16(1));
    QCOMPARE(doc.hideByStatus, 0x50u);
    QCOMPARE(doc.viewMode, quint16(2));
    QCOMPARE(doc.viewOrder, quint16(3));
    QCOMPARE(doc.root()->name(), QStringLiteral("Legacy title"));
    QCOMPARE(doc.categories, QStringList{QStringLiteral("Home")});

    const QList<Item *> items = preOrder(doc.root());
    QCOMPARE(items.size(), 3);
    const Item *done = items[0];
    const Item *deep = items[1];
    const Item *third = items[2];
    QCOMPARE(deep->parent(), done);
    QCOMPARE(third->parent(), doc.root());
    QCOMPARE(doc.current(), done);

    QCOMPARE(done->name(), QStringLiteral("Erledigt"));
    QCOMPARE(done->image(), quint16(826));
    QCOMPARE(done->priority(), quint16(5));
    QCOMPARE(done->category(), QStringLiteral("Home"));
    QCOMPARE(done->dueDate(), st(2003, 7, 2, 16, 0, 0, 0, 0));
    QCOMPARE(done->taskTime(), QStringLiteral("2h"));
    QCOMPARE(done->taskTimeType(), quint16(3));
    QCOMPARE(done->colour(), quint16(9));
    QCOMPARE(done->created(), st(2003, 1, 3, 2, 8, 15, 0, 0));
    QCOMPARE(done->progress(), quint16(100));
    QCOMPARE(done->statusType(), quint16(Item::ProgressBar));
    QVERIFY(done->autoProgress() && done->isExpanded() && done->showIcon() && !done->isItalic());
    QCOMPARE(done->links(), QStringList({deep->linkText(), QStringLiteral("Letters\\a.psw")}));
    QCOMPARE(done->note(), QByteArray::fromHex("41004200"));

    QCOMPARE(deep->statusType(), quint16(Item::NoStatus));
    QVERIFY(deep->autoProgress());
    QCOMPARE(deep->progress(), quint16(42));
    QCOMPARE(deep->image(), quint16(0xFFFF));
    QCOMPARE(deep->colour(), quint16(0xFFFF));
    QCOMPARE(deep->priority(), quint16(10));
    QCOMPARE(deep->taskTimeType(), quint16(0));

    QCOMPARE(third->statusType(), quint16(Item::CheckBox));
    QCOMPARE(third->progress(), quint16(60));
    QCOMPARE(third->image(), quint16(797));
    QCOMPARE(third->links(), QStringList({QStringLiteral("Projects/x.txt"), QStringLiteral("/docsother/y.txt")}));

    // Written as 551, the 0xFFFF image and colour are the unset values that load as 826 and 0.
    Document resaved;
    QCOMPARE(DocumentFile::loadFromBytes(DocumentFile::toBytes(doc), &resaved), DocumentFile::Loaded);
    QCOMPARE(preOrder(resaved.root())[1]->image(), quint16(826));
    QCOMPARE(preOrder(resaved.root())[1]->colour(), quint16(0));

    // Every record of the file is needed: a record cut short is damage.
    for (int cut : {1, 100, 392, 392 + 4 + 520}) {
        Document partial;
        QCOMPARE(DocumentFile::loadFromBytes(f.data().left(f.size() - cut), &partial), DocumentFile::Damaged);
    }
}

void TestDocumentFile::damagedFilesAreRefused_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("result");
    const int loaded = DocumentFile::Loaded;
    const int damaged = DocumentFile::Damaged;
    const int unsupported = DocumentFile::UnsupportedVersion;
    const FB header = FB().u32(551).u16(0).u32(0).u16(0).u16(0).u16(0).u32(0).u32(0).u16(0);

    QTest::newRow("version 552") << FB().u32(552).u16(0).data() << unsupported;
    QTest::newRow("version 411") << FB().u32(411).data() << unsupported;
    QTest::newRow("hash longer than the file") << FB().u32(551).u16(0xFFFF).hex("0102").data() << damaged;
    QTest::newRow("root name count 0xFFFFFFFF") << FB(header).u32(0xFFFFFFFF).data() << damaged;
    QTest::newRow("500 password count huge") << FB().u32(500).u32(0x40000000).u16(97).data() << damaged;
    QTest::newRow("410 header cut") << FB().u32(410).fixed(QString(), 16).u32(0).data() << damaged;
    QTest::newRow("410 TaskTime of 7 units") << file410(QStringLiteral("1234567"), 0) << loaded;
    QTest::newRow("410 TaskTime of 8 units") << file410(QStringLiteral("12345678"), 0) << damaged;
    QTest::newRow("410 link count huge") << file410(QString(), 0x10000000) << damaged;
    QTest::newRow("TaskTime of 7 units") << file551({{.taskTime = QStringLiteral("1234567")}}) << loaded;
    QTest::newRow("TaskTime of 8 units") << file551({{.taskTime = QStringLiteral("12345678")}}) << damaged;
    QTest::newRow("note size beyond the file") << file551({{.noteSize = 0x7FFFFFFF}}) << damaged;
    QTest::newRow("link count huge") << file551({{.linkCount = 0x7FFFFFFF}}) << damaged;
    QTest::newRow("empty links that end the file") << file551({{.links = {QString(), QString()}}}) << loaded;
    QTest::newRow("first entry at depth 2") << file551({{.depth = 2}}) << damaged;
    QTest::newRow("depth 0") << file551({{.depth = 0}}) << damaged;
    QTest::newRow("depth 1 to 3") << file551({{}, {.depth = 3, .number = 2}}) << damaged;
    QTest::newRow("three stray bytes after an entry") << file551({Entry()}) + QByteArray::fromHex("010000") << damaged;
}

void TestDocumentFile::damagedFilesAreRefused()
{
    QFETCH(QByteArray, file);
    QFETCH(int, result);
    Document doc;
    QCOMPARE(int(DocumentFile::loadFromBytes(file, &doc)), result);
}

void TestDocumentFile::everyTruncationIsDamageOrAnEarlierEnd()
{
    // Depth 3 back to 1 is valid: the entry climbs two levels at once.
    const QList<Entry> entries{{1, 1, QStringLiteral("a"), {QStringLiteral("!3")}},
                               {2, 2, QStringLiteral("b")},
                               {3, 3, QStringLiteral("c")},
                               {1, 4, QStringLiteral("d"), {QStringLiteral("!1"), QStringLiteral("http://x")}},
                               {2, 5, QStringLiteral("e")}};
    QList<int> ends;
    for (int i = 0; i <= entries.size(); ++i)
        ends.append(int(file551(entries.first(i), 2).size()));
    const QByteArray file = file551(entries, 2);

    for (int length = 0; length <= file.size(); ++length) {
        Document doc;
        const DocumentFile::LoadResult result = DocumentFile::loadFromBytes(file.left(length), &doc);
        const int complete = int(ends.indexOf(length));
        if (complete < 0) {
            QVERIFY2(result == DocumentFile::Damaged, qPrintable(QString::number(length)));
        } else {
            QCOMPARE(result, DocumentFile::Loaded);
            QCOMPARE(preOrder(doc.root()).size(), complete);
        }
    }

    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(file, &doc), DocumentFile::Loaded);
    const QList<Item *> items = preOrder(doc.root());
    QCOMPARE(items[2]->parent(), items[1]);
    QCOMPARE(items[3]->parent(), doc.root());
    QCOMPARE(items[4]->parent(), items[3]);
    QCOMPARE(doc.current(), items[1]);
    QCOMPARE(doc.linkTarget(items[0]->links()[0]), items[2]);
    QVERIFY(!items[0]->isExpanded()); // no entry asked to be expanded
}

void TestDocumentFile::linkRepairAndCurrentNumber()
{
    // Two entries share number 5: the later one is the one links and the
    // current number name.
    const QByteArray f =
        file551({{1, 5, QStringLiteral("first five")},
                 {1,
                  5,
                  QStringLiteral("second five"),
                  {QStringLiteral("!5"), QStringLiteral("!6"), QStringLiteral("!x"), QStringLiteral("!"),
                   QStringLiteral("!0"), QStringLiteral("!99999999999"), QStringLiteral("mailto:a@b")}},
                 {1, 6, QStringLiteral("six")}},
                5);
    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(f, &doc), DocumentFile::Loaded);
    const QList<Item *> items = preOrder(doc.root());
    QCOMPARE(doc.current(), items[1]);
    const QStringList links = items[1]->links();
    QCOMPARE(links.size(), 7);
    QCOMPARE(doc.linkTarget(links[0]), items[1]);
    QCOMPARE(doc.linkTarget(links[1]), items[2]);
    for (int i = 2; i < 6; ++i) {
        QCOMPARE(links[i], QStringLiteral("!0"));
        QVERIFY(!doc.linkTarget(links[i]));
    }
    QCOMPARE(links[6], QStringLiteral("mailto:a@b"));

    // A current number that no entry has, or one below 1, leaves the root current.
    for (quint32 current : {9u, 0u, 0xFFFFFFFFu}) {
        Document other;
        QCOMPARE(DocumentFile::loadFromBytes(file551({{.number = 2}}, current), &other), DocumentFile::Loaded);
        QCOMPARE(other.current(), other.root());
    }
}

void TestDocumentFile::writerNumbersCurrentAndLinkTargetsFirst()
{
    Document doc;
    const auto add = [](TreeNode *parent, const char *name) {
        auto *item = new Item(QLatin1String(name), 0, st(2024, 1, 1, 1, 0, 0, 0, 0));
        parent->appendChild(item);
        return item;
    };
    Item *a = add(doc.root(), "a");
    add(a, "b");
    Item *c = add(doc.root(), "c");
    Item *d = add(doc.root(), "d");
    Document elsewhere;
    const Item *foreign = add(elsewhere.root(), "foreign");
    // a links to d (met before its entry) and to an Item of another document.
    a->setLinks({d->linkText(), foreign->linkText()});
    // c, the current Item, links back to a (already written).
    c->setLinks({a->linkText()});
    doc.setCurrent(c);

    const QByteArray expected = file551({{1, 2, QStringLiteral("a"), {QStringLiteral("!3"), QStringLiteral("!0")}},
                                         {2, 4, QStringLiteral("b")},
                                         {1, 1, QStringLiteral("c"), {QStringLiteral("!2")}},
                                         {1, 3, QStringLiteral("d")}},
                                        1);
    QCOMPARE(DocumentFile::toBytes(doc), expected);
}

void TestDocumentFile::categoriesAreCollectedCaseSensitively()
{
    QList<Entry> entries;
    for (const char *category : {"Work", "work", "", "Work", "WORK", "Home"})
        entries.append({.category = QLatin1String(category)});
    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(file551(entries), &doc), DocumentFile::Loaded);
    QCOMPARE(doc.categories, QStringList({QStringLiteral("Work"), QStringLiteral("work"), QStringLiteral("WORK"),
                                          QStringLiteral("Home")}));
    const QList<Item *> items = preOrder(doc.root());
    QCOMPARE(items[3]->category(), QStringLiteral("Work"));
    // Equal texts share one copy: a million Items of a few categories keep a few strings.
    QCOMPARE(items[3]->category().constData(), items[0]->category().constData());
}

void TestDocumentFile::generatedDocumentRoundTrips()
{
    // Every field is checked by the hand-built files; here a large generated
    // document must come back as the same bytes.
    for (quint16 noteType : {quint16(0), quint16(2)}) {
        Document original;
        DocumentGenerator::generate(&original, {600, 7, false, noteType});
        const QList<Item *> before = preOrder(original.root());
        before[10]->setTaskTimeType(4);
        before[11]->setReminderTime(st(2026, 3, 2, 10, 8, 30, 0, 0));
        original.setCurrent(before[300]);

        const QByteArray bytes = DocumentFile::toBytes(original);
        Document loaded;
        QCOMPARE(DocumentFile::loadFromBytes(bytes, &loaded), DocumentFile::Loaded);
        QCOMPARE(DocumentFile::toBytes(loaded), bytes);
        QCOMPARE(loaded.noteType, noteType);
        const QList<Item *> after = preOrder(loaded.root());
        QCOMPARE(after.size(), before.size());
        QCOMPARE(loaded.current(), after[300]);
        QCOMPARE(after[10]->taskTimeType(), quint16(0)); // the file does not keep it
        QCOMPARE(after[11]->reminderTime(), before[11]->reminderTime());
    }
}

void TestDocumentFile::chainOfAMillionLevels()
{
    Document chain;
    DocumentGenerator::generate(&chain, {1000000, 3, true, 0});
    // One more entry back at depth 1 climbs the whole chain at once.
    FB tail;
    entry(tail, {1, 0xFFFFFF, QStringLiteral("back at the top")});
    const QByteArray bytes = DocumentFile::toBytes(chain) + tail.data();

    Document loaded;
    QCOMPARE(DocumentFile::loadFromBytes(bytes, &loaded), DocumentFile::Loaded);
    QCOMPARE(loaded.root()->childCount(), 2);
    int depth = 0;
    for (const TreeNode *node = loaded.root()->child(0); node;
         node = node->hasChildren() ? node->children()[0] : nullptr)
        ++depth;
    QCOMPARE(depth, 1000000);
    QCOMPARE(DocumentFile::toBytes(loaded).size(), bytes.size());
}

void TestDocumentFile::fileResults()
{
    QTemporaryDir dir;
    Document doc;
    QCOMPARE(DocumentFile::load(dir.filePath(QStringLiteral("absent.qbx")), &doc), DocumentFile::NotFound);
    QCOMPARE(DocumentFile::load(dir.path(), &doc), DocumentFile::Damaged);

    Document source;
    DocumentGenerator::generate(&source, {40, 1, false, 0});
    const QString path = dir.filePath(QStringLiteral("doc.qbx"));
    QVERIFY(DocumentFile::save(source, path));
    Document loaded;
    QCOMPARE(DocumentFile::load(path, &loaded), DocumentFile::Loaded);
    QCOMPARE(loaded.path, path);
    QCOMPARE(preOrder(loaded.root()).size(), 40);

    // Saving to the document's own path replaces the file.
    loaded.root()->child(0)->setName(QStringLiteral("renamed"));
    QVERIFY(DocumentFile::save(loaded));
    Document again;
    QCOMPARE(DocumentFile::load(path, &again), DocumentFile::Loaded);
    QCOMPARE(again.root()->child(0)->name(), QStringLiteral("renamed"));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("doc.qbx")});

    // A note larger than the writer's buffer reaches the file whole.
    const QByteArray bigNote = QByteArray(3 << 20, 'n') + QByteArray(2, '\0');
    loaded.root()->child(1)->setNote(bigNote);
    QVERIFY(DocumentFile::save(loaded));
    Document big;
    QCOMPARE(DocumentFile::load(path, &big), DocumentFile::Loaded);
    QVERIFY(big.root()->child(1)->note() == bigNote);

    // A save into a folder that does not exist fails and creates nothing.
    QVERIFY(!DocumentFile::save(loaded, dir.filePath(QStringLiteral("no/such/folder.qbx"))));

    // A file on disk is read from a mapping with the same checks: cut
    // anywhere, it is damage, and it stays exactly as it was.
    const QByteArray whole = DocumentFile::toBytes(source);
    const QString cutPath = dir.filePath(QStringLiteral("cut.qbx"));
    for (const qsizetype length : {qsizetype(0), qsizetype(3), whole.size() / 2, whole.size() - 1}) {
        const QByteArray cut = whole.left(length);
        {
            QFile file(cutPath);
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            QCOMPARE(file.write(cut), cut.size());
        }
        Document damaged;
        QVERIFY2(DocumentFile::load(cutPath, &damaged) == DocumentFile::Damaged, qPrintable(QString::number(length)));
        QFile file(cutPath);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll() == cut);
    }
}

void TestDocumentFile::branchFile()
{
    Document doc;
    doc.passwordHash = QByteArray::fromHex("0011");
    doc.noteType = 2;
    const SystemTime created = st(2024, 1, 1, 1, 0, 0, 0, 0);
    auto *top = new Item(QStringLiteral("top"), 0, created);
    auto *branch = new Item(QStringLiteral("branch"), 6, created);
    auto *inner = new Item(QStringLiteral("inner"), 0, created);
    auto *leaf = new Item(QStringLiteral("leaf"), 0, created);
    doc.root()->appendChild(top);
    top->appendChild(branch);
    branch->appendChild(inner);
    inner->appendChild(leaf);
    branch->setExpanded(true);
    branch->setSort(1);
    branch->setExtraWord(5);
    // A link inside the branch and one to an Item outside it.
    leaf->setLinks({inner->linkText(), top->linkText()});
    doc.setCurrent(leaf);

    FB e;
    e.u32(551).u16(2).hex("0011").u32(0x82).u16(2).u16(0).u16(0).u32(0).u32(0);
    e.u16(6).str(QStringLiteral("branch")).u32(5).u32(3).u16(1);
    entry(e, {1, 1, QStringLiteral("inner")});
    entry(e, {2, 2, QStringLiteral("leaf"), {QStringLiteral("!1"), QStringLiteral("!3")}});
    QCOMPARE(DocumentFile::branchToBytes(doc, branch), e.data());

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("branch.qbx"));
    QVERIFY(DocumentFile::saveBranch(doc, branch, path));
    Document loaded;
    QCOMPARE(DocumentFile::load(path, &loaded), DocumentFile::Loaded);
    QCOMPARE(loaded.root()->name(), QStringLiteral("branch"));
    const QList<Item *> items = preOrder(loaded.root());
    QCOMPARE(items.size(), 2);
    QCOMPARE(loaded.linkTarget(items[1]->links()[0]), items[0]);
    QVERIFY(!loaded.linkTarget(items[1]->links()[1])); // outside the branch: dead
}

void TestDocumentFile::importIntoNode()
{
    QTemporaryDir dir;
    const QString path = writeFile(dir, QStringLiteral("import.qbx"),
                                   file551({{1, 1, QStringLiteral("one"), {QStringLiteral("!2")}},
                                            {2, 2, QStringLiteral("two")},
                                            {1, 3, QStringLiteral("three")}},
                                           2, 2, "ce1473cf80c6b3fda8e3dfc006adc315"));
    Document doc;
    auto *target = new Item(QStringLiteral("target"));
    auto *existing = new Item(QStringLiteral("existing"));
    doc.root()->appendChild(target);
    target->appendChild(existing);

    QByteArray askedHash;
    QList<QPair<quint16, quint16>> conversions;
    const auto prompt = [&askedHash](const QByteArray &hash) {
        askedHash = hash;
        return true;
    };
    const auto convert = [&conversions](TreeNode *root, quint16 from, quint16 to) {
        QCOMPARE(root->childCount(), 2);
        conversions.append({from, to});
    };
    QCOMPARE(DocumentFile::importInto(&doc, target, path, prompt, convert), DocumentFile::Loaded);
    QCOMPARE(askedHash.toHex(), QByteArray("ce1473cf80c6b3fda8e3dfc006adc315"));
    QCOMPARE(conversions, (QList<QPair<quint16, quint16>>{{2, 0}}));
    QCOMPARE(target->childCount(), 3);
    QCOMPARE(target->child(0), existing);
    QCOMPARE(target->child(1)->name(), QStringLiteral("one"));
    QCOMPARE(target->child(2)->name(), QStringLiteral("three"));
    QCOMPARE(doc.linkTarget(target->child(1)->links()[0]), target->child(1)->child(0));
    // The imported file's header leaves the document as it was.
    QCOMPARE(doc.noteType, quint16(0));
    QVERIFY(doc.passwordHash.isEmpty());
    QCOMPARE(doc.current(), doc.root());

    // Equal note types need no conversion.
    doc.noteType = 2;
    QCOMPARE(DocumentFile::importInto(&doc, doc.root(), path, prompt, convert), DocumentFile::Loaded);
    QCOMPARE(conversions.size(), 1);
    QCOMPARE(doc.root()->childCount(), 3);
}

void TestDocumentFile::importConvertsNotesByDefault()
{
    QTemporaryDir dir;
    Document doc; // plain text notes
    const QString rich = writeFile(dir, QStringLiteral("rich.qbx"), file551({{.note = "{\\rtf1\\ansi Hi}"}}, 0, 2));
    QCOMPARE(DocumentFile::importInto(&doc, doc.root(), rich, {}), DocumentFile::Loaded);
    QCOMPARE(doc.root()->child(0)->note(), QByteArray::fromHex("480069000000"));
    // A note type nobody knows cannot be converted: nothing is added.
    const QString odd = writeFile(dir, QStringLiteral("odd.qbx"), file551({{.note = "??"}}, 0, 9));
    QCOMPARE(DocumentFile::importInto(&doc, doc.root(), odd, {}), DocumentFile::Damaged);
    QCOMPARE(doc.root()->childCount(), 1);
}

void TestDocumentFile::importRefusals()
{
    QTemporaryDir dir;
    const QString secret =
        writeFile(dir, QStringLiteral("p.qbx"), file551({Entry()}, 0, 0, "ce1473cf80c6b3fda8e3dfc006adc315"));
    const QString cut = writeFile(dir, QStringLiteral("d.qbx"), file551({{}, {.number = 2}}).chopped(3));
    FB old;
    old.u32(550).u16(0).u32(0).u16(0).u16(0).u16(0).u32(0).u32(0).u16(0).str(QStringLiteral("R")).u32(0).u32(2).u16(15);
    const QString older = writeFile(dir, QStringLiteral("o.qbx"), old);
    const QString stub = writeFile(dir, QStringLiteral("e.qbx"), "\x27\x02");

    Document doc;
    auto *target = new Item(QStringLiteral("target"));
    doc.root()->appendChild(target);
    const auto yes = [](const QByteArray &) { return true; };
    const auto no = [](const QByteArray &) { return false; };
    QCOMPARE(DocumentFile::importInto(&doc, target, secret, no), DocumentFile::Cancelled);
    QCOMPARE(DocumentFile::importInto(&doc, target, secret, {}), DocumentFile::Cancelled);
    QCOMPARE(DocumentFile::importInto(&doc, target, cut, yes), DocumentFile::Damaged);
    QCOMPARE(DocumentFile::importInto(&doc, target, older, yes), DocumentFile::UnsupportedVersion);
    QCOMPARE(DocumentFile::importInto(&doc, target, dir.filePath(QStringLiteral("absent.qbx")), yes),
             DocumentFile::Damaged);
    QCOMPARE(DocumentFile::importInto(&doc, target, stub, yes), DocumentFile::Damaged);
    QCOMPARE(target->childCount(), 0);
}

QTEST_GUILESS_MAIN(TestDocumentFile)
#include "tst_documentfile.moc"
