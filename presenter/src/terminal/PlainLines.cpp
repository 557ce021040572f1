#include "terminal/PlainLines.h"

#include <QSocketNotifier>

#include <cerrno>
#include <unistd.h>

PlainLines::PlainLines() = default;
PlainLines::~PlainLines() = default;

void PlainLines::start()
{
    m_notifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &PlainLines::read);
}

void PlainLines::stop()
{
    if (m_notifier)
        m_notifier->setEnabled(false);
}

void PlainLines::read()
{
    char bytes[4096];
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (count > 0) {
        m_buffer.append(bytes, static_cast<int>(count));
        takeLines();
        return;
    }
    stop();
    if (!m_buffer.isEmpty()) // a last line without its end
        Q_EMIT lineRead(QString::fromLocal8Bit(m_buffer));
    m_buffer.clear();
    Q_EMIT ended();
}

void PlainLines::takeLines()
{
    for (int end = m_buffer.indexOf('\n'); end >= 0; end = m_buffer.indexOf('\n')) {
        const QByteArray line = m_buffer.left(end);
        m_buffer.remove(0, end + 1);
        Q_EMIT lineRead(QString::fromLocal8Bit(line));
    }
}
