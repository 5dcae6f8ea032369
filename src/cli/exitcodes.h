#pragma once

/// The exit statuses of every qbx command, in one place. Each command's help
/// says which of them it gives.
namespace ExitCode {

inline constexpr int Ok = 0;
/// The document is damaged or unreadable (for find: nothing matched); also a
/// load or text import that ran out of memory.
inline constexpr int Damaged = 1;
/// A version this program does not read; also a bad command line.
inline constexpr int Unsupported = 2;
inline constexpr int Usage = 2;
/// Refused: a format error, a wrong password, nothing to export, an existing file.
inline constexpr int Refused = 3;
inline constexpr int NotFound = 4;
/// Writing failed: the document, an export or the standard output.
inline constexpr int WriteFailed = 5;
/// Another program held the document's lock for longer than the wait.
inline constexpr int Locked = 6;
/// The file changed on disk between this command's load and its save; --force
/// writes anyway.
inline constexpr int ChangedOnDisk = 7;
/// Memory ran out outside a load or an import.
inline constexpr int OutOfMemory = 8;
/// The calendar store could not be used, or an object could not be created.
inline constexpr int CalendarFailed = 9;

} // namespace ExitCode
