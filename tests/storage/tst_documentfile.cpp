#include "model/document.h"
#include "storage/bytereader.h"
#include "storage/bytewriter.h"
#include "storage/documentfile.h"
#include "support/filebytes.h"
#include "tools/documentgenerator.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>

namespace {

using FB = FileBytes;

Item *add(TreeNode *parent, const char *name, quint16 image = 0)
{
    auto *item = new Item(QLatin1String(name), image, SystemTime{2024, 1, 1, 1, 0, 0, 0, 0});
    parent->appendChild(item);
    return item;
}

// One plain 551 entry; noteSize and linkCount, when given, may claim more than the file holds.
struct Entry {
    quint32 depth = 1;
    quint32 number = 1;
    QString name = "x";
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
    f.u32(currentNumber).u16(0).str("Root").u32(0).u32(2).u16(15);
    for (const Entry &e : entries)
        entry(f, e);
    return f;
}

// A 410 file with one record at depth 1.
QByteArray file410(const QString &taskTime, quint32 linkCount)
{
    FB f;
    f.u32(410).fixed(QString(), 16).u32(0).u32(0).u32(0).fixed("T", 96);
    f.u32(0).fixed("x", 96).u16(0).u16(0).fixed(QString(), 64).zeroTime().fixed(taskTime, 8);
    f.u16(0).u16(0).zeroTime().u32(1).u32(0).u32(0).u32(linkCount).u32(0);
    return f;
}

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    return FB::write(dir.filePath(name), bytes) ? dir.filePath(name) : QString();
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
    void versions551And550EveryField();
    void olderVersionsAreWrittenBackAs551();
    void version410LegacyRecords();
    void damagedFilesAreRefused();
    void everyTruncationIsDamageOrAnEarlierEnd();
    void linksCurrentAndCategories();
    void writerNumbersCurrentAndLinkTargetsFirstAndBranches();
    void fileResultsAndBytePrimitives();
    void importIntoNode();
    void chainOfAMillionLevels();
};

