// Loaded into a program before its libraries: each time that the program asks the clock on the
// wall, it is an hour earlier. The clock that only measures how long something takes stays right.

#include <atomic>
#include <ctime>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

std::atomic<time_t> hoursBack{0};

} // namespace

// The C library's clock_gettime() and gettimeofday().
extern "C" [[gnu::visibility("default")]] int readClock(clockid_t clock, timespec *time) noexcept
    __asm__("clock_gettime");
extern "C" [[gnu::visibility("default")]] int readTimeOfDay(timeval *time, void *zone) noexcept
    __asm__("gettimeofday");

int readClock(clockid_t clock, timespec *time) noexcept
{
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)
        time->tv_sec -= 3600 * ++hoursBack;
    return result;
}

int readTimeOfDay(timeval *time, void * /*zone*/) noexcept
{
    timespec now{};
    const int result = readClock(CLOCK_REALTIME, &now);
    time->tv_sec = now.tv_sec;
    time->tv_usec = now.tv_nsec / 1000;
    return result;
}
