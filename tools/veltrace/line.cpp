#include "line.h"

#include <array>
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

void append(const char *part)
{
    nextCharacter = stpcpy(nextCharacter, part);
}

// At least so many digits.
void appendNumber(std::int64_t number, int digits = 1)
{
    std::array<char, 20> reversed;
    int count = 0;
    for (; number > 0 || count < digits; number /= 10)
        reversed[static_cast<std::size_t>(count++)] = static_cast<char>('0' + number % 10);
    while (count > 0)
        *nextCharacter++ = reversed[static_cast<std::size_t>(--count)];
}

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
    appendNumber(era * 400 + year + (month < 10 ? 0 : 1), 4);
    append("-");
    appendNumber(month < 10 ? month + 3 : month - 9, 2);
    append("-");
    appendNumber(dayOfYear - (153 * month + 2) / 5 + 1, 2);
}

// The system's own functions for this take a lock, which may be held where a signal interrupts.
void appendTime()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t seconds = now.tv_sec;
    appendDate(seconds / 86400);
    append("T");
    appendNumber(seconds / 3600 % 24, 2);
    append(":");
    appendNumber(seconds / 60 % 60, 2);
    append(":");
    appendNumber(seconds % 60, 2);
    append(".");
    appendNumber(now.tv_nsec / 1000, 6);
    append("Z");
}

void appendByte(unsigned char byte)
{
    constexpr const char *digits = "0123456789abcdef";
    if (byte == '\r') {
        append("\\r");
    } else if (byte == '\n') {
        append("\\n");
    } else if (byte < 0x20 || byte > 0x7e) {
        append("\\u00");
        *nextCharacter++ = digits[byte >> 4];
        *nextCharacter++ = digits[byte & 15];
    } else {
        if (byte == '"' || byte == '\\')
            *nextCharacter++ = '\\';
        *nextCharacter++ = static_cast<char>(byte);
    }
}

void appendHead(const Event &event)
{
    append(R"({"time":")");
    appendTime();
    append(R"(","process":)");
    appendNumber(getpid());
    append(R"(,"thread":)");
    appendNumber(syscall(SYS_gettid));
    append(R"(,"connection":)");
    appendNumber(event.connection);
    append(R"(,"peer":")");
    append(event.peer);
    append(R"(","event":")");
    append(event.name);
    append("\"");
}

} // namespace

Line lineOf(const Event &event, std::size_t first)
{
    const std::size_t rest = event.size - first;
    const std::size_t count = rest < mostEventBytes ? rest : mostEventBytes;
    nextCharacter = lineText.data();
    appendHead(event);
    if (event.outcome != nullptr) {
        append(R"(,"outcome":")");
        append(event.outcome);
        append("\"");
    }
    if (event.waited >= 0) {
        append(R"(,"waited_us":)");
        appendNumber(event.waited);
    }
    if (count > 0) {
        append(R"(,"bytes":")");
        for (std::size_t i = first; i < first + count; ++i)
            appendByte(static_cast<unsigned char>(event.bytes[i]));
        append("\"");
    }
    append("}\n");
    return {lineText.data(), static_cast<std::size_t>(nextCharacter - lineText.data()), count};
}
