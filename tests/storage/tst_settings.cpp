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

private Q_SLOTS:
    void loadEdgeCases_data();
    void loadEdgeCases();
    void splitKeepsInMemoryValue_data();
    void splitKeepsInMemoryValue();
    void oldFlagsMoveToNewBits_data();
    void oldFlagsMoveToNewBits();
    void stringsAndIcons();
    void saveWritesNewLayout();
    void roundTrip();
    void unusableStoreKeepsDefaults();
};

void TestSettings::loadEdgeCases_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<uint>("flags");
    QTest::addColumn<int>("fontSize");
    QTest::addColumn<int>("splitPct");
    QTest::addColumn<int>("splitPct7");
    QTest::addColumn<int>("noteZoom");
    QTest::addColumn<QString>("sound");

    QTest::newRow("first start") << QByteArray() << 3u << 80 << 60 << 60 << 100 << "Alarm1";
    QTest::newRow("font index 3") << QByteArray("[General]\nVersion=700\nFontSize=3\n") << 3u << 100 << 60 << 60 << 100
                                  << "Alarm1";
    QTest::newRow("font index 9") << QByteArray("[General]\nVersion=700\nFontSize=9\n") << 3u << 160 << 60 << 60 << 100
                                  << "Alarm1";
    QTest::newRow("font height 10") << QByteArray("[General]\nVersion=700\nFontSize=10\n") << 3u << 10 << 60 << 60
                                    << 100 << "Alarm1";
    // 0x00560022: high word 86 is out of range, low word 34 is not read.
    QTest::newRow("split 86 out of range")
        << QByteArray("[General]\nVersion=700\nSplitPct7=5636130\n") << 3u << 80 << 60 << 60 << 100 << "Alarm1";
    // 0x00500028: high word 80 is used, low word 40 is not.
    QTest::newRow("split 80") << QByteArray("[General]\nVersion=700\nSplitPct7=5242920\n") << 3u << 80 << 60 << 80
                              << 100 << "Alarm1";
    // 0x00550023: 85 and 35 are the edges of the range.
    QTest::newRow("split at the edges") << QByteArray("[General]\nSplitPct=35\nSplitPct7=5570595\n") << 3u << 80 << 35
                                        << 85 << 100 << "Alarm1";
    QTest::newRow("old split 34") << QByteArray("[General]\nSplitPct=34\n") << 3u << 80 << 60 << 60 << 100 << "Alarm1";
    QTest::newRow("old split ignored in new layout")
        << QByteArray("[General]\nVersion=700\nSplitPct=50\n") << 3u << 80 << 60 << 60 << 100 << "Alarm1";
    QTest::newRow("old split 50") << QByteArray("[General]\nVersion=610\nSplitPct=50\n") << 3u << 80 << 50 << 60 << 100
                                  << "Alarm1";
    QTest::newRow("flags 0 new layout") << QByteArray("[General]\nVersion=700\nFlags=0\n") << 3u << 80 << 60 << 60
                                        << 100 << "Alarm1";
    QTest::newRow("flags kept new layout")
        << QByteArray("[General]\nVersion=700\nFlags=528\n") << 528u << 80 << 60 << 60 << 100 << "Alarm1";
    QTest::newRow("flags 0 old layout") << QByteArray("[General]\nFlags=0\n") << 0u << 80 << 60 << 60 << 100
                                        << "Alarm1";
    QTest::newRow("values present") << QByteArray("[General]\nVersion=700\nNoteZoom=150\nSound=Chime\n") << 3u << 80
                                    << 60 << 60 << 150 << "Chime";
    QTest::newRow("not a number") << QByteArray("[General]\nVersion=700\nNoteZoom=big\nFontSize=\n") << 3u << 80 << 60
                                  << 60 << 100 << "Alarm1";
}

void TestSettings::loadEdgeCases()
{
    QFETCH(QByteArray, ini);
    QFETCH(uint, flags);
    QFETCH(int, fontSize);
    QFETCH(int, splitPct);
    QFETCH(int, splitPct7);
    QFETCH(int, noteZoom);
    QFETCH(QString, sound);

    QSettings store(storeWith(ini), QSettings::IniFormat);
    Settings settings;
    settings.splitPct = 0; // an in-memory value out of range is repaired too
    QVERIFY(settings.load(store));
    QCOMPARE(settings.flags, flags);
    QCOMPARE(settings.fontSize, fontSize);
    QCOMPARE(settings.splitPct, splitPct);
    QCOMPARE(settings.splitPct7, splitPct7);
    QCOMPARE(settings.noteZoom, noteZoom);
    QCOMPARE(settings.sound, sound);
    QCOMPARE(settings.prgColour, 1);
    QCOMPARE(settings.expViewSep, 2);
    QCOMPARE(settings.expOtherSep, 0);
    QCOMPARE(settings.xmlEncode, 0);
    QCOMPARE(settings.branchTab, 1);
    QCOMPARE(settings.textImport, 0x0001032Cu);
    QCOMPARE(settings.ansiCodePage, QStringLiteral("windows-1252"));
}

void TestSettings::splitKeepsInMemoryValue_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");

    QTest::newRow("new layout keeps 45") << QByteArray("[General]\nVersion=700\nSplitPct7=5242920\n") << 45 << 45;
    QTest::newRow("new layout repairs 90") << QByteArray("[General]\nVersion=700\nSplitPct7=5242920\n") << 90 << 60;
    QTest::newRow("old layout replaces 45") << QByteArray("[General]\nSplitPct=70\n") << 45 << 70;
}

