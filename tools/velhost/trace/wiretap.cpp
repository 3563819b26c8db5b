#include "trace/wiretap.h"

#include <veltrace/connections.h>

#include <chrono>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

WireTap *currentTap = nullptr;

qint64 microsecondsSince1970()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

void takeEvent(const Event &event)
{
    if (currentTap == nullptr)
        return;
    TraceEvent taken;
    // The system is asked once, not for each event.
    static const qint64 process = getpid();
    static thread_local const qint64 thread = syscall(SYS_gettid);
    taken.process = process;
    taken.thread = thread;
    taken.connection = event.connection;
    taken.peer = QString::fromLatin1(event.peer);
    taken.name = QString::fromLatin1(event.name);
    taken.outcome = QString::fromLatin1(event.outcome);
    taken.waited = event.waited;
    taken.bytes = QByteArray(event.bytes, static_cast<int>(event.size));
    currentTap->add(taken);
}

/// The plug-in may connect to any port.
void traceAllPorts()
{
    static bool isTracing = false;
    static Ports ports;
    if (isTracing)
        return;
    isTracing = true;
    ports.fill(0xff);
    trace(ports, takeEvent);
}

} // namespace

WireTap::WireTap()
{
    currentTap = this;
    traceAllPorts();
}

WireTap::~WireTap()
{
    currentTap = nullptr;
}

void WireTap::beginCall(const LogList *list, bool isRead)
{
    m_list = list;
    m_item = isRead || list->dataItems.size() == 1 ? 0 : -1;
    if (!isRead)
        return;
    for (const DataItem &dataItem : list->dataItems)
        m_before.append(dataItem.values);
}

QList<WireEvent> WireTap::takeEvents()
{
    m_list = nullptr;
    m_item = -1;
    m_before.clear();
    return std::exchange(m_events, {});
}

void WireTap::add(const TraceEvent &event)
{
    passItemsDone();
    const bool isOfDevice
        = event.name == QLatin1String("connect") || event.name == QLatin1String("close");
    m_events.append({event, isOfDevice ? -1 : m_item, microsecondsSince1970()});
}

void WireTap::passItemsDone()
{
    while (m_item >= 0 && m_item < m_before.size()) {
        const DataItem &dataItem = m_list->dataItems.at(m_item);
        if (dataItem.item.lastError.isEmpty() && dataItem.values.isSharedWith(m_before.at(m_item)))
            return;
        ++m_item;
    }
    if (m_item == m_before.size() && !m_before.isEmpty())
        m_item = -1;
}
