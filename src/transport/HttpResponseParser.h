#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// Takes the responses of one HTTP/1.1 connection apart: bytes in, events out. No socket, no signals, no
/// clock.
///
/// However the bytes are split over calls of add(), the same headers and texts come out of next(). Memory
/// stays within a small multiple of what has been received, and that within MaxHeadSize and MaxBodySize,
/// whatever the far end claims.
class HttpResponseParser
{
public:
    /// Bytes that a header may have with the garbage before it, or the line with a chunk's size.
    static constexpr int MaxHeadSize = 64 * 1024;
    /// Bytes that a body, a chunk, or one frame of a stream may have.
    static constexpr int MaxBodySize = 64 * 1024 * 1024;

    struct Event
    {
        enum Type {
            Incomplete,     ///< more bytes are needed
            Header,         ///< a response's header: headers, chunked, contentLength and closes are set
            Message,        ///< a body, or one frame of a stream: text is set
            Empty,          ///< the response has ended without text, or without text after its last frame
            ChunkContinued, ///< the line break after a chunk came later than the chunk
            Broken          ///< a limit is overrun; nothing more comes before reset()
        };
        Type type = Incomplete;
        /// Names in their usual spelling, values as they stand after the colon. A later line replaces an
        /// earlier one of the same name, but several Set-Cookie lines are one value with a newline between
        /// them.
        QMap<QString, QString> headers;
        bool chunked = false;
        int contentLength = 0; ///< 0 without a usable one
        bool closes = false;   ///< the sender closes the connection after this response
        QString text;          ///< without the newline at its end
        bool ends = false;     ///< the response has ended with this Message or Empty
        int endChunkSize =
            -1; ///< where an end chunk has ended it: the characters of text that stood before it
    };

    /// Whether frames are taken out of the next response as soon as their newline has come. On a stream
    /// a chunk of one byte is data, because proxies cut a stream anywhere; elsewhere it ends the body.
    void setStreaming(bool streaming) { m_streaming = streaming; }

    void add(const QByteArray& bytes);
    /// The next event; Incomplete when the bytes so far hold no further one.
    Event next();
    /// The sender has gone or fallen silent: ends a body that has neither chunks nor a length. next() then
    /// gives it.
    void endUnbounded() { m_silent = isUnbounded(); }
    /// Forgets all bytes and looks for a header. The streaming mode stays.
    void reset();

    /// Whether no response has begun since the last one ended: what is pending is left over, or garbage.
    bool isBetweenResponses() const;
    /// Whether a response without chunks and without a length is being received.
    bool isUnbounded() const { return m_state == Body && m_bound == UntilClose; }
    /// Whether bytes have come that belong to something still incomplete.
    bool hasPending() const { return pendingSize() > 0; }
    /// Those bytes.
    QByteArray pending() const { return m_buffer.mid(m_read); }

    /// The line of \p data at \p position, without its LF or CR LF. Moves \p position behind that.
    static QByteArray takeLine(const QByteArray& data, int* position);

private:
    enum State { Head, ChunkSize, Body, Failed };
    enum Bound { Chunk, Length, UntilClose };

    Event step();
    Event readHead();
    Event readHeader(const QByteArray& head);
    Event readChunkSize();
    Event readBody();
    Event readFrame(int available);
    Event readUnbounded();
    Event endPiece();
    Event endResponse();
    Event fail();
    bool frameBody(const Event& header, int status);
    void skipLineBreaks();
    void appendToBody(int count);
    void consume(int count);
    bool startsWithBreak() const { return m_buffer.mid(m_read, 2) == "\r\n"; }
    int pendingSize() const { return int(m_buffer.size()) - m_read; }

    State m_state = Head;
    Bound m_bound = UntilClose;
    bool m_streaming = false;
    bool m_silent = false;
    bool m_lineSkipped = false;
    bool m_breakOwed = false; // the line break after the last chunk has not come yet
    QByteArray m_buffer;
    int m_read = 0;      // bytes of m_buffer that are done with
    int m_scanned = 0;   // bytes behind those in which nothing ends
    int m_remaining = 0; // bytes that the current chunk or body still lacks
    QByteArray m_body;
};
