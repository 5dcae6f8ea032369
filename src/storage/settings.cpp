#include "storage/settings.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QtEndian>
#include <algorithm>

namespace {

const QString KeyVersion = QStringLiteral("Version");
const QString KeyFlags = QStringLiteral("Flags");
const QString KeyFontSize = QStringLiteral("FontSize");
const QString KeyPrgColour = QStringLiteral("PrgColour");
const QString KeySplitPct7 = QStringLiteral("SplitPct7");
const QString KeySplitPct = QStringLiteral("SplitPct");
const QString KeyExpViewSep = QStringLiteral("ExpViewSep");
const QString KeyExpOtherSep = QStringLiteral("ExpOtherSep");
const QString KeyXmlEncode = QStringLiteral("XmlEncode");
const QString KeyBranchTab = QStringLiteral("BranchTab");
const QString KeyNoteZoom = QStringLiteral("NoteZoom");
const QString KeyUndoLimit = QStringLiteral("UndoLimit");
const QString KeyTextImport = QStringLiteral("TextImport");
const QString KeyDefFile = QStringLiteral("DefFile");
const QString KeyTemplateFile = QStringLiteral("TemplateFile");
const QString KeySound = QStringLiteral("Sound");
const QString KeyFavIcons = QStringLiteral("FavIcons");
const QString KeyDispMode = QStringLiteral("DispMode");
const QString KeyWordDirect = QStringLiteral("WordDirect");
const QString KeyAnsiCodePage = QStringLiteral("AnsiCodePage");
const QString KeyCalendarStore = QStringLiteral("CalendarStore");
const QString KeyCalendarUser = QStringLiteral("CalendarUser");

// A 32-bit value; anything absent or not a number takes the default. Values
// beyond 32 bits keep their low word, as a DWORD would.
quint32 readDword(const QSettings &store, const QString &name, quint32 fallback)
{
    const QVariant value = store.value(name);
    if (!value.isValid())
        return fallback;
    bool ok = false;
    const qlonglong number = value.toLongLong(&ok);
    if (ok)
        return quint32(quint64(number));
    const qulonglong unsignedNumber = value.toULongLong(&ok);
    return ok ? quint32(unsignedNumber) : fallback;
}

// Strings are kept whole, however long: desktop paths can pass 260 units.
bool readString(const QSettings &store, const QString &name, QString *text)
{
    const QVariant value = store.value(name);
    if (!value.isValid() || !value.canConvert<QString>())
        return false;
    *text = value.toString();
    return true;
}

// The old layout kept the option bits at other positions.
quint32 convertOldFlags(quint32 old)
{
    struct Move {
        quint32 from;
        quint32 to;
    };
    static constexpr Move moves[] = {
        {0x80000, Settings::CaseInsensitiveFind},
        {0x100000, Settings::KeepExportedItems},
        {0x20, Settings::QuickEntryBar},
        {0x40000, Settings::LongTapEdit},
        {0x80, Settings::CalendarCategories},
        {0x2000, Settings::NormalFontForCompleted},
        {0x100, Settings::BoldFont},
    };
    quint32 flags = 0;
    for (const Move &move : moves) {
        if (old & move.from)
            flags |= move.to;
    }
    return flags;
}

quint16 repairSplit(quint16 pct)
{
    return pct < 35 || pct >= 86 ? 60 : pct;
}

QList<quint16> favIconsFromBytes(const QByteArray &bytes)
{
    QList<quint16> icons;
    // An odd last byte is no whole icon number and is ignored.
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
        icons.append(qFromLittleEndian<quint16>(bytes.constData() + i));
    return icons;
}

QList<quint16> readFavIcons(const QSettings &store)
{
    const QVariant value = store.value(KeyFavIcons);
    if (!value.isValid())
        return {};
    if (value.typeId() == QMetaType::QByteArray)
        return favIconsFromBytes(value.toByteArray());
    // A binary value that reaches us as text (as some native stores hand it
    // over) holds the same 16-bit units.
    if (value.typeId() == QMetaType::QString) {
        QList<quint16> icons;
        for (QChar c : value.toString())
            icons.append(c.unicode());
        return icons;
    }
    return {};
}

QByteArray favIconsToBytes(const QList<quint16> &icons)
{
    QByteArray bytes(icons.size() * 2, '\0');
    for (qsizetype i = 0; i < icons.size(); ++i)
        qToLittleEndian<quint16>(icons[i], bytes.data() + 2 * i);
    return bytes;
}

bool usable(const QSettings &store)
{
    return store.isWritable() && store.status() == QSettings::NoError;
}

} // namespace

QString Settings::defaultTemplateFile()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(documents).filePath(QStringLiteral("QuillboxTemplates.qbt"));
}

