#include "program/processsignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

bool handleSignals(QCoreApplication *application, const std::function<void()> &report)
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGUSR1})
        sigaddset(&signals, signal);
    if (sigprocmask(SIG_BLOCK, &signals, nullptr) != 0)
        return false;

    const int descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor < 0)
        return false;

    auto *notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, application);
    QObject::connect(notifier, &QSocketNotifier::activated, application, [descriptor, report] {
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
