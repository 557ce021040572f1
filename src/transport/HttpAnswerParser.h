#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// Takes the answers of one HTTP/1.1 connection apart: bytes in, events out. No socket, no signals, no clock.
///
/// However the bytes are split over calls of add(), the same events come out of next(). Memory stays within
/// MaxHeadSize and MaxBodySize plus the bytes of one add(), whatever the far end claims.
class HttpAnswerParser
{
public:
    /// Bytes that a header, or a chunk's size line, may have, garbage before it included.
    static constexpr int MaxHeadSize = 64 * 1024;
    /// Bytes that a body, a chunk, or on a stream one frame, may have.
    static constexpr int MaxBodySize = 256 * 1024 * 1024;

    struct Event
    {
        enum Type {
            Incomplete,     ///< more bytes are needed
            Header,         ///< the header of an answer: headers, chunked, contentLength and closes are set
            Message,        ///< a body, or one frame of a stream: text is set
            Empty,          ///< the answer has ended without (further) text
            ChunkContinued, ///< an empty line stood before a chunk's size
            EndChunk,       ///< a chunked body is complete: size is the length of its text still to come
            Broken          ///< a limit is overrun; nothing more comes before reset()
        };
        Type type = Incomplete;
        QMap<QString, QString> headers;
        bool chunked = false;
        int contentLength = 0;
        bool closes = false; ///< the sender is going to close the connection after this answer
        QString text;
        bool ends = false; ///< with Message: the answer has ended with it
        int size = 0;
    };

    /// Whether the next answer's frames are taken out as soon as their newline has come.
    void setStreaming(bool streaming) { m_streaming = streaming; }

    void add(const QByteArray& bytes);
    /// The next event; Incomplete when the bytes so far hold no further one.
    Event next();
    /// The sender has gone or fallen silent: ends a body that has neither chunks nor a length. next() then
    /// gives it.
    void endUnbounded();
    /// Forgets everything, as for a new connection.
    void reset();

    /// Nothing of an answer has come since the last one ended; what has come is left over from that one.
    bool isBetweenAnswers() const;
    /// Whether an answer without chunks or length is being received.
    bool isUnbounded() const { return m_state == Body && m_bound == UntilClose; }
    /// The bytes that have come and are still parts of something incomplete.
    QByteArray pending() const { return m_buffer.mid(m_read); }
    bool hasPending() const { return m_read < m_buffer.size(); }

private:
    enum State { Head, ChunkSize, Body, Failed };
    enum Bound { Chunk, Length, UntilClose };

    Event readHead();
    Event readHeaderLines(int begin, int end);
    Event readChunkSize();
    Event readBody();
    Event readFrame(int available);
    Event takePiece(int size);
    Event endAnswer(bool announceChunkEnd);
    Event fail();
    bool takeLine(QByteArray* line);
    void consume(int count);

    State m_state = Head;
    Bound m_bound = UntilClose;
    bool m_streaming = false;
    bool m_silent = false;
    QByteArray m_buffer;
    int m_read = 0;
    int m_scanned = 0;
    int m_remaining = 0;
    bool m_lineSkipped = false;
    bool m_endChunkSeen = false;
    QByteArray m_body;
};
