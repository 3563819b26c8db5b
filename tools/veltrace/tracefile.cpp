// What the library does when it is loaded: it writes what happens on the connections to the file
// VEL_TRACE. What fails ends the trace, never the process.

#include "connections.h"
#include "line.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::array<char, PATH_MAX> fileName;
std::array<char, PATH_MAX + 2> previousName;
int file = -1;
// Tells the file from what the host opens under its number, after it has closed all that there are.
struct statx identity;
long mostBytes = 0;

// write(), but a closed pipe and the limit of a file's size raise no signal.
bool writeQuietly(int descriptor, const char *bytes, std::size_t size)
{
    sigset_t quiet;
    sigset_t blocked;
    sigset_t pending;
    sigemptyset(&quiet);
    sigaddset(&quiet, SIGPIPE);
    sigaddset(&quiet, SIGXFSZ);
    sigpending(&pending);
    sigprocmask(SIG_BLOCK, &quiet, &blocked);
    const ssize_t written = write(descriptor, bytes, size);
    const bool isWritten = written >= 0 && static_cast<std::size_t>(written) == size;
    if (sigismember(&pending, SIGPIPE) == 1)
        sigdelset(&quiet, SIGPIPE);
    if (sigismember(&pending, SIGXFSZ) == 1)
        sigdelset(&quiet, SIGXFSZ);
    const timespec atOnce = {};
    if (!isWritten)
        sigtimedwait(&quiet, nullptr, &atOnce);
    sigprocmask(SIG_SETMASK, &blocked, nullptr);
    return isWritten;
}

// The file's number is high, so that the host's own are what they would be without it.
int highNumber(int descriptor)
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t number = limit.rlim_cur < 1024 ? limit.rlim_cur : 1024;
    const int high = fcntl(descriptor, F_DUPFD_CLOEXEC, static_cast<int>(number) - 4);
    if (high < 0)
        return descriptor;
    close(descriptor);
    return high;
}

// Of the open file, if it has no name.
bool readStatus(int descriptor, const char *name, struct statx *status)
{
    return statx(descriptor, name, AT_EMPTY_PATH, STATX_BASIC_STATS, status) == 0;
}

bool openFile()
{
    // A pipe that nobody reads must not stop the host.
    const int opened = open(
        fileName.data(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0644);
    if (opened < 0 || !readStatus(opened, "", &identity))
        return false;
    file = highNumber(opened);
    return true;
}

bool isSameFile(const struct statx &status)
{
    return status.stx_ino == identity.stx_ino && status.stx_dev_major == identity.stx_dev_major
           && status.stx_dev_minor == identity.stx_dev_minor;
}

bool isOpen(struct statx *status)
{
    return readStatus(file, "", status) && isSameFile(*status);
}

// Makes the full file the one before. Another process may have done that.
bool beginNewFile()
{
    struct statx status = {};
    close(file);
    file = -1;
    if (readStatus(AT_FDCWD, fileName.data(), &status) && isSameFile(status)
        && rename(fileName.data(), previousName.data()) != 0)
        return false;
    return openFile();
}

void end()
{
    struct statx status = {};
    if (isOpen(&status))
        close(file);
    file = -1;
}

void writeLine(const char *bytes, std::size_t size)
{
    struct statx status = {};
    if (file < 0)
        return;
    // A host that begins as a daemon closes all descriptors.
    bool goesOn = isOpen(&status) || (openFile() && isOpen(&status));
    if (goesOn && S_ISREG(status.stx_mode) && status.stx_size > 0
        && status.stx_size + size > static_cast<std::uint64_t>(mostBytes))
        goesOn = beginNewFile();
    if (!goesOn || !writeQuietly(file, bytes, size))
        end();
}

void writeEvent(const Event &event)
{
    std::size_t done = 0;
    do {
        const Line line = lineOf(event, done);
        writeLine(line.text, line.size);
        done += line.eventBytes;
    } while (done < event.size);
}

// The ports of a list such as "8501,8502". False when the text is none.
bool arePorts(const char *text, Ports *ports)
{
    while (true) {
        char *end = nullptr;
        const unsigned long port = std::strtoul(text, &end, 10);
        if (*text < '0' || *text > '9' || port < 1 || port > 65535)
            return false;
        (*ports)[port / 8] |= static_cast<unsigned char>(1U << port % 8);
        if (*end == '\0')
            return true;
        if (*end != ',')
            return false;
        text = end + 1;
    }
}

const char *valueOf(const char *name, const char *otherwise)
{
    const char *const value = secure_getenv(name);
    return value != nullptr ? value : otherwise;
}

// Returns false.
bool complain(const char *problem, const char *value)
{
    std::array<char, PATH_MAX + 200> text;
    const int size
        = std::snprintf(text.data(), text.size(), "libvel-trace: nothing is traced: %s: %.*s\n",
                        problem, PATH_MAX, value);
    writeQuietly(STDERR_FILENO, text.data(), static_cast<std::size_t>(size));
    return false;
}

bool readSize()
{
    const char *const value = valueOf("VEL_TRACE_SIZE", "16777216");
    char *end = nullptr;
    mostBytes = std::strtol(value, &end, 10);
    const bool isSize = *value >= '0' && *value <= '9' && *end == '\0';
    return (isSize && mostBytes >= 1 && mostBytes <= 1000000000)
           || complain("VEL_TRACE_SIZE is no number of bytes from 1 to 1000000000", value);
}

bool readPorts(Ports *ports)
{
    const char *const value = valueOf("VEL_TRACE_PORTS", "8501");
    return arePorts(value, ports)
           || complain("VEL_TRACE_PORTS is no list of ports such as 8501,8502", value);
}

// Opens the file; a relative name stays in this folder, whatever folder the host changes to.
bool openNamedFile()
{
    const char *const value = valueOf("VEL_TRACE", "");
    if (*value == '\0')
        return complain("VEL_TRACE names no file", value);
    if (std::strlen(value) >= fileName.size())
        return complain(errorText(ENAMETOOLONG), value);
    stpcpy(fileName.data(), value);
    if (!openFile())
        return complain(errorText(errno), value);
    std::array<char, PATH_MAX> whole;
    if (realpath(value, whole.data()) != nullptr)
        fileName = whole;
    stpcpy(stpcpy(previousName.data(), fileName.data()), ".1");
    return true;
}

[[gnu::constructor]] void begin()
{
    static Ports ports;
    const int errorNumber = errno;
    if (readSize() && readPorts(&ports) && openNamedFile())
        trace(ports, writeEvent);
    errno = errorNumber;
}

} // namespace
