#include "program/processsignals.h"

#include <common/stopsignal.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

QElapsedTimer sinceInterrupt;

/// The first SIGINT counts as SIGTERM. The second one ends the program even while it writes to a
/// pipe or a file that takes nothing.
void interrupt(int signal)
{
    if (!sinceInterrupt.isValid()) {
        sinceInterrupt.start();
        ::kill(::getpid(), SIGTERM);
    } else if (sinceInterrupt.hasExpired(oneInterruptMs)) {
        std::signal(signal, SIG_DFL);
        ::raise(signal);
    }
}

} // namespace

bool handleSignals(const std::function<void()> &report)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGUSR1);
    if (!isIgnored(SIGHUP))
        sigaddset(&signals, SIGHUP);
    struct sigaction action = {};
    action.sa_handler = interrupt;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    if (sigprocmask(SIG_BLOCK, &signals, nullptr) != 0)
        return false;

    const int descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor < 0)
        return false;

    auto *notifier
        = new QSocketNotifier(descriptor, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [descriptor, report] {
        signalfd_siginfo signal{};
        if (::read(descriptor, &signal, sizeof signal) != sizeof signal)
            return;
        if (signal.ssi_signo == SIGUSR1)
            report();
        else
            QCoreApplication::quit();
    });
    return true;
}
