#include <common/stopsignal.h>

#include <csignal>

bool isIgnored(int signal)
{
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

void catchOnce(int signal, void (*handler)(int))
{
    if (isIgnored(signal))
        return;
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND | SA_NODEFER);
    sigaction(signal, &action, nullptr);
}
