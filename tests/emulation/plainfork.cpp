// Loaded into every program that runs under the emulator, before its libraries.
//
// Qt asks the kernel by an empty waitid(P_PIDFD) whether a process can be waited for by a
// descriptor, and if so starts processes with CLONE_PIDFD. The emulator passes the question on but
// refuses the flag, so that no process can be started, and Qt holds -1 for the id of the one that
// it did not get. Refusing the question as well makes Qt start its processes by fork().

#include <cerrno>

#include <dlfcn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace {
using Call = long(long, long, long, long, long, long, long) noexcept;
}

// The C library's syscall(), which takes its arguments in the same places.
extern "C" Call systemCall __asm__("syscall");

long systemCall(long number, long first, long second, long third, long fourth, long fifth,
                long sixth) noexcept
{
    static auto *const next = reinterpret_cast<Call *>(::dlsym(RTLD_NEXT, "syscall"));
    if (number == SYS_waitid && first == P_PIDFD) {
        errno = EINVAL;
        return -1;
    }
    return next(number, first, second, third, fourth, fifth, sixth);
}
