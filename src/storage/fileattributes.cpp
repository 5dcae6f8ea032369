#include "storage/fileattributes.h"

#ifdef Q_OS_LINUX
#include <QByteArray>
#include <cerrno>
#include <cstring>
#include <sys/xattr.h>
#endif

#ifdef Q_OS_LINUX
namespace {

// The names of the attributes a save carries over: the access ACL and the
// user's own attributes. Others (security labels, trusted.*) belong to the
// system and are not ours to copy.
bool isCopiedAttribute(const char *name)
{
    return std::strncmp(name, "user.", 5) == 0 || std::strcmp(name, "system.posix_acl_access") == 0;
}

} // namespace

namespace FileAttributes {

bool copy(int from, int to)
{
    ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size < 0)
        return errno == ENOTSUP; // a file system without attributes has none to lose
    QByteArray names(size, '\0');
    size = ::flistxattr(from, names.data(), size_t(names.size()));
    if (size < 0)
        return false;
    for (const char *name = names.constData(); name < names.constData() + size; name += std::strlen(name) + 1) {
        if (!isCopiedAttribute(name))
            continue;
        const ssize_t length = ::fgetxattr(from, name, nullptr, 0);
        if (length < 0)
            return false;
        QByteArray value(length, '\0');
        const ssize_t got = ::fgetxattr(from, name, value.data(), size_t(value.size()));
        if (got < 0 || ::fsetxattr(to, name, value.constData(), size_t(got), 0) != 0)
            return false;
    }
    return true;
}
} // namespace FileAttributes
#else
namespace FileAttributes {

bool copy(int, int)
{
    return true;
}
} // namespace FileAttributes
#endif
