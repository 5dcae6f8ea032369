#include "platform/largeheap.h"

#include <QtGlobal>

#if defined(Q_OS_LINUX) && defined(__GLIBC__)
#include <cstdlib>
#include <cstring>
#include <unistd.h>

void LargeHeap::enable(char **argv)
{
    static const char Variable[] = "GLIBC_TUNABLES";
    // Huge pages where the heap is advised for them (the kernel's usual
    // "madvise" mode), and 64 MB more heap asked for each time it grows.
    static const char Settings[] = "glibc.malloc.hugetlb=1:glibc.malloc.top_pad=67108864";
    if (const char *current = std::getenv(Variable)) {
        // After the restart: programs started from here choose for themselves.
        if (std::strcmp(current, Settings) == 0)
            unsetenv(Variable);
        // Otherwise the user set it, and that choice stands.
        return;
    }
    if (setenv(Variable, Settings, 1) != 0)
        return;
    execv("/proc/self/exe", argv);
    unsetenv(Variable);
}

#else

void LargeHeap::enable(char **)
{
}

#endif
