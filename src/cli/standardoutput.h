#pragma once

#include "cli/exitcodes.h"
#include "storage/safesave.h"

#include <QByteArray>
#include <QTextStream>
#include <cerrno>
#include <cstdio>
#include <unistd.h>

/// The standard output of the commands that print a document (dump, view,
/// find), written straight to the descriptor so that every failed write is
/// seen: a full disk or a closed pipe ends the command with a message and
/// WriteFailed instead of a cut output and success.
namespace StandardOutput {

inline int &failure()
{
    static int code = 0;
    return code;
}

inline void write(const char *data, qint64 size)
{
    std::fflush(stdout); // anything printed through stdio goes first
    while (size > 0 && failure() == 0) {
        const ssize_t n = ::write(STDOUT_FILENO, data, size_t(size));
        if (n < 0) {
            if (errno != EINTR)
                failure() = errno;
            continue;
        }
        data += n;
        size -= n;
    }
}

inline void write(const QByteArray &bytes)
{
    write(bytes.constData(), bytes.size());
}

/// Ends the output: the close is checked too (some file systems report a
/// failed write only then). Returns status, or WriteFailed after a failure.
inline int finish(int status)
{
    std::fflush(stdout);
    if (failure() == 0 && ::close(STDOUT_FILENO) != 0 && errno != EINTR)
        failure() = errno;
    if (failure() == 0)
        return status;
    QTextStream(stderr) << "qbx: cannot write the standard output: " << SafeSave::reason(failure()) << "\n";
    return ExitCode::WriteFailed;
}

} // namespace StandardOutput
