#include "notes/notetext.h"
#include "storage/templatefile.h"
#include "support/filebytes.h"

#include <QTemporaryDir>
#include <QTest>

class TestTemplateFile : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString path(const char *name) const { return m_dir.filePath(QLatin1String(name)); }

    static std::unique_ptr<Template> named(const QString &name, quint16 noteType)
    {
        auto entry = std::make_unique<Template>(noteType);
        entry->setTemplateName(name);
        return entry;
    }

    // One template record, version 551: TemplateName "T", TemplateNoteType 0, Image 12, Name "Ab", ExtraWord, StdFlags
    // ascending, Sort 15, TaskTime "2", Colour 3, Created Tuesday 2024-03-05 10:30, Progress 50, StatusType 2, Flags
    // italic (no icon), Category "C", Priority 7, DueDate 2025-01-02, no ReminderTime, and the note "hi" of 6 bytes.
    static QByteArray sampleRecord()
    {
        FileBytes f;
        f.str("T").u16(0).u16(12).str("Ab").u32(0).u32(2).u16(15).str("2").u16(3).time(2024, 3, 2, 5, 10, 30, 0, 0);
        f.u16(50).u16(2).u32(4).str("C").u16(7).time(2025, 1, 0, 2, 0, 0, 0, 0).zeroTime().u32(6).hex("680069000000");
        return f;
    }

private Q_SLOTS:
    void missingAndDamagedFiles();
    void recordBytesOldVersionsAndApplying();
    void menuAndList();
};

void TestTemplateFile::missingAndDamagedFiles()
{
    TemplateFile templates;
    templates.add(named("old", 0));
    const QString file = path("missing.qbt");
    QVERIFY(!templates.load(file));
    QCOMPARE(templates.count(), 0);
    QCOMPARE(FileBytes::read(file), QByteArray());

    // An empty list is the header alone.
    QVERIFY(templates.save(file));
    QCOMPARE(FileBytes::read(file), QByteArray::fromHex("27020000 00000000"));
    templates.add(named("old", 0));
    QVERIFY(templates.load(file));
    QCOMPARE(templates.count(), 0);

    // A damaged file keeps the records read before the damage.
    QByteArray longTask = sampleRecord();
    longTask.replace(28, 6, QByteArray::fromHex("08000000") + QByteArray(16, 'a')); // a task time of 8 units
    const struct {
        QByteArray file;
        int kept;
    } damaged[] = {
        {QByteArray::fromHex("27020000 02000000") + sampleRecord() + sampleRecord().left(50), 1},
        // A count far beyond the bytes is no reason to reserve room for it.
        {QByteArray::fromHex("27020000 ffffff7f") + sampleRecord(), 1},
        {QByteArray::fromHex("27020000 01000000") + longTask, 0},
        {QByteArray::fromHex("2702"), 0}, // too short for its version
    };
    for (const auto &row : damaged) {
        QVERIFY(FileBytes::write(file, row.file));
        QVERIFY(!templates.load(file));
        QCOMPARE(templates.count(), row.kept);
    }
}

void TestTemplateFile::recordBytesOldVersionsAndApplying()
{
    // Every field read is written back as it was.
    TemplateFile templates;
    const QByteArray bytes = QByteArray::fromHex("27020000 02000000") + sampleRecord() + sampleRecord();
    QVERIFY(FileBytes::write(path("read.qbt"), bytes));
    QVERIFY(templates.load(path("read.qbt")));
    QCOMPARE(templates.count(), 2);
    QVERIFY(templates.save(path("again.qbt")));
    QCOMPARE(FileBytes::read(path("again.qbt")), bytes);

    // Applied to an Item, every attribute goes over; its links, its creation and the order of its children stay.
    Template *entry = templates.at(0);
    entry->setTaskTimeType(2);
    TreeNode root;
    auto *item = new Item(QStringLiteral("old"));
    root.appendChild(item);
    item->setLinks({QStringLiteral("https://example.org")});
    item->setSort(TreeNode::SortPriority);
    item->setAutoProgress(true);
    const SystemTime created = item->created();
    entry->applyTo(item);
    QVERIFY(item->name() == "Ab" && item->image() == 12 && item->taskTime() == "2" && item->taskTimeType() == 2);
    QVERIFY(item->colour() == 3 && item->progress() == 50 && item->statusType() == 2 && !item->autoProgress());
    QVERIFY(item->isItalic() && !item->showIcon() && item->category() == "C" && item->priority() == 7);
    QCOMPARE(item->dueDate(), (SystemTime{2025, 1, 0, 2, 0, 0, 0, 0}));
    QCOMPARE(NoteText::plainText(item->note(), 0), QStringLiteral("hi"));
    QCOMPARE(item->links(), QStringList{QStringLiteral("https://example.org")});
    QVERIFY(item->created() == created && item->sort() == TreeNode::SortPriority);

    // Version 500: no reminder time; Sort 5 is manual order; Image 0xFFFF is 826, Colour 0xFFFF is 0, NoteSize -1 none.
    QByteArray record = sampleRecord();
    record.remove(84, 16);                                     // no ReminderTime
    record.replace(8, 2, QByteArray("\xff\xff", 2));           // Image
    record.replace(26, 2, QByteArray("\x05\x00", 2));          // Sort 5
    record.replace(34, 2, QByteArray("\xff\xff", 2));          // Colour
    record.replace(84, 10, QByteArray("\xff\xff\xff\xff", 4)); // NoteSize -1, no note bytes
    QVERIFY(FileBytes::write(path("old.qbt"), QByteArray::fromHex("f4010000 01000000") + record));
    QVERIFY(templates.load(path("old.qbt")));
    QCOMPARE(templates.count(), 1);
    entry = templates.at(0);
    QVERIFY(entry->image() == 826 && entry->sort() == 15 && entry->colour() == 0 && entry->noteSize() == 0);
    QCOMPARE(entry->priority(), 7);
}

void TestTemplateFile::menuAndList()
{
    // At most ten templates of the document's note type; a command counts from the first by the place in the whole
    // list.
    TemplateFile templates;
    templates.add(named("rich", 2));
    for (int i = 1; i <= 11; ++i)
        templates.add(named(QStringLiteral("plain %1").arg(i), 0));
    templates.add(named("ink", 1));
    const auto plain = templates.menu(0);
    QCOMPARE(int(plain.size()), 10);
    QVERIFY(plain.front().command == 40126 && plain.front().name == QStringLiteral("plain 1"));
    QVERIFY(plain.back().command == 40135 && plain.back().index == 10 && plain.back().name == "plain 10");
    QCOMPARE(templates.menu(2).front().command, 40125);
    QCOMPARE(templates.menu(1).front().command, 40137);

    QCOMPARE(templates.forCommand(40125)->templateName(), QStringLiteral("rich"));
    QCOMPARE(templates.forCommand(40137)->templateName(), QStringLiteral("ink"));
    QCOMPARE(templates.forCommand(TemplateFile::BlankCommand), nullptr);
    QCOMPARE(templates.forCommand(40138), nullptr);

    QVERIFY(templates.addNew(named(QStringLiteral("c"), 2), 2));
    QVERIFY(!templates.addNew(named(QStringLiteral("b"), 2), 0)); // the caller fixed plain text
    QCOMPARE(templates.count(), 14);
    QCOMPARE(templates.deleteQuestion(13), QStringLiteral("Are you sure to delete template 'c'?"));
    QVERIFY(!Template::nameError(QStringLiteral("   ")).isEmpty() && Template::nameError("W").isEmpty());
}

QTEST_GUILESS_MAIN(TestTemplateFile)
#include "tst_templatefile.moc"