void TestDocumentFile::versions551And550EveryField()
{
    // Version 551, no hash, ShowNoteWindow and ViewAscending, NoteType, ViewMode, ViewOrder, HideByStatus,
    // CurrentNumber 0 (the root); the root: Image, "Root", ExtraWord, ascending and closed, manual order.
    const QByteArray expected = QByteArray::fromHex("27020000 0000 82000000 0000 0000 0000 00000000 00000000"
                                                    "0000 0400000052006f006f007400 00000000 02000000 0f00");
    QCOMPARE(DocumentFile::toBytes(Document()), expected);
    QCOMPARE(writtenBack(expected), expected);

    // 550 is 551 without ReminderTime (all 0xFFFF in A, zero in B).
    for (const quint32 version : {551u, 550u}) {
        const QByteArray ff(version == 551 ? 16 : 0, '\xff');
        const QByteArray zero(16, '\0');
        FB f;
        f.u32(version).u16(3).hex("abcdef").u32(0xFFFFFFFF).u16(2).u16(3).u16(5).u32(0xFFFFFF8F).u32(7);
        f.u16(0xFFFF).str("Wurzel ü").u32(0xDEADBEEF).u32(3).u16(4);
        // A: depth 1, number 9.
        f.u32(1).u32(9).u16(0xFFFE).str(QString()).u32(0x80000001).u32(1).u16(5);
        f.str("1234567").u16(0xFFFF).time(2004, 2, 0, 29, 23, 59, 59, 999).u16(250).u16(7).u32(0xFFFFFFF8);
        f.str("Öffentlich").u16(0).time(0, 0, 1, 2, 3, 4, 5, 6).bytes(ff).u32(5).hex("0102030405");
        f.u32(3).str("!7").str("!99").str("\\\\server\\share\\x.txt");
        // B: depth 2, number 7, a negative NoteSize (no note, no bytes), a link back to A.
        f.u32(2).u32(7).u16(12).str("Kind").u32(0).u32(2).u16(15);
        f.str(QString()).u16(35).time(1999, 12, 5, 31, 0, 0, 0, 0).u16(100).u16(1).u32(7);
        f.str("öffentlich").u16(20).time(2025, 6, 0, 1, 0, 0, 0, 0).bytes(zero.left(ff.size())).u32(0xFFFFFFFF);
        f.u32(1).str("!9");

        Document doc;
        QCOMPARE(DocumentFile::loadFromBytes(f, &doc), DocumentFile::Loaded);
        // The bytes written back show every field read; these are what they cannot show: what the fields mean.
        QVERIFY(doc.hideCompleted && doc.showNoteWindow && doc.showDueDate && doc.showStatistics && doc.viewAscending);
        const Item *a = doc.root()->child(0);
        const Item *b = a->child(0);
        QVERIFY(doc.current() == b && a->isExpanded() && !a->isAscending() && !b->isExpanded() && b->isAscending());
        QVERIFY(!a->showIcon() && !a->autoProgress() && !a->isItalic() && b->showIcon() && b->autoProgress() &&
                b->isItalic());

        // Written back: only the five document flags, 826 for the unset image, 0 for the unset colour, the current Item
        // numbered 1, A numbered 2 when met, the dead link as "!0".
        FB e;
        e.u32(551).u16(3).hex("abcdef").u32(0x8F).u16(2).u16(3).u16(5).u32(0xFFFFFF8F).u32(1);
        e.u16(826).str("Wurzel ü").u32(0xDEADBEEF).u32(3).u16(4);
        e.u32(1).u32(2).u16(0xFFFE).str(QString()).u32(0x80000001).u32(1).u16(5);
        e.str("1234567").u16(0).time(2004, 2, 0, 29, 23, 59, 59, 999).u16(250).u16(7).u32(0);
        e.str("Öffentlich").u16(0).time(0, 0, 1, 2, 3, 4, 5, 6).bytes(ff.isEmpty() ? zero : ff);
        e.u32(5).hex("0102030405");
        e.u32(3).str("!1").str("!0").str("\\\\server\\share\\x.txt");
        e.u32(2).u32(1).u16(12).str("Kind").u32(0).u32(2).u16(15);
        e.str(QString()).u16(35).time(1999, 12, 5, 31, 0, 0, 0, 0).u16(100).u16(1).u32(7);
        e.str("öffentlich").u16(20).time(2025, 6, 0, 1, 0, 0, 0, 0).zeroTime().u32(0);
        e.u32(1).str("!2");
        QCOMPARE(DocumentFile::toBytes(doc), e.data());
    }
}

void TestDocumentFile::olderVersionsAreWrittenBackAs551()
{
    // 500 and 501 keep the password as plain text (it becomes the digest of "abc"), the note type in DocFlags bit 8,
    // and no CreationDate sort: 500 reads Sort 5 as manual order.
    for (const quint32 version : {500u, 501u}) {
        const quint16 sort = version == 500 ? 15 : 5;
        FB f;
        f.u32(version).str("abc").u32(0x100 | 0x01).u16(1).u16(2).u32(0x20).u32(1);
        f.u16(5).str("R").u32(0).u32(2).u16(5);
        f.u32(1).u32(1).u16(0).str("i").u32(0).u32(2).u16(5);
        f.str(QString()).u16(0).zeroTime().u16(0).u16(1).u32(1).str("Work").u16(10).zeroTime();
        f.u32(0).u32(0);
        FB e;
        e.u32(551).u16(16).hex("ce1473cf80c6b3fda8e3dfc006adc315").u32(0x01).u16(1).u16(1).u16(2).u32(0x20).u32(1);
        e.u16(5).str("R").u32(0).u32(2).u16(sort);
        e.u32(1).u32(1).u16(0).str("i").u32(0).u32(2).u16(sort);
        e.str(QString()).u16(0).zeroTime().u16(0).u16(1).u32(1).str("Work").u16(10).zeroTime();
        e.zeroTime().u32(0).u32(0);
        QCOMPARE(writtenBack(f), e.data());
    }
}

