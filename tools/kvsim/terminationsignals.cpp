#include "terminationsignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>

namespace kvsim {

bool quitOnTerminationSignals(QCoreApplication *application)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    if (sigprocmask(SIG_BLOCK, &signals, nullptr) != 0)
        return false;

    const int descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor < 0)
        return false;

    auto *notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, application);
    QObject::connect(notifier, &QSocketNotifier::activated, application, [notifier] {
        // The signal stays pending, which is harmless, and must not wake the loop again.
        notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    return true;
}

} // namespace kvsim
