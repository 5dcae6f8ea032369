#include "notes/notetext.h"
#include "platform/clock.h"
#include "storage/templatefile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestTemplateFile : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString path(const char *name) const { return m_dir.filePath(QLatin1String(name)); }

    static QByteArray readAll(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(path));
    }

    static std::unique_ptr<Template> named(const QString &name, quint16 noteType)
    {
        auto entry = std::make_unique<Template>(noteType);
        entry->setTemplateName(name);
        return entry;
    }

    // One template record, version 551, written out field by field.
    static QByteArray sampleRecord()
    {
        return QByteArray("\x01\x00\x00\x00"
                          "T\x00"    // TemplateName "T"
                          "\x00\x00" // TemplateNoteType 0
                          "\x3a\x03" // Image 826
                          "\x02\x00\x00\x00"
                          "A\x00"
                          "b\x00"                            // Name "Ab"
                          "\x00\x00\x00\x00"                 // ExtraWord
                          "\x02\x00\x00\x00"                 // StdFlags: ascending
                          "\x0f\x00"                         // Sort 15
                          "\x00\x00\x00\x00"                 // TaskTime ""
                          "\x03\x00"                         // Colour 3
                          "\xe8\x07\x03\x00\x02\x00\x05\x00" // Created 2024-03-05, Tuesday
                          "\x0a\x00\x1e\x00\x00\x00\x00\x00" //   10:30:00.000
                          "\x32\x00"                         // Progress 50
                          "\x02\x00"                         // StatusType 2
                          "\x05\x00\x00\x00"                 // Flags: show icon, italic
                          "\x01\x00\x00\x00"
                          "C\x00"                            // Category "C"
                          "\x07\x00"                         // Priority 7
                          "\xe9\x07\x01\x00\x00\x00\x02\x00" // DueDate 2025-01-02
                          "\x00\x00\x00\x00\x00\x00\x00\x00"
                          "\x00\x00\x00\x00\x00\x00\x00\x00" // ReminderTime none
                          "\x00\x00\x00\x00\x00\x00\x00\x00"
                          "\x06\x00\x00\x00"    // NoteSize 6
                          "h\x00i\x00\x00\x00", // Note "hi"
                          108);
    }

private Q_SLOTS:
    void missingFileIsCreatedEmpty();
    void writesRecordBytes();
    void readsRecordBytes();
    void olderVersionsAndOddValues();
    void damagedFileKeepsWhatWasRead_data();
    void damagedFileKeepsWhatWasRead();
    void menuOffersTheDocumentsNoteType();
    void listOperations();
    void applyingCopiesAttributesNotLinks();
};

void TestTemplateFile::missingFileIsCreatedEmpty()
{
    TemplateFile templates;
    templates.add(named(QStringLiteral("old"), 0));
    const QString file = path("missing.qbt");
    QVERIFY(!templates.load(file));
    QCOMPARE(templates.count(), 0);
    QCOMPARE(readAll(file), QByteArray());

    // An empty list is the header alone.
    QVERIFY(templates.save(file));
    QCOMPARE(readAll(file), QByteArray("\x27\x02\x00\x00\x00\x00\x00\x00", 8));
    templates.add(named(QStringLiteral("old"), 0));
    QVERIFY(templates.load(file));
    QCOMPARE(templates.count(), 0);
}

void TestTemplateFile::writesRecordBytes()
{
    Clock::setFixed(QDateTime(QDate(2024, 3, 5), QTime(10, 30)));
    auto entry = named(QStringLiteral("T"), 0);
    Clock::reset();
    entry->setName(QStringLiteral("Ab"));
    entry->setColour(3);
    entry->storeProgress(50);
    entry->setStatusType(2);
    entry->setItalic(true);
    entry->setCategory(QStringLiteral("C"));
    entry->setPriority(7);
    entry->setDueDate({2025, 1, 0, 2, 0, 0, 0, 0});
    entry->setNote(NoteText::toPlainNote(QStringLiteral("hi")));
    TemplateFile templates;
    templates.add(std::move(entry));
    const QString file = path("one.qbt");
    QVERIFY(templates.save(file));
    QCOMPARE(readAll(file), QByteArray("\x27\x02\x00\x00\x01\x00\x00\x00", 8) + sampleRecord());
}