void TestDocumentFile::version410LegacyRecords()
{
    DocumentFile::setLegacyDocumentsFolder("/docs");
    FB f;
    // HideCompleted, ShowDueDate, ViewAscending, ShowStatistics, hide bits 14 and 16; note window shown, rich ink.
    f.u32(410).fixed("pw", 16).u32(0x14415).u32(0x00010002).u32(3);
    f.fixed("Legacy title", 96);
    const int headerSize = f.size();
    // Complete, expanded, current, progress bar, automatic.
    f.u32(0x395).fixed("Erledigt", 96).u16(30).u16(4).fixed("Home", 64);
    f.time(2003, 7, 2, 16, 0, 0, 0, 0).fixed("2h", 8).u16(2).u16(9);
    f.time(2003, 1, 3, 2, 8, 15, 0, 0).u32(1).u32(5).u32(42);
    QCOMPARE(f.size() - headerSize, 392);
    f.u32(2).fixed("!6", 260).fixed("\\My Documents\\Letters\\a.psw", 260);
    f.u32(4).hex("41004200");
    // Bit 7 without bit 8 (bit 9, automatic, beside it): no status. Depth 3 right after depth 1 is tolerated here.
    // Image (icon + 796) and Colour are 0xFFFF, which this layout keeps.
    f.u32(0x280).fixed("Tief", 96).u16(0xFFFF - 796).u16(9).fixed(QString(), 64);
    f.zeroTime().fixed(QString(), 8).u16(0).u16(0xFFFF).zeroTime().u32(3).u32(6).u32(42).u32(0).u32(0);
    // Plain check box with its own progress; depth 0 climbs to the top. Bit 8 without bit 7 is still a check box.
    f.u32(0x100).fixed("Drei", 96).u16(1).u16(0).fixed("Home", 64);
    f.zeroTime().fixed(QString(), 8).u16(0).u16(0).zeroTime().u32(0).u32(7).u32(60);
    f.u32(2).fixed("/docs/Projects/x.txt", 260).fixed("/docsother/y.txt", 260);
    f.u32(0);

    Document doc;
    QCOMPARE(DocumentFile::loadFromBytes(f, &doc), DocumentFile::Loaded);
    QCOMPARE(doc.root()->child(0)->taskTimeType(), quint16(3)); // the one field a 551 file does not keep
    // The password's digest, priority one up, a link into the old documents folder made relative, the current as 1.
    FB e;
    e.u32(551).u16(16).hex("d29e9e1676c2b9d01b1e10adce084822").u32(0x8F).u16(1).u16(2).u16(3).u32(0x50).u32(1);
    e.u16(0).str("Legacy title").u32(0).u32(2).u16(15);
    e.u32(1).u32(1).u16(826).str("Erledigt").u32(0).u32(3).u16(15).str("2h").u16(9);
    e.time(2003, 1, 3, 2, 8, 15, 0, 0).u16(100).u16(2).u32(0x03).str("Home").u16(5);
    e.time(2003, 7, 2, 16, 0, 0, 0, 0).zeroTime().u32(4).hex("41004200");
    e.u32(2).str("!2").str("Letters\\a.psw");
    e.u32(2).u32(2).u16(0xFFFF).str("Tief").u32(0).u32(2).u16(15).str(QString()).u16(0xFFFF);
    e.zeroTime().u16(42).u16(0).u32(0x03).str(QString()).u16(10).zeroTime().zeroTime().u32(0).u32(0);
    e.u32(1).u32(3).u16(797).str("Drei").u32(0).u32(2).u16(15).str(QString()).u16(0);
    e.zeroTime().u16(60).u16(1).u32(0x01).str("Home").u16(1).zeroTime().zeroTime().u32(0);
    e.u32(2).str("Projects/x.txt").str("/docsother/y.txt");
    QCOMPARE(DocumentFile::toBytes(doc), e.data());

    // Every record of the file is needed: a record cut short is damage.
    for (int cut : {1, 100, 392, 392 + 4 + 520}) {
        Document partial;
        QCOMPARE(DocumentFile::loadFromBytes(f.data().chopped(cut), &partial), DocumentFile::Damaged);
    }
}

