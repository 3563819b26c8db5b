#include "memory/generator.h"

#include <QtMath>

#include <algorithm>

namespace {

/// Spreads neighbouring numbers over all 64 bits (the finaliser of SplitMix64).
quint64 mixed(quint64 number)
{
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

} // namespace

Generator ramp(qint64 from, qint64 to, qint64 period)
{
    return [=](qint64 elapsed) {
        const qint64 levels = qAbs(to - from) + 1;
        const qint64 level = levels * (elapsed % period) / period;
        return to < from ? from - level : from + level;
    };
}

Generator sine(qint64 mean, qint64 amplitude, qint64 period)
{
    return [=](qint64 elapsed) {
        const double phase = static_cast<double>(elapsed % period) / static_cast<double>(period);
        return mean + qRound64(static_cast<double>(amplitude) * qSin(2 * M_PI * phase));
    };
}

Generator square(qint64 low, qint64 high, qint64 period)
{
    return [=](qint64 elapsed) { return elapsed % period < (period + 1) / 2 ? high : low; };
}

Generator randomNumbers(qint64 minimum, qint64 maximum, qint64 period, quint32 seed)
{
    return [=](qint64 elapsed) {
        const auto step = static_cast<quint64>(elapsed / period);
        const quint64 number = mixed(mixed(seed) + step);
        const auto count = static_cast<quint64>(maximum - minimum + 1);
        return minimum + static_cast<qint64>(number % count);
    };
}

Generator replay(Timeline timeline, bool once)
{
    const QVector<qint64> &times = timeline.times;
    const int last = times.size() - 1;
    const qint64 length = once || last < 1 ? 0 : 2 * times.at(last) - times.at(last - 1);
    return [length, timeline = std::move(timeline)](qint64 elapsed) {
        const qint64 time = length > 0 ? elapsed % length : elapsed;
        const auto next = std::upper_bound(timeline.times.cbegin(), timeline.times.cend(), time);
        const auto index = std::max<qint64>(next - timeline.times.cbegin() - 1, 0);
        return timeline.values.at(static_cast<int>(index));
    };
}
