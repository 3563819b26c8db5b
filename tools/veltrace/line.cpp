#include "line.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::size_t mostEventBytes = 65536;
// A byte takes six characters at most; the rest has room for all other members.
constexpr std::size_t mostText = 6 * mostEventBytes + 1024;

std::array<char, mostText> lineText;
char *nextCharacter = lineText.data();

void append(const char *text)
{
    nextCharacter = stpcpy(nextCharacter, text);
}

template<typename... Arguments>
void append(const char *format, Arguments... arguments)
{
    const auto room = static_cast<std::size_t>(lineText.data() + lineText.size() - nextCharacter);
    nextCharacter += std::snprintf(nextCharacter, room, format, arguments...);
}

// A signal may interrupt the host where the lock of the system's own functions for dates is held.
void appendDate(std::int64_t daysSince1970)
{
    // Years here begin in March, so that the leap day is the last one; eras have 400 of them.
    const std::int64_t days = daysSince1970 + 719468;
    const std::int64_t era = days / 146097;
    const std::int64_t dayOfEra = days % 146097;
    const std::int64_t year
        = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * year + year / 4 - year / 100);
    const std::int64_t month = (5 * dayOfYear + 2) / 153;
    append("%04" PRId64 "-%02" PRId64 "-%02" PRId64, era * 400 + year + (month < 10 ? 0 : 1),
           month < 10 ? month + 3 : month - 9, dayOfYear - (153 * month + 2) / 5 + 1);
}

void appendTime()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t seconds = now.tv_sec;
    appendDate(seconds / 86400);
    append("T%02d:%02d:%02d.%06ldZ", static_cast<int>(seconds / 3600 % 24),
           static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60), now.tv_nsec / 1000);
}

void appendByte(unsigned char byte)
{
    if (byte == '\r')
        append("\\r");
    else if (byte == '\n')
        append("\\n");
    else if (byte < 0x20 || byte > 0x7e)
        append("\\u%04x", static_cast<unsigned int>(byte));
    else if (byte == '"' || byte == '\\')
        append("\\%c", byte);
    else
        *nextCharacter++ = static_cast<char>(byte);
}

} // namespace

Line lineOf(const Event &event, std::size_t first)
{
    const std::size_t rest = event.size - first;
    const std::size_t count = rest < mostEventBytes ? rest : mostEventBytes;
    nextCharacter = lineText.data();
    append(R"({"time":")");
    appendTime();
    append(R"(","process":%d,"thread":%ld,"connection":%u,"peer":"%s","event":"%s")", getpid(),
           syscall(SYS_gettid), event.connection, event.peer, event.name);
    if (event.outcome != nullptr)
        append(R"(,"outcome":"%s")", event.outcome);
    if (event.waited >= 0)
        append(R"(,"waited_us":%)" PRId64, event.waited);
    if (count > 0) {
        append(R"(,"bytes":")");
        for (std::size_t i = first; i < first + count; ++i)
            appendByte(static_cast<unsigned char>(event.bytes[i]));
        append("\"");
    }
    append("}\n");
    return {lineText.data(), static_cast<std::size_t>(nextCharacter - lineText.data()), count};
}