void TestTemplateFile::readsRecordBytes()
{
    // Every field read is written back as it was.
    const QString file = path("read.qbt");
    const QByteArray bytes = QByteArray("\x27\x02\x00\x00\x02\x00\x00\x00", 8) + sampleRecord() + sampleRecord();
    writeFile(file, bytes);
    TemplateFile templates;
    QVERIFY(templates.load(file));
    QCOMPARE(templates.count(), 2);
    QCOMPARE(templates.at(1)->templateName(), QStringLiteral("T"));
    QCOMPARE(templates.at(1)->created(), (SystemTime{2024, 3, 2, 5, 10, 30, 0, 0}));
    QVERIFY(templates.at(1)->showIcon() && templates.at(1)->isItalic() && !templates.at(1)->autoProgress());
    QVERIFY(templates.save(path("again.qbt")));
    QCOMPARE(readAll(path("again.qbt")), bytes);
}

void TestTemplateFile::olderVersionsAndOddValues()
{
    // Version 500: no reminder time; Sort 5 means manual order; an Image of
    // 0xFFFF is 826 and a Colour of 0xFFFF is 0; a negative note size means
    // no note.
    QByteArray record = sampleRecord();
    record.remove(82, 16);                                     // no ReminderTime
    record.replace(8, 2, QByteArray("\xff\xff", 2));           // Image
    record.replace(26, 2, QByteArray("\x05\x00", 2));          // Sort 5
    record.replace(32, 2, QByteArray("\xff\xff", 2));          // Colour
    record.replace(82, 10, QByteArray("\xff\xff\xff\xff", 4)); // NoteSize -1, no note bytes
    const QString file = path("old.qbt");
    writeFile(file, QByteArray("\xf4\x01\x00\x00\x01\x00\x00\x00", 8) + record);
    TemplateFile templates;
    QVERIFY(templates.load(file));
    QCOMPARE(templates.count(), 1);
    QCOMPARE(templates.at(0)->image(), 826);
    QCOMPARE(templates.at(0)->sort(), 15);
    QCOMPARE(templates.at(0)->colour(), 0);
    QCOMPARE(templates.at(0)->noteSize(), 0);
    QCOMPARE(templates.at(0)->priority(), 7);
}

void TestTemplateFile::damagedFileKeepsWhatWasRead_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("kept");
    const QByteArray two("\x27\x02\x00\x00\x02\x00\x00\x00", 8);
    QByteArray longTask = sampleRecord();
    longTask.replace(28, 4, QByteArray("\x08\x00\x00\x00", 4) + QByteArray(16, 'a'));

    QTest::newRow("second record cut") << two + sampleRecord() + sampleRecord().left(50) << 1;
    // A count far beyond the bytes is no reason to reserve room for it.
    QTest::newRow("count huge") << QByteArray("\x27\x02\x00\x00\xff\xff\xff\x7f", 8) + sampleRecord() << 1;
    QTest::newRow("task time of 8 units") << QByteArray("\x27\x02\x00\x00\x01\x00\x00\x00", 8) + longTask << 0;
    QTest::newRow("too short for its version") << QByteArray("\x27\x02", 2) << 0;
}

void TestTemplateFile::damagedFileKeepsWhatWasRead()
{
    QFETCH(QByteArray, file);
    QFETCH(int, kept);
    const QString name = path("damaged.qbt");
    writeFile(name, file);
    TemplateFile templates;
    templates.add(named(QStringLiteral("old"), 0));
    QVERIFY(!templates.load(name));
    QCOMPARE(templates.count(), kept);
}

void TestTemplateFile::menuOffersTheDocumentsNoteType()
{
    TemplateFile templates;
    templates.add(named(QStringLiteral("rich"), 2));
    for (int i = 1; i <= 11; ++i)
        templates.add(named(QStringLiteral("plain %1").arg(i), 0));
    templates.add(named(QStringLiteral("ink"), 1));

    const auto plain = templates.menu(0);
    QCOMPARE(int(plain.size()), 10);
    QCOMPARE(plain.front().command, 40126);
    QCOMPARE(plain.front().name, QStringLiteral("plain 1"));
    QCOMPARE(plain.back().command, 40135);
    QCOMPARE(plain.back().index, 10);
    QCOMPARE(plain.back().name, QStringLiteral("plain 10"));

    const auto rich = templates.menu(2);
    QCOMPARE(int(rich.size()), 1);
    QCOMPARE(rich.front().command, 40125);
    const auto ink = templates.menu(1);
    QCOMPARE(int(ink.size()), 1);
    QCOMPARE(ink.front().command, 40137);

    QCOMPARE(templates.forCommand(40137)->templateName(), QStringLiteral("ink"));
    QCOMPARE(templates.forCommand(TemplateFile::BlankCommand), nullptr);
    QCOMPARE(templates.forCommand(40138), nullptr);
}

