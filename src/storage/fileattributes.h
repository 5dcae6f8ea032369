#pragma once

#include <QtGlobal>

/// The extended attributes a save carries from the old file to its
/// replacement: the access ACL and the user's own attributes.
namespace FileAttributes {

/// Copies them from one open file to another; false when one cannot be
/// carried over (a file system without attributes has none to lose).
bool copy(int from, int to);

} // namespace FileAttributes
