#include "watch/watchcommand.h"

#include "cycle/cycle.h"
#include "cycle/cycleprinter.h"
#include "host/stopsignals.h"
#include "watch/watchedplant.h"
#include "watch/watchsummary.h"
#include "watch/watchview.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <algorithm>
#include <memory>

namespace {

bool isAsItShouldBe(const DeviceReport &device)
{
    return !device.hasError()
           && std::none_of(device.values.begin(), device.values.end(),
                           [](const ItemReport &item) { return item.expected.has_value(); });
}

/// The watch of one plant: its view is the terminal, or else the printer.
class Watch
{
public:
    Watch(const QList<DeviceInstancePlugin> &devices, const Job &job,
          const PluginRegistration &registration, LogOutput *log)
        : m_commandLine(job.commandLine), m_log(log), m_lists(readLists(devices)),
          m_devices(watchedDevices(job.plant, devices, registration.itemColumns))
    {
        m_clock.start();
        if (m_commandLine.format == OutputFormat::Table && !m_commandLine.onlyChanges
            && TerminalScreen::isUsable())
            m_view = std::make_unique<WatchView>(&m_devices, log, &m_clock);
        else
            m_printer = std::make_unique<CyclePrinter>(m_commandLine, devices);
    }

    /// Until a signal comes, whose number it returns, or the time is over, then 0. Standard output
    /// that cannot be written ends it, too: nobody would see what comes.
    int run(VELInterface *plugin, StopSignals *stopSignals)
    {
        const qint64 endMs = qint64(1000) * m_commandLine.forSeconds;
        for (qint64 cycle = 1;; ++cycle) {
            const qint64 startMs = m_clock.elapsed();
            readCycle(plugin, cycle);
            const qint64 nextMs = startMs + m_commandLine.intervalMs;
            const int signal = waitUntil(endMs > 0 ? std::min(nextMs, endMs) : nextMs, stopSignals);
            const bool isOver = endMs > 0 && m_clock.elapsed() >= endMs;
            if (signal != 0 || isOver || std::ferror(stdout) != 0)
                return signal;
        }
    }

    /// Ends the view and prints the summary.
    void finish()
    {
        m_view.reset();
        m_log->printOpenCount();
        const OutputFormat format = m_commandLine.format;
        print(format == OutputFormat::Json ? stdout : stderr, summaryText(format, m_devices));
    }

    bool isAllWell() const { return m_isAllWell; }

private:
    void readCycle(VELInterface *plugin, qint64 cycle)
    {
        QList<DeviceReport> reports;
        for (int i = 0; i < m_lists.size(); ++i) {
            DeviceReport report = readDevice(plugin, &m_lists[i], cycle);
            takeReport(&report, m_clock.elapsed(), &m_devices.at(static_cast<std::size_t>(i)));
            m_isAllWell = m_isAllWell && isAsItShouldBe(report);
            reports.append(report);
            if (m_view)
                m_view->update(cycle);
        }
        if (m_printer)
            m_printer->printCycle(reports);
    }

    int waitUntil(qint64 endMs, StopSignals *stopSignals)
    {
        for (;;) {
            if (m_view)
                m_view->drawWhenDue();
            const qint64 rest = std::max<qint64>(endMs - m_clock.elapsed(), 0);
            const int signal = stopSignals->wait(m_view ? std::min(rest, m_view->dueInMs()) : rest);
            if (signal != 0 || m_clock.elapsed() >= endMs)
                return signal;
        }
    }

    CommandLine m_commandLine;
    LogOutput *m_log;
    QList<LogList> m_lists;
    std::vector<WatchedDevice> m_devices;
    QElapsedTimer m_clock;
    std::unique_ptr<WatchView> m_view;
    std::unique_ptr<CyclePrinter> m_printer;
    bool m_isAllWell = true;
};

} // namespace

ExitCode runWatch(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
                  const PluginRegistration &registration, LogOutput *log)
{
    StopSignals stopSignals;
    Watch watch(devices, job, registration, log);
    const int signal = watch.run(plugin, &stopSignals);
    watch.finish();
    if (signal != 0)
        return signal == SIGINT ? Interrupted : Terminated;
    return watch.isAllWell() ? AllWell : ErrorFound;
}