void TestSettings::splitKeepsInMemoryValue()
{
    QFETCH(QByteArray, ini);
    QFETCH(int, before);
    QFETCH(int, after);
    QSettings store(storeWith(ini), QSettings::IniFormat);
    Settings settings;
    settings.splitPct = quint16(before);
    QVERIFY(settings.load(store));
    QCOMPARE(settings.splitPct, after);
}

void TestSettings::oldFlagsMoveToNewBits_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<uint>("flags");

    QTest::newRow("case insensitive") << QByteArray("[General]\nFlags=524288\n") << 0x001u;    // 0x80000
    QTest::newRow("keep exported") << QByteArray("[General]\nFlags=1048576\n") << 0x002u;      // 0x100000
    QTest::newRow("reserved") << QByteArray("[General]\nFlags=32\n") << 0x004u;                // 0x20
    QTest::newRow("long tap") << QByteArray("[General]\nFlags=262144\n") << 0x008u;            // 0x40000
    QTest::newRow("calendar categories") << QByteArray("[General]\nFlags=128\n") << 0x010u;    // 0x80
    QTest::newRow("normal font") << QByteArray("[General]\nFlags=8192\n") << 0x020u;           // 0x2000
    QTest::newRow("bold") << QByteArray("[General]\nFlags=256\n") << 0x040u;                   // 0x100
    QTest::newRow("unknown old bits dropped") << QByteArray("[General]\nFlags=1\n") << 0x000u; // 0x1
    QTest::newRow("compact and word processor")
        << QByteArray("[General]\nFlags=0\nDispMode=1\nWordDirect=1\n") << 0x300u;
    QTest::newRow("display mode 2 is not compact") << QByteArray("[General]\nFlags=0\nDispMode=2\n") << 0x000u;
    QTest::newRow("new layout ignores old values")
        << QByteArray("[General]\nVersion=700\nFlags=1\nDispMode=1\nWordDirect=1\n") << 0x001u;
    QTest::newRow("all old bits") << QByteArray("[General]\nVersion=610\nFlags=1843616\nDispMode=1\nWordDirect=1\n")
                                  << 0x37Fu;
}

void TestSettings::oldFlagsMoveToNewBits()
{
    QFETCH(QByteArray, ini);
    QFETCH(uint, flags);
    QSettings store(storeWith(ini), QSettings::IniFormat);
    Settings settings;
    QVERIFY(settings.load(store));
    QCOMPARE(settings.flags, flags);
}

void TestSettings::stringsAndIcons()
{
    {
        QSettings store(storeWith(QByteArray()), QSettings::IniFormat);
        Settings settings;
        settings.defFile = QStringLiteral("/kept/when/absent.qbx");
        QVERIFY(settings.load(store));
        QCOMPARE(settings.defFile, QStringLiteral("/kept/when/absent.qbx"));
        QVERIFY(settings.templateFile.endsWith(QStringLiteral("/QuillboxTemplates.qbt")));
        QVERIFY(settings.favIcons.isEmpty());
    }
    {
        const QString path = storeWith(QByteArray("[General]\nVersion=700\nDefFile=/home/a/List.qbx\n"
                                                  "TemplateFile=/home/a/t.qbt\nAnsiCodePage=windows-1251\n"));
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
        QCOMPARE(settings.favIcons, (QList<quint16>{5, 0x30c}));
    }
    {
        const QString path = storeWith(QByteArray());
        {
            QSettings writer(path, QSettings::IniFormat);
            writer.setValue(QStringLiteral("FavIcons"), QByteArray("\x05", 1));
        }
        QSettings store(path, QSettings::IniFormat);
        Settings settings;
        settings.favIcons = {9};
        QVERIFY(settings.load(store));
        QVERIFY(settings.favIcons.isEmpty());
    }
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
    saved.splitPct = 70;
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
    {
        QSettings store(path, QSettings::IniFormat);
        QVERIFY(saved.save(store));
    }
    QSettings store(path, QSettings::IniFormat);
    Settings loaded;
    QVERIFY(loaded.load(store));
    QCOMPARE(loaded.fontSize, saved.fontSize);
    QCOMPARE(loaded.prgColour, saved.prgColour);
    QCOMPARE(loaded.splitPct, 60); // the first layout's share is not read back
    QCOMPARE(loaded.splitPct7, saved.splitPct7);
    QCOMPARE(loaded.expViewSep, saved.expViewSep);
    QCOMPARE(loaded.expOtherSep, saved.expOtherSep);
    QCOMPARE(loaded.xmlEncode, saved.xmlEncode);
    QCOMPARE(loaded.branchTab, saved.branchTab);
    QCOMPARE(loaded.noteZoom, saved.noteZoom);
    QCOMPARE(loaded.textImport, saved.textImport);
    QCOMPARE(loaded.defFile, saved.defFile);
    QCOMPARE(loaded.templateFile, saved.templateFile);
    QCOMPARE(loaded.sound, saved.sound);
    QCOMPARE(loaded.flags, saved.flags);
    QCOMPARE(loaded.favIcons, saved.favIcons);
    QCOMPARE(loaded.ansiCodePage, saved.ansiCodePage);
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