void TestTemplateFile::listOperations()
{
    TemplateFile templates;
    QVERIFY(templates.addNew(named(QStringLiteral("a"), 0)));
    QVERIFY(!templates.addNew(named(QStringLiteral("b"), 2), 0)); // the caller fixed plain text
    QVERIFY(templates.addNew(named(QStringLiteral("c"), 2), 2));
    QCOMPARE(templates.count(), 2);
    QCOMPARE(templates.deleteQuestion(1), QStringLiteral("Are you sure to delete template 'c'?"));

    auto edited = std::unique_ptr<Template>(templates.at(0)->clone());
    edited->setTemplateName(QStringLiteral("a2"));
    edited->setPriority(3);
    QCOMPARE(templates.at(0)->templateName(), QStringLiteral("a"));
    templates.replace(0, std::move(edited));
    QCOMPARE(templates.at(0)->templateName(), QStringLiteral("a2"));
    QCOMPARE(templates.at(0)->templateNoteType(), 0);
    QCOMPARE(templates.at(0)->priority(), 3);
    templates.remove(0);
    QCOMPARE(templates.count(), 1);
    QCOMPARE(templates.at(0)->templateName(), QStringLiteral("c"));

    QCOMPARE(Template::nameError(QString()), QStringLiteral("Please enter a name."));
    QCOMPARE(Template::nameError(QStringLiteral("   ")), QStringLiteral("Please enter a name."));
    QVERIFY(Template::nameError(QStringLiteral("Weekly")).isEmpty());
}

void TestTemplateFile::applyingCopiesAttributesNotLinks()
{
    Template entry(0);
    entry.setName(QStringLiteral("Weekly review"));
    entry.setImage(12);
    entry.setPriority(3);
    entry.setCategory(QStringLiteral("Work"));
    entry.setStatusType(2);
    entry.storeProgress(25);
    entry.setColour(5);
    entry.setItalic(true);
    entry.setShowIcon(false);
    entry.setDueDate({2025, 6, 0, 1, 0, 0, 0, 0});
    entry.setTaskTime(QStringLiteral("2"));
    entry.setTaskTimeType(2);
    entry.setNote(NoteText::toPlainNote(QStringLiteral("agenda")));

    TreeNode root;
    auto *item = new Item(QStringLiteral("old"));
    root.appendChild(item);
    item->setLinks({QStringLiteral("https://example.org")});
    item->setSort(TreeNode::SortPriority);
    const SystemTime created = item->created();
    entry.applyTo(item);
    QCOMPARE(item->name(), QStringLiteral("Weekly review"));
    QCOMPARE(item->image(), 12);
    QCOMPARE(item->priority(), 3);
    QCOMPARE(item->category(), QStringLiteral("Work"));
    QCOMPARE(item->statusType(), 2);
    QCOMPARE(item->progress(), 25);
    QCOMPARE(item->colour(), 5);
    QVERIFY(item->isItalic());
    QVERIFY(!item->showIcon());
    QCOMPARE(item->dueDate(), (SystemTime{2025, 6, 0, 1, 0, 0, 0, 0}));
    QCOMPARE(item->taskTime(), QStringLiteral("2"));
    QCOMPARE(item->taskTimeType(), 2);
    QCOMPARE(NoteText::plainText(item->note(), 0), QStringLiteral("agenda"));
    QCOMPARE(item->links(), QStringList{QStringLiteral("https://example.org")});
    QCOMPARE(item->created(), created);
    QCOMPARE(item->sort(), TreeNode::SortPriority);
    entry.setAutoProgress(true);
    entry.applyTo(item);
    QVERIFY(item->autoProgress());
}

QTEST_GUILESS_MAIN(TestTemplateFile)
#include "tst_templatefile.moc"