void TestDocumentFile::damagedFilesAreRefused()
{
    const DocumentFile::LoadResult loaded = DocumentFile::Loaded;
    const DocumentFile::LoadResult damaged = DocumentFile::Damaged;
    const DocumentFile::LoadResult unsupported = DocumentFile::UnsupportedVersion;
    const FB header = FB().u32(551).u16(0).u32(0).u16(0).u16(0).u16(0).u32(0).u32(0).u16(0);
    const struct {
        const char *what;
        QByteArray file;
        DocumentFile::LoadResult result;
    } rows[] = {
        {"version 552", FB().u32(552).u16(0), unsupported},
        {"version 411", FB().u32(411), unsupported},
        {"hash longer than the file", FB().u32(551).u16(0xFFFF).hex("0102"), damaged},
        {"root name count 0xFFFFFFFF", FB(header).u32(0xFFFFFFFF), damaged},
        {"500 password count huge", FB().u32(500).u32(0x40000000).u16(97), damaged},
        {"410 header cut", FB().u32(410).fixed(QString(), 16).u32(0), damaged},
        {"410 TaskTime of 7 units", file410("1234567", 0), loaded},
        {"410 TaskTime of 8 units", file410("12345678", 0), damaged},
        {"410 link count huge", file410(QString(), 0x10000000), damaged},
        {"TaskTime of 7 units", file551({{.taskTime = "1234567"}}), loaded},
        {"TaskTime of 8 units", file551({{.taskTime = "12345678"}}), damaged},
        {"note size beyond the file", file551({{.noteSize = 0x7FFFFFFF}}), damaged},
        {"link count huge", file551({{.linkCount = 0x7FFFFFFF}}), damaged},
        {"empty links that end the file", file551({{.links = {QString(), QString()}}}), loaded},
        {"first entry at depth 2", file551({{.depth = 2}}), damaged},
        {"depth 0", file551({{.depth = 0}}), damaged},
        {"depth 1 to 3", file551({{}, {.depth = 3, .number = 2}}), damaged},
        {"three stray bytes after an entry", file551({Entry()}) + QByteArray::fromHex("010000"), damaged},
    };
    for (const auto &row : rows) {
        Document doc;
        QVERIFY2(DocumentFile::loadFromBytes(row.file, &doc) == row.result, row.what);
    }
}

void TestDocumentFile::everyTruncationIsDamageOrAnEarlierEnd()
{
    // Depth 3 back to 1 is valid: the entry climbs two levels at once.
    const QList<Entry> entries{
        {1, 1, "a", {"!3"}}, {2, 2, "b"}, {3, 3, "c"}, {1, 4, "d", {"!1", "http://x"}}, {2, 5, "e"}};
    QList<int> ends;
    for (int i = 0; i <= entries.size(); ++i)
        ends.append(int(file551(entries.first(i), 2).size()));
    const QByteArray file = file551(entries, 2);
    for (int length = 0; length <= file.size(); ++length) {
        Document doc;
        const DocumentFile::LoadResult result = DocumentFile::loadFromBytes(file.left(length), &doc);
        const int complete = int(ends.indexOf(length));
        QVERIFY2(result == (complete < 0 ? DocumentFile::Damaged : DocumentFile::Loaded),
                 qPrintable(QString::number(length)));
        if (complete >= 0)
            QCOMPARE(DocumentFile::toBytes(doc).size(), ends[complete]); // the entries read, none more
    }

    // Written back: the current Item numbered 1, the link target c numbered when the link is met.
    QCOMPARE(writtenBack(file),
             file551({{1, 2, "a", {"!3"}}, {2, 1, "b"}, {3, 3, "c"}, {1, 4, "d", {"!2", "http://x"}}, {2, 5, "e"}}, 1));
}

void TestDocumentFile::linksCurrentAndCategories()
{
    // Two entries share number 5: the later one is the one links and the current number name.
    const QStringList links{"!5", "!6", "!x", "!", "!0", "!99999999999", "!4294967296", "mailto:a@b"};
    Document doc;
    const QByteArray file = file551({{1, 5, "first"}, {1, 5, "second", links}, {1, 6}}, 5);
    QCOMPARE(DocumentFile::loadFromBytes(file, &doc), DocumentFile::Loaded);
    const TreeNode *root = doc.root();
    QCOMPARE(doc.current(), root->child(1));
    QCOMPARE(root->child(1)->links(), QStringList({root->child(1)->linkText(), root->child(2)->linkText(), "!0", "!0",
                                                   "!0", "!0", "!0", "mailto:a@b"}));

    // A current number that no entry has, or one below 1, leaves the root current.
    for (quint32 current : {9u, 0u, 0xFFFFFFFFu}) {
        Document other;
        QCOMPARE(DocumentFile::loadFromBytes(file551({{.number = 2}}, current), &other), DocumentFile::Loaded);
        QCOMPARE(other.current(), other.root());
    }

    QList<Entry> entries;
    for (const char *category : {"Work", "work", "", "Work", "WORK", "Home"})
        entries.append({.category = QLatin1String(category)});
    Document sorted;
    QCOMPARE(DocumentFile::loadFromBytes(file551(entries), &sorted), DocumentFile::Loaded);
    QCOMPARE(sorted.categories, QStringList({"Work", "work", "WORK", "Home"}));
}

