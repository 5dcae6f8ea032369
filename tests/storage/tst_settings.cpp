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

    // A store of the given contents the settings were saved to.
    QString savedStore(const Settings &settings, const QByteArray &ini = QByteArray())
    {
        const QString path = storeWith(ini);
        QSettings store(path, QSettings::IniFormat);
        return settings.save(store) ? path : QString();
    }

    static QVariantMap valuesIn(const QString &path)
    {
        QSettings store(path, QSettings::IniFormat);
        QVariantMap values;
        for (const QString &key : store.allKeys())
            values.insert(key, store.value(key));
        return values;
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
    void loadRules();
    void roundTrip();
    void unusableStoreKeepsDefaults();
};

void TestSettings::firstStartDefaults()
{
    // An empty store loads what a new Settings holds, but for the default
    // document, which stays as it was.
    QSettings store(storeWith(QByteArray()), QSettings::IniFormat);
    Settings settings;
    settings.defFile = "/kept/when/absent.qbx";
    settings.fontSize = 200;
    settings.favIcons = {9};
    QVERIFY(settings.load(store));
    Settings fresh;
    fresh.defFile = settings.defFile;
    // Saved, they leave nothing of the old layout.
    const QByteArray old("[General]\nSplitPct=50\nDispMode=1\nWordDirect=1\nFavIcons=x\n");
    QCOMPARE(valuesIn(savedStore(settings, old)), valuesIn(savedStore(fresh)));
}

void TestSettings::loadRules()
{
    const struct {
        const char *ini;
        quint16 splitBefore; // the first layout's share in memory
        const char *field;
        uint expected;
    } rows[] = {
        {"Version=700\nFontSize=3", 45, "fontSize", 100}, // an index into the old list of sizes
        {"Version=700\nFontSize=10", 45, "fontSize", 10},
        {"Version=700\nSplitPct7=5636130", 45, "splitPct7", 60}, // 0x00560022: 86 is out of range, 34 not read
        {"Version=700\nSplitPct7=5570595", 45, "splitPct7", 85}, // 0x00550023: 85 is the edge, 35 not read
        {"Version=700\nSplitPct=50", 45, "splitPct", 45},
        {"Version=700", 90, "splitPct", 60},
        {"SplitPct=35", 45, "splitPct", 35},
        {"SplitPct=34", 45, "splitPct", 60},
        {"Version=610\nSplitPct=50", 45, "splitPct", 50},
        {"Version=700\nFlags=0", 45, "flags", 3},
        {"Flags=0", 45, "flags", 0},
        {"Flags=524288", 45, "flags", 0x001},
        {"Flags=1", 45, "flags", 0x000}, // unknown old bits are dropped
        {"Flags=0\nDispMode=1\nWordDirect=1", 45, "flags", 0x300},
        {"Flags=0\nDispMode=2", 45, "flags", 0x000},
        {"Version=700\nFlags=1\nDispMode=1\nWordDirect=1", 45, "flags", 0x001}, // old values ignored
        {"Version=610\nFlags=1843616\nDispMode=1\nWordDirect=1", 45, "flags", 0x37F},
        {"Version=700\nNoteZoom=big", 45, "noteZoom", 100},
    };
    for (const auto &row : rows) {
        QSettings store(storeWith(QByteArray("[General]\n") + row.ini + '\n'), QSettings::IniFormat);
        Settings settings;
        settings.splitPct = row.splitBefore;
        QVERIFY(settings.load(store));
        QVERIFY2(valueOf(settings, row.field) == row.expected, row.ini);
    }
}

void TestSettings::roundTrip()
{
    const Settings custom{.fontSize = 120,
                          .prgColour = 4,
                          .splitPct7 = 45,
                          .expViewSep = 1,
                          .expOtherSep = 3,
                          .xmlEncode = 2,
                          .branchTab = 6,
                          .noteZoom = 175,
                          .undoLimit = 7,
                          .textImport = 0x00020101,
                          .defFile = "/home/ü/Täsks, 2.qbx",
                          .templateFile = "/home/ü/my.qbt",
                          .sound = "(None)",
                          .flags = 0x3FF,
                          .favIcons = {1, 826, 65535},
                          .ansiCodePage = "windows-1250",
                          .calendarStore = "https://dav.example.org/calendars/ü/tasks/",
                          .calendarUser = "ü@example.org"};
    // The first layout's share in the low word; icons as 16-bit little-endian numbers.
    const QString path = savedStore(custom);
    QCOMPARE(valuesIn(path).value(QStringLiteral("SplitPct7")).toUInt(), 0x002D003Cu);
    QCOMPARE(valuesIn(path).value(QStringLiteral("FavIcons")).toByteArray(), QByteArray::fromHex("01003a03ffff"));
    // Loaded and saved again, every value comes back as it was written.
    QSettings store(path, QSettings::IniFormat);
    Settings loaded;
    QVERIFY(loaded.load(store));
    QCOMPARE(valuesIn(savedStore(loaded)), valuesIn(path));

    // An odd last byte is no icon.
    const QString odd = storeWith(QByteArray());
    QSettings(odd, QSettings::IniFormat).setValue("FavIcons", QByteArray::fromHex("05000c0307"));
    QSettings oddStore(odd, QSettings::IniFormat);
    QVERIFY(loaded.load(oddStore));
    QCOMPARE(loaded.favIcons, (QList<quint16>{5, 0x30c}));
}

void TestSettings::unusableStoreKeepsDefaults()
{
    // A store whose folder would have to be made inside a plain file can be
    // neither created nor written.
    const QString path = storeWith(QByteArray("not a folder")) + "/sub/store.ini";
    QSettings store(path, QSettings::IniFormat);
    Settings settings;
    settings.fontSize = 200;
    QVERIFY(!settings.load(store));
    QCOMPARE(settings.fontSize, 80);
    QVERIFY(!settings.save(store));
    QVERIFY(!QFile::exists(path));
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
