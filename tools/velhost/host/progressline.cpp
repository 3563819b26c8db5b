#include "host/progressline.h"

#include <common/console.h>

#include <unistd.h>

namespace {

constexpr int redrawMs = 200;
const QString lineStart = QStringLiteral("\r");
const QString clearRest = QStringLiteral("\x1b[K");

} // namespace

bool ProgressLine::isDue()
{
    if (!m_due)
        m_due.emplace(m_firstMs);
    return m_due->hasExpired() && ::isatty(STDERR_FILENO) == 1;
}

void ProgressLine::show(const QString &text)
{
    print(stderr, lineStart + text + clearRest);
    m_due.emplace(redrawMs);
    m_isShown = true;
}

void ProgressLine::clear()
{
    if (m_isShown)
        print(stderr, lineStart + clearRest);
    m_isShown = false;
}
