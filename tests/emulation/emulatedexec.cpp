// Loaded into every program that runs under the emulator, before its libraries.
//
// The emulator hands exec() to the kernel, which cannot execute a program for 32-bit ARM. Here such
// a program is started through the emulator. The machine's own shell could not do that, so where
// one is asked for, the shell for 32-bit ARM beside the libraries is taken.

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <elf.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr const char *emulator = "/usr/bin/qemu-arm";
// Far more than any test hands over.
constexpr std::size_t mostArguments = 1000;

const char *emulatedShell(std::string_view file)
{
    if (file == "/bin/sh" || file == "/usr/bin/sh")
        return SYSROOT "/bin/sh";
    if (file == "/bin/bash" || file == "/usr/bin/bash")
        return SYSROOT "/bin/bash";
    return nullptr;
}

bool isForArm(const char *file)
{
    if (::access(file, X_OK) != 0)
        return false;
    const int descriptor = ::open(file, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    Elf32_Ehdr header{};
    const bool isRead = ::read(descriptor, &header, sizeof header) == ssize_t{sizeof header};
    ::close(descriptor);
    return isRead && std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0
           && header.e_machine == EM_ARM;
}

} // namespace

// The C library's execve() and execv(). They are called after fork(), where memory must not be
// allocated.
extern "C" int execute(const char *file, char *const *arguments, char *const *variables) noexcept
    __asm__("execve");
extern "C" int executeInheriting(const char *file, char *const *arguments) noexcept
    __asm__("execv");

int execute(const char *file, char *const *arguments, char *const *variables) noexcept
{
    const char *const shell = emulatedShell(file);
    const char *const program = shell != nullptr ? shell : file;
    if (!isForArm(program))
        return static_cast<int>(::syscall(SYS_execve, program, arguments, variables));

    std::array<const char *, mostArguments> emulated{emulator, "-L",         SYSROOT,
                                                     "-0",     arguments[0], program};
    std::size_t count = 6;
    for (char *const *argument = arguments + 1; *argument != nullptr; ++argument) {
        if (count + 1 == emulated.size()) {
            errno = E2BIG;
            return -1;
        }
        emulated[count++] = *argument;
    }
    return static_cast<int>(::syscall(SYS_execve, emulator, emulated.data(), variables));
}

int executeInheriting(const char *file, char *const *arguments) noexcept
{
    return execute(file, arguments, environ);
}