void TestDocumentFile::writerNumbersCurrentAndLinkTargetsFirstAndBranches()
{
    Document doc;
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

    const QByteArray expected = file551({{1, 2, "a", {"!3", "!0"}}, {2, 4, "b"}, {1, 1, "c", {"!2"}}, {1, 3, "d"}}, 1);
    QCOMPARE(DocumentFile::toBytes(doc), expected);

    Document other;
    other.passwordHash = QByteArray::fromHex("0011");
    other.noteType = 2;
    Item *top = add(other.root(), "top");
    Item *branch = add(top, "branch", 6);
    Item *inner = add(branch, "inner");
    Item *leaf = add(inner, "leaf");
    branch->setExpanded(true);
    branch->setSort(1);
    branch->setExtraWord(5);
    // A link inside the branch and one to an Item outside it, which is dead in the branch's file.
    leaf->setLinks({inner->linkText(), top->linkText()});
    other.setCurrent(leaf);

    FB e;
    e.u32(551).u16(2).hex("0011").u32(0x82).u16(2).u16(0).u16(0).u32(0).u32(0);
    e.u16(6).str("branch").u32(5).u32(3).u16(1);
    entry(e, {1, 1, "inner"});
    entry(e, {2, 2, "leaf", {"!1", "!3"}});
    QCOMPARE(DocumentFile::branchToBytes(other, branch), e.data());
    QTemporaryDir dir;
    QVERIFY(DocumentFile::saveBranch(other, branch, dir.filePath("branch.qbx")));
    QVERIFY(FB::read(dir.filePath("branch.qbx")) == e.data());
}

void TestDocumentFile::fileResultsAndBytePrimitives()
{
    QTemporaryDir dir;
    Document doc;
    QCOMPARE(DocumentFile::load(dir.filePath(QStringLiteral("absent.qbx")), &doc), DocumentFile::NotFound);
    QCOMPARE(DocumentFile::load(dir.path(), &doc), DocumentFile::Damaged);

    Document source;
    DocumentGenerator::generate(&source, {40, 1, false, 0});
    const QString path = dir.filePath("doc.qbx");
    QVERIFY(DocumentFile::save(source, path));
    Document loaded;
    QCOMPARE(DocumentFile::load(path, &loaded), DocumentFile::Loaded);
    // Saving to its own path replaces the file; a note larger than the writer's buffer reaches the file whole.
    loaded.root()->child(1)->setNote(QByteArray(3 << 20, 'n') + QByteArray(2, '\0'));
    QVERIFY(DocumentFile::save(loaded));
    QVERIFY(FB::read(path) == DocumentFile::toBytes(loaded));
    QVERIFY(!DocumentFile::save(loaded, dir.filePath("no/such/folder.qbx")));

    // A file on disk is read from a mapping with the same checks: cut anywhere, it is damage and stays as it was.
    const QByteArray whole = DocumentFile::toBytes(source);
    for (const qsizetype length : {qsizetype(0), qsizetype(3), whole.size() / 2, whole.size() - 1}) {
        const QString cut = writeFile(dir, QStringLiteral("cut%1.qbx").arg(length), whole.left(length));
        Document damaged;
        QVERIFY2(DocumentFile::load(cut, &damaged) == DocumentFile::Damaged, qPrintable(QString::number(length)));
        QVERIFY(FB::read(cut) == whole.left(length));
    }

    // Skipping nothing is no failure; skipping back or past the end fails the reader for good.
    ByteReader in(QByteArray("abcdefgh"));
    in.skip(0);
    in.skip(6);
    QVERIFY(in.ok() && in.u16() == quint16('g' | 'h' << 8));
    for (const qint64 size : {qint64(-1), qint64(9)}) {
        ByteReader cut(QByteArray("abcdefgh"));
        cut.skip(size);
        QVERIFY2(!cut.ok() && cut.u16() == 0, qPrintable(QString::number(size)));
    }
    // A byte buffered before a block larger than the whole buffer reaches the device first.
    QBuffer device;
    QVERIFY(device.open(QIODevice::WriteOnly));
    ByteWriter out(&device);
    out.block("a");
    out.block(QByteArray(3 << 20, 'b'));
    QVERIFY(out.finish());
    QVERIFY(device.data() == "a" + QByteArray(3 << 20, 'b'));
}

