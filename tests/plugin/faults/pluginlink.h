#pragma once

#include <QByteArray>

class SimulatorThread;

/// The link between the plug-in, which this thread drives, and a simulated controller, for its own
/// lifetime. It gives what happens at both ends one order, so that no result depends on which
/// thread was faster, and no answer comes too late because the machine is busy:
///
/// - Before the plug-in sends, or waits for an answer, all that the controller sends at once is
///   there.
/// - A command that is sent while an old answer waits reaches the controller when the plug-in has
///   taken that old answer, as on any network that takes longer than that.
///
/// The system calls are the real ones, and so are their results.
class PluginLink
{
public:
    explicit PluginLink(SimulatorThread *simulator);
    ~PluginLink();
    PluginLink(const PluginLink &) = delete;
    PluginLink &operator=(const PluginLink &) = delete;

    /// From now on another simulator is at the end of the link.
    void follow(SimulatorThread *simulator) { m_simulator = simulator; }

    /// Where an answer was taken without its line end, the plug-in's next command is only sent when
    /// the rest has come.
    void expectRests() { m_expectsRests = true; }

    /// How often the plug-in has sent.
    int sends() const { return m_sends; }

    // What the plug-in's system calls become.
    ssize_t send(int descriptor, const void *data, size_t length, int flags);
    void beforeWaitForInput();
    ssize_t read(int descriptor, void *data, size_t length);

private:
    SimulatorThread *m_simulator;
    bool m_expectsRests = false;
    bool m_restIsMissing = false;
    int m_sends = 0;
    /// The command that is on its way while an old answer waits.
    QByteArray m_held;
};
