#include "storage/settings.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

// Every case works on a settings file of its own in a temporary folder; the user's own store is never opened.
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

    // Settings loaded from a store of the given lines, the first layout's share 45 in memory before.
    Settings loaded(const char *ini, quint16 splitBefore = 45)
    {
        QSettings store(storeWith(QByteArray("[General]\n") + ini + '\n'), QSettings::IniFormat);
        Settings settings;
        settings.splitPct = splitBefore;
        if (!settings.load(store))
            qFatal("the store cannot be read");
        return settings;
    }

private Q_SLOTS:
    void defaultsOnFirstStartOrUnusableStore();
    void loadRules();
    void roundTrip();
};

void TestSettings::defaultsOnFirstStartOrUnusableStore()
{
    // An empty store loads what a new Settings holds, but for the default document, which stays as it was.
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

    // A store whose folder would have to be made inside a plain file can be neither created nor written.
    const QString path = storeWith(QByteArray("not a folder")) + "/sub/store.ini";
    QSettings unusable(path, QSettings::IniFormat);
    QVERIFY(!settings.load(unusable));
    QCOMPARE(valuesIn(savedStore(settings)), valuesIn(savedStore(Settings())));
    QVERIFY(!settings.save(unusable));
    QVERIFY(!QFile::exists(path));
}

void TestSettings::loadRules()
{
    QCOMPARE(loaded("Version=700\nFontSize=3").fontSize, 100); // an index into the old list of sizes
    QCOMPARE(loaded("Version=700\nFontSize=10").fontSize, 10);
    QCOMPARE(loaded("Version=700\nSplitPct7=5636130").splitPct7, 60); // 0x00560022: 86 is out of range, 34 not read
    QCOMPARE(loaded("Version=700\nSplitPct7=5570595").splitPct7, 85); // 0x00550023: 85 is the edge, 35 not read
    QCOMPARE(loaded("Version=700\nSplitPct=50").splitPct, 45);
    QCOMPARE(loaded("Version=700", 90).splitPct, 60);
    QCOMPARE(loaded("SplitPct=35").splitPct, 35);
    QCOMPARE(loaded("SplitPct=34").splitPct, 60);
    QCOMPARE(loaded("Version=610\nSplitPct=50").splitPct, 50);
    QCOMPARE(loaded("Version=700\nFlags=0").flags, 3u);
    QCOMPARE(loaded("Flags=0").flags, 0u);
    QCOMPARE(loaded("Flags=524288").flags, 0x001u);
    QCOMPARE(loaded("Flags=1").flags, 0x000u); // unknown old bits are dropped
    QCOMPARE(loaded("Flags=0\nDispMode=1\nWordDirect=1").flags, 0x300u);
    QCOMPARE(loaded("Flags=0\nDispMode=2").flags, 0x000u);
    QCOMPARE(loaded("Version=700\nFlags=1\nDispMode=1\nWordDirect=1").flags, 0x001u); // old values ignored
    QCOMPARE(loaded("Version=610\nFlags=1843616\nDispMode=1\nWordDirect=1").flags, 0x37Fu);
    QCOMPARE(loaded("Version=700\nNoteZoom=big").noteZoom, 100);
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

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