bool Settings::load(QSettings &store)
{
    if (!usable(store)) {
        *this = Settings();
        return false;
    }
    const quint32 version = readDword(store, KeyVersion, OldVersion);
    const bool oldLayout = version == OldVersion; // also a store never written before
    if (oldLayout) {
        flags = convertOldFlags(readDword(store, KeyFlags, 0x180000));
    } else {
        flags = readDword(store, KeyFlags, 0);
        if (flags == 0)
            flags = CaseInsensitiveFind | KeepExportedItems;
    }

    fontSize = quint16(readDword(store, KeyFontSize, 80));
    if (fontSize < 10) // an index into the old list of sizes
        fontSize = quint16((fontSize + 7) * 10);
    prgColour = quint16(readDword(store, KeyPrgColour, 1));

    // Only the high word of SplitPct7 is read back: the low word is written
    // for the first layout but that layout keeps what it has in memory,
    // unless the old layout stored it on its own.
    splitPct7 = quint16(readDword(store, KeySplitPct7, 0x003C003C) >> 16);
    if (oldLayout)
        splitPct = quint16(readDword(store, KeySplitPct, 0));
    splitPct = repairSplit(splitPct);
    splitPct7 = repairSplit(splitPct7);

    expViewSep = quint16(readDword(store, KeyExpViewSep, 2));
    expOtherSep = quint16(readDword(store, KeyExpOtherSep, 0));
    xmlEncode = quint16(readDword(store, KeyXmlEncode, 0));
    branchTab = quint16(readDword(store, KeyBranchTab, 1));
    noteZoom = quint16(readDword(store, KeyNoteZoom, 100));
    undoLimit = quint16(std::clamp<quint32>(readDword(store, KeyUndoLimit, 100), 1, 1000));
    textImport = readDword(store, KeyTextImport, 0x0001032C);

    readString(store, KeyDefFile, &defFile);
    if (!readString(store, KeySound, &sound))
        sound = QStringLiteral("Alarm1");

    if (oldLayout) {
        if (readDword(store, KeyDispMode, 0) == 1)
            flags |= CompactMode;
        if (readDword(store, KeyWordDirect, 0) == 1)
            flags |= ExternalRichEditor;
    }

    favIcons = readFavIcons(store);

    templateFile = defaultTemplateFile();
    readString(store, KeyTemplateFile, &templateFile);

    if (!readString(store, KeyAnsiCodePage, &ansiCodePage) || ansiCodePage.isEmpty())
        ansiCodePage = QStringLiteral("windows-1252");
    readString(store, KeyCalendarStore, &calendarStore);
    readString(store, KeyCalendarUser, &calendarUser);
    return true;
}

bool Settings::save(QSettings &store) const
{
    if (!usable(store))
        return false;
    store.setValue(KeyVersion, CurrentVersion);
    store.setValue(KeyFontSize, uint(fontSize));
    store.setValue(KeyFlags, uint(flags));
    store.setValue(KeyPrgColour, uint(prgColour));
    store.setValue(KeySplitPct7, uint(splitPct) | uint(splitPct7) << 16);
    store.setValue(KeyExpViewSep, uint(expViewSep));
    store.setValue(KeyExpOtherSep, uint(expOtherSep));
    store.setValue(KeyXmlEncode, uint(xmlEncode));
    store.setValue(KeyNoteZoom, uint(noteZoom));
    store.setValue(KeyUndoLimit, uint(undoLimit));
    store.setValue(KeyTextImport, uint(textImport));
    store.setValue(KeyBranchTab, uint(branchTab));
    if (favIcons.isEmpty())
        store.remove(KeyFavIcons);
    else
        store.setValue(KeyFavIcons, favIconsToBytes(favIcons));
    store.setValue(KeyDefFile, defFile);
    store.setValue(KeyTemplateFile, templateFile);
    store.setValue(KeySound, sound);
    store.setValue(KeyAnsiCodePage, ansiCodePage);
    store.setValue(KeyCalendarStore, calendarStore);
    store.setValue(KeyCalendarUser, calendarUser);
    store.remove(KeySplitPct);
    store.remove(KeyDispMode);
    store.remove(KeyWordDirect);
    store.sync();
    return store.status() == QSettings::NoError;
}

std::unique_ptr<QSettings> Settings::openUserStore()
{
#ifdef Q_OS_WIN
    // The key itself, not the organisation-and-application key below it.
    return std::make_unique<QSettings>(QStringLiteral("HKEY_CURRENT_USER\\Software\\Quillbox"),
                                       QSettings::NativeFormat);
#else
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Quillbox"),
                                       QStringLiteral("Quillbox"));
#endif
}

bool Settings::loadUserStore()
{
    return load(*openUserStore());
}

bool Settings::saveUserStore() const
{
    return save(*openUserStore());
}
