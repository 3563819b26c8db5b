#include "processstate.h"

#include <QDir>
#include <QString>

#include <algorithm>
#include <array>
#include <cfenv>
#include <clocale>
#include <csignal>

#include <dirent.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The open descriptors and what they lead to. The one that reads the folder is not shown.
QByteArrayList descriptors()
{
    QByteArrayList lines;
    DIR *const folder = ::opendir("/proc/self/fd");
    if (folder == nullptr)
        qFatal("/proc/self/fd cannot be read");
    while (const dirent *const entry = ::readdir(folder)) {
        const QByteArray name(entry->d_name);
        if (name.startsWith('.') || name.toInt() == ::dirfd(folder))
            continue;
        const QByteArray link = "/proc/self/fd/" + name;
        std::array<char, 256> target{};
        if (::readlink(link.constData(), target.data(), target.size() - 1) < 0)
            qFatal("descriptor %s cannot be read", name.constData());
        lines.append("descriptor " + name + ": " + target.data());
    }
    ::closedir(folder);
    std::sort(lines.begin(), lines.end());
    return lines;
}

QByteArray threads()
{
    const QDir tasks(QStringLiteral("/proc/self/task"));
    return "threads: "
           + QByteArray::number(tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

// What each signal does. Some numbers are the C library's own.
QByteArrayList signalActions()
{
    QByteArrayList lines;
    for (int number = 1; number <= SIGRTMAX; ++number) {
        struct sigaction action = {};
        if (::sigaction(number, nullptr, &action) != 0)
            continue;
        QByteArray does = "handled";
        if (action.sa_handler == SIG_DFL)
            does = "default";
        if (action.sa_handler == SIG_IGN)
            does = "ignored";
        lines.append("signal " + QByteArray::number(number) + ": " + does);
    }
    sigset_t blocked;
    ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
    for (int number = 1; number <= SIGRTMAX; ++number) {
        if (::sigismember(&blocked, number) == 1)
            lines.append("blocked signal " + QByteArray::number(number));
    }
    return lines;
}

QByteArray fileMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return "mode of new files: without " + QByteArray::number(mask, 8);
}

QByteArrayList environment()
{
    QByteArrayList lines;
    for (char **entry = environ; *entry != nullptr; ++entry)
        lines.append(QByteArray("environment ") + *entry);
    return lines;
}

// How numbers are rounded, which errors raise a signal, and on x86 whether tiny numbers count.
QByteArray floatingPoint()
{
    QByteArray line = "floating point: rounding " + QByteArray::number(std::fegetround())
                      + ", signals " + QByteArray::number(::fegetexcept());
#ifdef __SSE__
    constexpr unsigned int flagsOfThePast = 0x3F;
    line += ", MXCSR " + QByteArray::number(__builtin_ia32_stmxcsr() & ~flagsOfThePast, 16);
#endif
    return line;
}

} // namespace

QByteArrayList processState()
{
    QByteArrayList state = descriptors();
    state += threads();
    state += signalActions();
    state += QByteArray("locale: ") + std::setlocale(LC_ALL, nullptr);
    state += "working folder: " + QDir::currentPath().toUtf8();
    state += fileMode();
    state += environment();
    state += floatingPoint();
    return state;
}

quint64 heapInUse()
{
    const struct mallinfo2 use = ::mallinfo2();
    return use.uordblks + use.hblkhd;
}
