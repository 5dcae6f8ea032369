#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

class QIODevice;

/// Replaces a file without ever leaving it half written. The new content goes
/// to a temporary file in the target's own folder, which is flushed and synced
/// to the disk and then renamed over the target in one atomic step. If any
/// step fails the temporary file is removed and the old file stays exactly as
/// it was.
///
/// The temporary file is hidden and named ".<target name>.XXXXXX.part", so a
/// listing of "*.qbx" (or of the target's own extension) never shows it, even
/// when a crash leaves one behind.
class SafeSave {
public:
    /// Streams the new content; returns false to abandon the save.
    using Writer = std::function<bool(QIODevice &out)>;

    static bool write(const QString &path, const QByteArray &bytes, QString *error = nullptr);
    static bool write(const QString &path, const Writer &writer, QString *error = nullptr);

    /// Whether a file name is one of our temporary files.
    static bool isTemporaryName(const QString &fileName);
};
