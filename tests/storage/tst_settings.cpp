#include "storage/settings.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

// Every case works on a settings file of its own in a temporary folder; the
// user's own store is never opened.
class TestSettings : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    int m_serial = 0;

    QString storeWith(const QByteArray &ini)
    {
        const QString path = m_dir.filePath(QStringLiteral("store%1.ini").arg(++m_serial));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(ini) != ini.size())
            qFatal("cannot write the store");
        return path;
    }

    static uint valueOf(const Settings &s, const QByteArray &name)
    {
        if (name == "flags")
            return s.flags;
        if (name == "fontSize")
            return s.fontSize;
        if (name == "splitPct")
            return s.splitPct;
        return name == "splitPct7" ? s.splitPct7 : s.noteZoom;
    }

private Q_SLOTS:
    void firstStartDefaults();
    void loadRules_data();
    void loadRules();
    void stringsAndIcons();
    void saveWritesNewLayout();
    void roundTrip();
    void unusableStoreKeepsDefaults();
};

void TestSettings::firstStartDefaults()
{
    QSettings store(storeWith(QByteArray()), QSettings::IniFormat);
    Settings settings;
    settings.defFile = QStringLiteral("/kept/when/absent.qbx");
    settings.favIcons = {9};
    QVERIFY(settings.load(store));
    QCOMPARE(settings.flags, 3u);
    QCOMPARE(settings.fontSize, 80);
    QCOMPARE(settings.splitPct, 60);
    QCOMPARE(settings.splitPct7, 60);
    QCOMPARE(settings.noteZoom, 100);
    QCOMPARE(settings.sound, QStringLiteral("Alarm1"));
    QCOMPARE(settings.prgColour, 1);
    QCOMPARE(settings.expViewSep, 2);
    QCOMPARE(settings.expOtherSep, 0);
    QCOMPARE(settings.xmlEncode, 0);
    QCOMPARE(settings.branchTab, 1);
    QCOMPARE(settings.textImport, 0x0001032Cu);
    QCOMPARE(settings.ansiCodePage, QStringLiteral("windows-1252"));
    QCOMPARE(settings.defFile, QStringLiteral("/kept/when/absent.qbx"));
    QVERIFY(settings.templateFile.endsWith(QStringLiteral("/QuillboxTemplates.qbt")));
    QVERIFY(settings.favIcons.isEmpty());
}

void TestSettings::loadRules_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<int>("splitBefore"); // the first layout's share in memory
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<uint>("expected");

    QTest::newRow("font index 3") << QByteArray("Version=700\nFontSize=3") << 45 << QByteArray("fontSize") << 100u;
    QTest::newRow("font height 10") << QByteArray("Version=700\nFontSize=10") << 45 << QByteArray("fontSize") << 10u;
    // 0x00560022: high word 86 is out of range, low word 34 is not read.
    QTest::newRow("split 86") << QByteArray("Version=700\nSplitPct7=5636130") << 45 << QByteArray("splitPct7") << 60u;
    // 0x00550023: high word 85 is the edge of the range, low word 35 is not read.
    QTest::newRow("split 85") << QByteArray("Version=700\nSplitPct7=5570595") << 45 << QByteArray("splitPct7") << 85u;
    QTest::newRow("new layout keeps 45") << QByteArray("Version=700\nSplitPct=50") << 45 << QByteArray("splitPct")
                                         << 45u;
    QTest::newRow("new layout repairs 90") << QByteArray("Version=700") << 90 << QByteArray("splitPct") << 60u;
    QTest::newRow("old split 35") << QByteArray("SplitPct=35") << 45 << QByteArray("splitPct") << 35u;
    QTest::newRow("old split 34") << QByteArray("SplitPct=34") << 45 << QByteArray("splitPct") << 60u;
    QTest::newRow("old split 610") << QByteArray("Version=610\nSplitPct=50") << 45 << QByteArray("splitPct") << 50u;
    QTest::newRow("flags 0 new layout") << QByteArray("Version=700\nFlags=0") << 45 << QByteArray("flags") << 3u;
    QTest::newRow("flags new layout") << QByteArray("Version=700\nFlags=528") << 45 << QByteArray("flags") << 528u;
    QTest::newRow("flags 0 old layout") << QByteArray("Flags=0") << 45 << QByteArray("flags") << 0u;
    QTest::newRow("old case insensitive") << QByteArray("Flags=524288") << 45 << QByteArray("flags") << 0x001u;
    QTest::newRow("unknown old bits dropped") << QByteArray("Flags=1") << 45 << QByteArray("flags") << 0x000u;
    QTest::newRow("compact and word processor")
        << QByteArray("Flags=0\nDispMode=1\nWordDirect=1") << 45 << QByteArray("flags") << 0x300u;
    QTest::newRow("display mode 2 is not compact")
        << QByteArray("Flags=0\nDispMode=2") << 45 << QByteArray("flags") << 0x000u;
    QTest::newRow("new layout ignores old values")
        << QByteArray("Version=700\nFlags=1\nDispMode=1\nWordDirect=1") << 45 << QByteArray("flags") << 0x001u;
    QTest::newRow("all old bits") << QByteArray("Version=610\nFlags=1843616\nDispMode=1\nWordDirect=1") << 45
                                  << QByteArray("flags") << 0x37Fu;
    QTest::newRow("zoom") << QByteArray("Version=700\nNoteZoom=150") << 45 << QByteArray("noteZoom") << 150u;
    QTest::newRow("not a number") << QByteArray("Version=700\nNoteZoom=big") << 45 << QByteArray("noteZoom") << 100u;
}

