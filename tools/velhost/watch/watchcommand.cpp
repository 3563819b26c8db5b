#include "watch/watchcommand.h"

#include "cli/options.h"
#include "cli/plantarguments.h"
#include "cycle/cycle.h"
#include "cycle/cycleprinter.h"
#include "host/stopsignals.h"
#include "watch/watchsummary.h"
#include "watch/watchview.h"

#include <QElapsedTimer>

#include <algorithm>
#include <memory>

namespace {

constexpr int maximumForSeconds = 1'000'000'000;
const QString forOption = QStringLiteral("for");

/// Watches one plant. Has either a view on the terminal or a printer.
class Watch
{
public:
    Watch(const Session &session, const Arguments &arguments)
        : m_arguments(arguments), m_session(session), m_lists(readLists(session.devices))
    {
        m_state.devices = watchedDevices(session.devices);
        m_state.intervalMs = intervalMs(arguments);
        m_state.clock.start();
        const bool onlyChanges = printsOnlyChanges(arguments);
        if (arguments.format != OutputFormat::Table)
            m_printer = std::make_unique<CyclePrinter>(arguments.format, onlyChanges);
        else if (onlyChanges || !TerminalScreen::isUsable())
            m_printer = std::make_unique<CyclePrinter>(arguments.format, true, session.devices);
        else
            m_view = std::make_unique<WatchView>(&m_state, session.log);
    }

    /// Runs until a signal comes or until the time is over. An error of standard output ends it,
    /// too: nobody would see the output.
    ExitCode run()
    {
        const QElapsedTimer &clock = m_state.clock;
        const qint64 endMs = qint64(1000) * m_arguments.number(forOption, 0);
        int signal = 0;
        bool isOver = false;
        for (qint64 cycle = 1; signal == 0 && !isOver; ++cycle) {
            const qint64 startMs = clock.elapsed();
            readCycle(cycle);
            const qint64 nextMs = startMs + m_state.intervalMs;
            const qint64 untilMs = endMs > 0 ? std::min(nextMs, endMs) : nextMs;
            signal = m_stopSignals.wait(untilMs - clock.elapsed());
            isOver = (endMs > 0 && clock.elapsed() >= endMs) || std::ferror(stdout) != 0;
        }
        finish();
        if (signal != 0)
            return exitCodeOf(signal);
        return m_isAllWell ? AllWell : ErrorFound;
    }

private:
    void readCycle(qint64 cycle)
    {
        QList<DeviceReport> reports;
        const qint64 startMs = m_state.clock.elapsed();
        for (int i = 0; i < m_lists.size(); ++i) {
            WatchedDevice *device = &m_state.devices.at(static_cast<std::size_t>(i));
            beginCall(device);
            const DeviceReport report = readPlantDevice(m_session, i, &m_lists[i], cycle);
            endCall(device, report);
            m_isAllWell = m_isAllWell && !report.hasError();
            reports.append(report);
        }
        const std::lock_guard lock(m_state.mutex);
        m_state.cycleMs = m_state.clock.elapsed() - startMs;
        if (m_printer)
            m_printer->printCycle(reports);
    }

    void beginCall(const WatchedDevice *device)
    {
        const std::lock_guard lock(m_state.mutex);
        m_state.called = device;
        m_state.calledMs = m_state.clock.elapsed();
    }

    void endCall(WatchedDevice *device, const DeviceReport &report)
    {
        const std::lock_guard lock(m_state.mutex);
        addReport(report, m_state.clock.elapsed(), device);
        addRead(device->name, report.time, device->outageCause(), &m_state.outages);
        m_state.log = m_session.log->latest();
        m_state.cycle = report.cycle;
        m_state.called = nullptr;
        m_state.hasUpdate = true;
    }

    /// Closes the view and prints the outages and the summary.
    void finish()
    {
        m_view.reset();
        m_session.log->printPendingCounts();
        const OutputFormat format = m_arguments.format;
        const bool isJson = format == OutputFormat::Json;
        QString text = outageText(format, m_state.outages);
        if (!isJson && !text.isEmpty())
            text += u'\n';
        print(isJson ? stdout : stderr, text + summaryText(format, m_state.devices));
    }

    /// Before the view, whose thread takes no signals.
    StopSignals m_stopSignals;
    const Arguments &m_arguments;
    const Session &m_session;
    QList<LogList> m_lists;
    WatchState m_state;
    std::unique_ptr<WatchView> m_view;
    std::unique_ptr<CyclePrinter> m_printer;
    bool m_isAllWell = true;
};

ExitCode runWatch(const Arguments &arguments)
{
    const std::optional<Plant> plant = readPlant(arguments);
    if (!plant)
        return WrongUsage;
    SessionSetup setup = sessionSetup(arguments, *plant);
    setup.wire.isOn = true;
    return runSession(setup,
                      [&](const Session &session) { return Watch(session, arguments).run(); });
}

} // namespace

Command watchCommand()
{
    return {QStringLiteral("watch"),
            Operands::Plant,
            QStringLiteral("read again and again, keep a table on the terminal up to date and "
                           "count what arrives"),
            {QStringLiteral("table"), QStringLiteral("json"), QStringLiteral("csv")},
            QList<Option>{{forOption, QStringLiteral("SECONDS"),
                           QStringLiteral("end after that time (default: at Ctrl+C)"),
                           Option::Range{1, maximumForSeconds}},
                          intervalOption(),
                          onlyChangesOption(QStringLiteral("; prints lines instead of a table"))}
                + traceOptions(),
            {{QStringLiteral("See what arrives, until Ctrl+C"),
              QStringLiteral("velhost watch plant.json")}},
            runWatch};
}
