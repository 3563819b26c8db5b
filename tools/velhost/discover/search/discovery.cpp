#include "discover/search/discovery.h"

#include "discover/search/tcpsearch.h"
#include "discover/search/udpsearch.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int tickMs = 10;
/// How long the search waits for answers by UDP before it asks by TCP. A later answer still counts.
constexpr int maximumAnswerMs = 1000;

QStringList gapsOf(const UdpSearch &udp, const TcpSearch &tcp, const Findings &findings)
{
    QStringList gaps;
    if (udp.unsent() > 0) {
        const QString reason
            = udp.error().isEmpty() ? QStringLiteral("the time was over") : udp.error();
        gaps.append(QStringLiteral("%1 questions by UDP were not sent: %2")
                        .arg(QString::number(udp.unsent()), reason));
    }
    if (tcp.asked() < tcp.count()) {
        const QString reason
            = tcp.error().isEmpty() ? QStringLiteral("the time was over") : tcp.error();
        gaps.append(QStringLiteral("%1 of %2 questions by TCP were not asked to the end: %3")
                        .arg(QString::number(tcp.count() - tcp.asked()),
                             QString::number(tcp.count()), reason));
    }
    if (findings.isFull())
        gaps.append(QStringLiteral("more than %1 different answers came; the rest was not noted")
                        .arg(Findings::maximum));
    return gaps;
}

} // namespace

SearchResult runSearch(const SearchPlan &plan,
                       const std::function<bool(const SearchProgress &)> &shouldContinue)
{
    SearchResult result;
    const auto note = [&result](const Finding &finding) { result.findings.add(finding); };
    UdpSearch udp({plan.area.udp, plan.udpPorts}, plan.udpPorts, note);
    TcpSearch tcp({plan.area.tcp, plan.tcpPorts}, note);
    const int answerMs = std::min(maximumAnswerMs, plan.timeoutMs / 4);
    const QDeadlineTimer deadline(plan.timeoutMs);
    const QDeadlineTimer udpDeadline(plan.timeoutMs / 2);

    QEventLoop loop;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
        udp.sendQuestions();
        const bool isUdpDone = udp.isDone(answerMs);
        if (isUdpDone || udpDeadline.hasExpired())
            tcp.startProbes();
        result.wasStopped
            = !shouldContinue({tcp.asked(), tcp.count(), result.findings.controllerCount()});
        if (result.wasStopped || deadline.hasExpired() || (isUdpDone && tcp.isDone()))
            loop.quit();
    });
    tick.start(tickMs);
    loop.exec();
    if (!result.wasStopped)
        result.gaps = gapsOf(udp, tcp, result.findings);
    return result;
}
