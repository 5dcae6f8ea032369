#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>
#include <memory>

class QSettings;

/// The application-wide preferences: one record, read once at start-up and
/// written back whole when the options are accepted and when the application
/// ends. The store keeps the value names, types and defaults of the older
/// registry layout, so a store written by either layout loads the same way.
///
/// Every field starts at its default. Tests load and save through a QSettings
/// on a file of their own; the application uses loadUserStore() and
/// saveUserStore(), which open the native per-user store ("Software\Quillbox"
/// on Windows, ~/.config/Quillbox/Quillbox.conf on Linux).
class Settings {
public:
    /// Bits of `flags`.
    enum Flag : quint32 {
        CaseInsensitiveFind = 1u << 0,
        /// Set means exported items are kept: the options page shows the
        /// inverse ("Delete items after export" cleared).
        KeepExportedItems = 1u << 1,
        /// The quick entry bar is shown; set by its menu command, which the
        /// options dialog has no control for.
        QuickEntryBar = 1u << 2,
        LongTapEdit = 1u << 3,
        /// The category list comes from the calendar store.
        CalendarCategories = 1u << 4,
        NormalFontForCompleted = 1u << 5,
        BoldFont = 1u << 6,
        GreyCompleted = 1u << 7,
        CompactMode = 1u << 8,
        /// Rich notes open in the desktop's word processor for full-screen editing.
        ExternalRichEditor = 1u << 9,
        /// Text files without a byte-order mark are imported as UTF-8
        /// rather than in the code page.
        Utf8TextImport = 1u << 10,
    };

    /// The layout version that save() writes.
    static constexpr quint32 CurrentVersion = 700;
    /// The layout of a store without a version: the older one.
    static constexpr quint32 OldVersion = 610;

    quint16 fontSize = 80;
    quint16 prgColour = 1;
    /// Share of the screen given to the tree, first and second layout, in
    /// percent; kept within 35 to 85.
    quint16 splitPct = 60;
    quint16 splitPct7 = 60;
    quint16 expViewSep = 2;
    quint16 expOtherSep = 0;
    quint16 xmlEncode = 0;
    /// Indentation of the branch text export: 0 none, 1 tab, 2 to 6 one to
    /// five spaces.
    quint16 branchTab = 1;
    quint16 noteZoom = 100;
    /// How many steps each open document can undo (1 to 1000).
    quint16 undoLimit = 100;
    quint32 textImport = 0x0001032C;
    QString defFile;
    QString templateFile = defaultTemplateFile();
    QString sound = QStringLiteral("Alarm1");
    quint32 flags = CaseInsensitiveFind | KeepExportedItems;
    /// The icons offered first in the icon chooser, in order.
    QList<quint16> favIcons;
    /// The code page of ANSI text exports and imports, by its ICU name.
    QString ansiCodePage = QStringLiteral("windows-1252");
    /// Where tasks and appointments go: a folder or a CalDAV collection
    /// address; empty means the default calendar folder. The CalDAV password
    /// is never kept here.
    QString calendarStore;
    QString calendarUser;

    bool testFlag(Flag flag) const { return flags & flag; }
    void setFlag(Flag flag, bool on) { flags = on ? (flags | flag) : (flags & ~quint32(flag)); }

    /// Fills the record from the store, converting a store of the older
    /// layout. A store that cannot be read or written leaves every field at
    /// its default and returns false.
    bool load(QSettings &store);
    /// Writes every value and removes the values the older layout used. A
    /// store that cannot be written is left alone and false is returned; the
    /// caller shows nothing.
    bool save(QSettings &store) const;

    /// The user's own store: "HKEY_CURRENT_USER\Software\Quillbox" on
    /// Windows, ~/.config/Quillbox/Quillbox.conf on Linux.
    static std::unique_ptr<QSettings> openUserStore();
    bool loadUserStore();
    bool saveUserStore() const;

    /// "QuillboxTemplates.qbt" in the user's documents folder.
    static QString defaultTemplateFile();
};
