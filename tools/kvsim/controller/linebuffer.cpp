#include "controller/linebuffer.h"

void LineBuffer::append(const QByteArray &bytes)
{
    m_bytes += QByteArray(bytes).replace("\n", "");
}

std::optional<Line> LineBuffer::next()
{
    if (m_dropping) {
        const int end = m_bytes.indexOf('\r');
        m_dropping = end < 0;
        m_bytes.remove(0, m_dropping ? m_bytes.size() : end + 1);
    }

    const int end = m_bytes.indexOf('\r');
    const int length = end < 0 ? m_bytes.size() : end;
    if (length > maximumLength) {
        m_dropping = true;
        return Line{m_bytes.left(shownLength), true, false};
    }
    if (end < 0)
        return std::nullopt;

    Line line{m_bytes.left(end)};
    m_bytes.remove(0, end + 1);
    return line;
}
