#include "transport/HttpResponseParser.h"

#include <algorithm>

namespace {

const char headBegin[] = "HTTP/";

// QString::fromUtf8(QByteArray) would stop at a NUL with Qt 5.
QString decoded(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

// Proxies write names in lower case; everyone else, and the code that looks them up, in this one.
QString usualSpelling(const QByteArray& name)
{
    QByteArray spelled = name.trimmed();
    bool first = true;
    for (char& c : spelled) {
        // By hand: toLower() changes other bytes than ASCII's with Qt 5.
        if (first && c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        else if (!first && c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
        first = c == '-';
    }
    return decoded(spelled);
}

void insertHeader(QMap<QString, QString>* headers, const QByteArray& line)
{
    const auto colon = line.indexOf(':');
    if (colon < 1)
        return;
    const QString name = usualSpelling(line.left(colon));
    QString value = decoded(line.mid(colon + 1));
    // A balancer's cookie and the server's own come as two lines, and the session needs both.
    if (name == QLatin1String("Set-Cookie") && headers->contains(name))
        value.prepend(headers->value(name) + QLatin1Char('\n'));
    headers->insert(name, value);
}

// Whether the empty line that ends a header has come. *position, the beginning of a line, goes behind it, or
// else to the line that is not complete yet.
bool findEndOfHead(const QByteArray& data, int* position)
{
    while (data.indexOf('\n', *position) >= 0) {
        if (HttpResponseParser::takeLine(data, position).isEmpty())
            return true;
    }
    return false;
}

bool isHexadecimal(const QByteArray& text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    });
}

bool isDecimal(const QByteArray& text)
{
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A number too large for its type still is one, and not the 0 that stands for "no number".
constexpr qulonglong tooLarge = ~qulonglong(0);

qulonglong readChunkNumber(const QByteArray& line)
{
    const QByteArray number = line.split(';').first().trimmed();
    bool ok = false;
    const qulonglong size = number.toULongLong(&ok, 16);
    if (ok)
        return size;
    return isHexadecimal(number) ? tooLarge : 0;
}

qulonglong readContentLength(const QString& value)
{
    const QByteArray number = value.trimmed().toLatin1();
    if (!isDecimal(number))
        return 0;
    bool ok = false;
    const qulonglong length = number.toULongLong(&ok);
    return ok ? length : tooLarge;
}

} // namespace

QByteArray HttpResponseParser::takeLine(const QByteArray& data, int* position)
{
    const int newline = int(data.indexOf('\n', *position));
    int end = newline < 0 ? int(data.size()) : newline;
    const int begin = *position;
    *position = newline < 0 ? int(data.size()) : newline + 1;
    if (newline > begin && data.at(newline - 1) == '\r')
        --end;
    return data.mid(begin, end - begin);
}

void HttpResponseParser::add(const QByteArray& bytes)
{
    if (m_state == Failed)
        return;
    m_buffer.remove(0, m_read);
    m_read = 0;
    m_buffer += bytes;
}

void HttpResponseParser::reset()
{
    m_state = Head;
    m_silent = false;
    m_buffer.clear();
    m_read = 0;
    m_scanned = 0;
    m_body.clear();
}

bool HttpResponseParser::isBetweenResponses() const
{
    return m_state == Head && m_buffer.indexOf(headBegin, m_read) < 0;
}

HttpResponseParser::Event HttpResponseParser::next()
{
    for (;;) {
        const State state = m_state;
        const int read = m_read;
        Event event = step();
        if (event.type != Event::Incomplete || (m_state == state && m_read == read))
            return event;
    }
}

HttpResponseParser::Event HttpResponseParser::step()
{
    switch (m_state) {
    case Head:
        return readHead();
    case ChunkSize:
        return readChunkSize();
    case Body:
        return readBody();
    case Failed:
        break;
    }
    return Event();
}

HttpResponseParser::Event HttpResponseParser::readHead()
{
    skipLineBreaks();
    const int begin = int(m_buffer.indexOf(headBegin, m_read));
    int end = qMax(begin, m_read + m_scanned); // no line is read twice, however small the pieces are
    const bool isComplete = begin >= 0 && findEndOfHead(m_buffer, &end);
    if ((isComplete ? end - m_read : pendingSize()) > MaxHeadSize)
        return fail();
    if (begin >= 0)
        m_scanned = end - m_read;
    if (!isComplete)
        return Event();
    const QByteArray head = m_buffer.mid(begin, end - begin);
    consume(end - m_read);
    return readHeader(head);
}

HttpResponseParser::Event HttpResponseParser::readHeader(const QByteArray& head)
{
    Event event;
    int position = 0;
    const int status = takeLine(head, &position).split(' ').value(1).toInt();
    while (position < head.size())
        insertHeader(&event.headers, takeLine(head, &position));

    const QString encoding = event.headers.value(QStringLiteral("Transfer-Encoding"));
    event.chunked = encoding.trimmed().endsWith(QLatin1String("chunked"), Qt::CaseInsensitive);
    const QString connection = event.headers.value(QStringLiteral("Connection"));
    event.closes = connection.trimmed().compare(QLatin1String("close"), Qt::CaseInsensitive) == 0;
    const qulonglong length = readContentLength(event.headers.value(QStringLiteral("Content-Length")));
    if (length > MaxBodySize)
        return fail();
    event.contentLength = static_cast<int>(length);
    if (frameBody(event, status))
        event.type = Event::Header;
    return event;
}

// Sets how the body after a header is bounded. False for an interim header, after which the real one follows.
bool HttpResponseParser::frameBody(const Event& header, int status)
{
    m_lineSkipped = false;
    m_breakOwed = false;
    m_remaining = header.contentLength;
    if (header.chunked) {
        m_state = ChunkSize;
        return true;
    }
    const bool interim = status >= 100 && status < 200;
    if (interim)
        return false;
    const QString length = header.headers.value(QStringLiteral("Content-Length")).trimmed();
    const bool bounded = isDecimal(length.toLatin1()) || status == 204 || status == 304;
    m_bound = bounded ? Length : UntilClose;
    m_state = Body;
    return true;
}

HttpResponseParser::Event HttpResponseParser::readChunkSize()
{
    const int newline = int(m_buffer.indexOf('\n', m_read));
    const int needed = newline < 0 ? pendingSize() : newline - m_read;
    if (needed > MaxHeadSize)
        return fail();
    if (newline < 0)
        return Event();
    const bool isLateBreak = m_breakOwed && startsWithBreak();
    m_breakOwed = false;
    int position = m_read;
    const QByteArray line = takeLine(m_buffer, &position);
    consume(position - m_read);

    Event event;
    if (line.isEmpty() && (isLateBreak || !m_lineSkipped)) {
        m_lineSkipped = !isLateBreak;
        event.type = Event::ChunkContinued;
        return event;
    }
    m_lineSkipped = false;
    const qulonglong size = readChunkNumber(line);
    if (size < (m_streaming ? 1U : 2U)) {
        const int textSize = int(decoded(m_body).size());
        event = endResponse();
        event.endChunkSize = textSize;
        return event;
    }
    if (size > qulonglong(MaxBodySize - m_body.size()))
        return fail();
    m_bound = Chunk;
    m_remaining = static_cast<int>(size);
    m_state = Body;
    return event;
}

HttpResponseParser::Event HttpResponseParser::readBody()
{
    const int available = m_bound == UntilClose ? pendingSize() : std::min(pendingSize(), m_remaining);
    if (m_streaming) {
        Event frame = readFrame(available);
        if (frame.type != Event::Incomplete)
            return frame;
    }
    if (m_bound == UntilClose)
        return readUnbounded();
    if (available < m_remaining)
        return Event();
    return endPiece();
}

HttpResponseParser::Event HttpResponseParser::readFrame(int available)
{
    Event event;
    const int begin = m_read + m_scanned;
    const auto end = m_buffer.cbegin() + m_read + available;
    const auto newline = std::find(m_buffer.cbegin() + begin, end, '\n');
    if (newline == end) {
        m_scanned = available;
        return event;
    }
    const int size = static_cast<int>(newline - m_buffer.cbegin()) - m_read;
    appendToBody(size);
    consume(1);
    if (m_bound != UntilClose)
        m_remaining -= size + 1;
    event.type = Event::Message;
    event.text = decoded(m_body);
    m_body.clear();
    return event;
}

// Nothing says where such a body ends. Every SockJS response ends with a newline; the rest end with the
// connection.
HttpResponseParser::Event HttpResponseParser::readUnbounded()
{
    if (pendingSize() > MaxBodySize)
        return fail();
    if (!m_silent && (m_streaming || !m_buffer.endsWith('\n') || !hasPending()))
        return Event();
    appendToBody(pendingSize());
    return endResponse();
}

HttpResponseParser::Event HttpResponseParser::endPiece()
{
    appendToBody(m_remaining);
    m_remaining = 0;
    if (m_bound == Length)
        return endResponse();
    m_state = ChunkSize;
    m_breakOwed = !startsWithBreak();
    if (!m_breakOwed)
        consume(2);
    return Event();
}

HttpResponseParser::Event HttpResponseParser::endResponse()
{
    Event event;
    event.type = m_body.isEmpty() ? Event::Empty : Event::Message;
    event.ends = true;
    if (m_body.endsWith('\n'))
        m_body.chop(1);
    event.text = decoded(m_body);
    m_body.clear();
    m_state = Head;
    m_silent = false;
    return event;
}

HttpResponseParser::Event HttpResponseParser::fail()
{
    reset();
    m_state = Failed;
    Event event;
    event.type = Event::Broken;
    return event;
}

// What follows an end chunk is only an empty line, and belongs to no response.
void HttpResponseParser::skipLineBreaks()
{
    while (hasPending() && (m_buffer.at(m_read) == '\r' || m_buffer.at(m_read) == '\n'))
        consume(1);
}

void HttpResponseParser::appendToBody(int count)
{
    m_body.append(m_buffer.constData() + m_read, count);
    consume(count);
}

void HttpResponseParser::consume(int count)
{
    m_read += count;
    m_scanned = 0;
}