void TestDocumentFile::importIntoNode()
{
    QTemporaryDir dir;
    const char *hash = "ce1473cf80c6b3fda8e3dfc006adc315";
    const QString path =
        writeFile(dir, "import.qbx", file551({{1, 1, "one", {"!2"}}, {2, 2, "two"}, {1, 3, "three"}}, 2, 2, hash));
    Document doc;
    Item *target = add(doc.root(), "target");
    Item *existing = add(target, "existing");
    QList<QPair<quint16, quint16>> conversions;
    const auto prompt = [&](const QByteArray &asked) { return asked == QByteArray::fromHex(hash); };
    const auto convert = [&conversions](TreeNode *root, quint16 from, quint16 to) {
        QCOMPARE(root->childCount(), 2);
        conversions.append({from, to});
    };
    QCOMPARE(DocumentFile::importInto(&doc, target, path, prompt, convert), DocumentFile::Loaded);
    QCOMPARE(conversions, (QList<QPair<quint16, quint16>>{{2, 0}}));
    QVERIFY(target->childCount() == 3 && target->child(0) == existing && target->child(2)->name() == "three");
    QCOMPARE(doc.linkTarget(target->child(1)->links()[0]), target->child(1)->child(0));
    // The imported file's header leaves the document as it was.
    QVERIFY(doc.noteType == 0 && doc.passwordHash.isEmpty() && doc.current() == doc.root());

    // Without a converter of the caller's, the notes are converted here; a note type nobody knows cannot be.
    Document plain;
    const QString rich = writeFile(dir, "rich.qbx", file551({{.note = "{\\rtf1\\ansi Hi}"}}, 0, 2));
    QCOMPARE(DocumentFile::importInto(&plain, plain.root(), rich, {}), DocumentFile::Loaded);
    QCOMPARE(plain.root()->child(0)->note(), QByteArray::fromHex("480069000000"));
    // Refused, nothing added: an unknown note type, no password, a cut file, another version, no file, a stub.
    const auto import = [&](const char *name, const QByteArray &bytes, const DocumentFile::PasswordPrompt &prompt) {
        return DocumentFile::importInto(&plain, plain.root(), writeFile(dir, name, bytes), prompt);
    };
    const auto yes = [](const QByteArray &) { return true; };
    const auto no = [](const QByteArray &) { return false; };
    FB old;
    old.u32(550).u16(0).u32(0).u16(0).u16(0).u16(0).u32(0).u32(0).u16(0).str("R").u32(0).u32(2).u16(15);
    QCOMPARE(import("odd.qbx", file551({{.note = "??"}}, 0, 9), {}), DocumentFile::Damaged);
    QCOMPARE(import("p.qbx", file551({Entry()}, 0, 0, "0011"), no), DocumentFile::Cancelled);
    QCOMPARE(import("p.qbx", file551({Entry()}, 0, 0, "0011"), {}), DocumentFile::Cancelled);
    QCOMPARE(import("d.qbx", file551({{}, {.number = 2}}).chopped(3), yes), DocumentFile::Damaged);
    QCOMPARE(import("o.qbx", old, yes), DocumentFile::UnsupportedVersion);
    QCOMPARE(import("e.qbx", "\x27\x02", yes), DocumentFile::Damaged);
    QCOMPARE(DocumentFile::importInto(&plain, plain.root(), dir.filePath("absent"), yes), DocumentFile::Damaged);
    QCOMPARE(plain.root()->childCount(), 1);
}

QTEST_GUILESS_MAIN(TestDocumentFile)
void TestDocumentFile::chainOfAMillionLevels()
{
    Document chain;
    DocumentGenerator::generate(&chain, {1000000, 3, true, 0});
    FB tail; // one more entry back at depth 1 climbs the whole chain at once
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

#include "tst_documentfile.moc"