void TestSettings::loadRules()
{
    QFETCH(QByteArray, ini);
    QFETCH(int, splitBefore);
    QFETCH(QByteArray, field);
    QFETCH(uint, expected);
    QSettings store(storeWith("[General]\n" + ini + '\n'), QSettings::IniFormat);
    Settings settings;
    settings.splitPct = quint16(splitBefore);
    QVERIFY(settings.load(store));
    QCOMPARE(valueOf(settings, field), expected);
}

void TestSettings::stringsAndIcons()
{
    const QString path = storeWith(QByteArray("[General]\nVersion=700\nDefFile=/home/a/List.qbx\n"
                                              "TemplateFile=/home/a/t.qbt\nAnsiCodePage=windows-1251\nSound=Chime\n"));
    {
        // An odd last byte is no icon.
        QSettings writer(path, QSettings::IniFormat);
        writer.setValue(QStringLiteral("FavIcons"), QByteArray("\x05\x00\x0c\x03\x07", 5));
    }
    QSettings store(path, QSettings::IniFormat);
    Settings settings;
    QVERIFY(settings.load(store));
    QCOMPARE(settings.defFile, QStringLiteral("/home/a/List.qbx"));
    QCOMPARE(settings.templateFile, QStringLiteral("/home/a/t.qbt"));
    QCOMPARE(settings.ansiCodePage, QStringLiteral("windows-1251"));
    QCOMPARE(settings.sound, QStringLiteral("Chime"));
    QCOMPARE(settings.favIcons, (QList<quint16>{5, 0x30c}));
}

void TestSettings::saveWritesNewLayout()
{
    const QString path = storeWith(QByteArray("[General]\nSplitPct=50\nDispMode=1\nWordDirect=1\nFavIcons=x\n"));
    Settings settings;
    settings.splitPct = 40;
    settings.splitPct7 = 75;
    settings.flags = 0x241;
    settings.favIcons = {};
    {
        QSettings store(path, QSettings::IniFormat);
        QVERIFY(settings.save(store));
    }
    QSettings check(path, QSettings::IniFormat);
    QCOMPARE(check.value(QStringLiteral("Version")).toUInt(), 700u);
    QCOMPARE(check.value(QStringLiteral("SplitPct7")).toUInt(), 0x004B0028u);
    QCOMPARE(check.value(QStringLiteral("Flags")).toUInt(), 0x241u);
    QCOMPARE(check.value(QStringLiteral("FontSize")).toUInt(), 80u);
    QCOMPARE(check.value(QStringLiteral("TextImport")).toUInt(), 0x0001032Cu);
    QCOMPARE(check.value(QStringLiteral("Sound")).toString(), QStringLiteral("Alarm1"));
    QCOMPARE(check.value(QStringLiteral("AnsiCodePage")).toString(), QStringLiteral("windows-1252"));
    for (const char *gone : {"SplitPct", "DispMode", "WordDirect", "FavIcons"})
        QVERIFY2(!check.contains(QLatin1String(gone)), gone);

    settings.favIcons = {0x0102, 7};
    {
        QSettings store(path, QSettings::IniFormat);
        QVERIFY(settings.save(store));
    }
    QSettings again(path, QSettings::IniFormat);
    QCOMPARE(again.value(QStringLiteral("FavIcons")).toByteArray(), QByteArray("\x02\x01\x07\x00", 4));
}

void TestSettings::roundTrip()
{
    const QString path = storeWith(QByteArray());
    Settings saved;
    saved.fontSize = 120;
    saved.prgColour = 4;
    saved.splitPct = 60; // the first layout's share, which is not read back
    saved.splitPct7 = 45;
    saved.expViewSep = 1;
    saved.expOtherSep = 3;
    saved.xmlEncode = 2;
    saved.branchTab = 6;
    saved.noteZoom = 175;
    saved.textImport = 0x00020101;
    saved.defFile = QStringLiteral("/home/ü/Täsks, 2.qbx");
    saved.templateFile = QStringLiteral("/home/ü/my.qbt");
    saved.sound = QStringLiteral("(None)");
    saved.flags = 0x3FF;
    saved.favIcons = {1, 826, 65535};
    saved.ansiCodePage = QStringLiteral("windows-1250");
    saved.calendarStore = QStringLiteral("https://dav.example.org/calendars/ü/tasks/");
    saved.calendarUser = QStringLiteral("ü@example.org");
    {
        QSettings store(path, QSettings::IniFormat);
        QVERIFY(saved.save(store));
    }
    // Loaded and saved again, every value comes back as it was written.
    const QString again = storeWith(QByteArray());
    {
        QSettings store(path, QSettings::IniFormat);
        Settings loaded;
        QVERIFY(loaded.load(store));
        QSettings copy(again, QSettings::IniFormat);
        QVERIFY(loaded.save(copy));
    }
    QSettings first(path, QSettings::IniFormat);
    QSettings second(again, QSettings::IniFormat);
    QCOMPARE(second.allKeys(), first.allKeys());
    for (const QString &key : first.allKeys())
        QVERIFY2(second.value(key) == first.value(key), qPrintable(key));
}

void TestSettings::unusableStoreKeepsDefaults()
{
    // A store whose folder would have to be made inside a plain file can be
    // neither created nor written.
    const QString blocker = storeWith(QByteArray("not a folder"));
    const QString path = blocker + QStringLiteral("/sub/store.ini");
    QSettings store(path, QSettings::IniFormat);
    Settings settings;
    settings.fontSize = 200;
    settings.sound = QStringLiteral("Chime");
    QVERIFY(!settings.load(store));
    QCOMPARE(settings.fontSize, 80);
    QCOMPARE(settings.sound, QStringLiteral("Alarm1"));
    QCOMPARE(settings.flags, 3u);
    QVERIFY(!settings.save(store));
    QVERIFY(!QFile::exists(path));
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
