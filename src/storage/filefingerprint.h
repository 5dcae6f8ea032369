#pragma once

#include <QString>
#include <QtGlobal>

/// What a file on disk is at one moment: its device and inode, size and
/// modification time (to the nanosecond). A document keeps the fingerprint
/// of the file it loaded; before saving, a different fingerprint means
/// someone else changed or replaced the file meanwhile, and the save asks
/// (or, in qbx, refuses) instead of overwriting their change.
struct FileFingerprint {
    bool exists = false;
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 modifiedNs = 0;

    /// The fingerprint of the file path names (through its links); one with
    /// exists false when there is none.
    static FileFingerprint of(const QString &path);

    /// Whether the file at path is still the one this fingerprint was taken
    /// of. A fingerprint of no file matches only a path that is still free.
    bool matches(const QString &path) const { return *this == of(path); }

    friend bool operator==(const FileFingerprint &, const FileFingerprint &) = default;
};
