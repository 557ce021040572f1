#pragma once

#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QVariantMap>
#include <QWebSocketServer>

class QWebSocket;

/// A classroom service and its bus on loopback, played by a test. It answers every request as a service that
/// is content would, unless told otherwise, and records what it gets.
class FakeClassroom : public QObject
{
    Q_OBJECT

public:
    /// A message that the presenter has published.
    struct Message
    {
        QString address;
        QString type;
        QString text; ///< its data, decoded
    };

    FakeClassroom();
    ~FakeClassroom() override;

    QString url() const;

    /// The paths of the requests so far, without "/tavisto".
    QStringList requests() const { return m_requests; }
    /// The body of the last request for \p path.
    QString body(const QString& path) const { return m_bodies.value(path); }
    /// From now on, \p path is answered with status 403 and this error key.
    void refuse(const QString& path, const QString& key) { m_refusals.insert(path, key); }
    /// From now on, \p path gets no answer until release().
    void hold(const QString& path) { m_held.append(path); }
    void release();
    /// What the service says about who is in the session.
    void setUsers(const QVariantList& users) { m_users = users; }
    /// From now on, \p path is answered with this envelope.
    void setReply(const QString& path, const QByteArray& envelope) { m_replies.insert(path, envelope); }

    /// What has gone to the class, or to one of it.
    QList<Message> messages() const { return m_messages; }
    /// What has gone to the remote control.
    QList<Message> toRemote() const { return m_toRemote; }
    /// The id of the question or poll that the presenter has sent last.
    QString lastQuestion() const;

    void join(const QString& device, const QString& name);
    void leave(const QString& device);
    /// The answer to a question: the ids of options, or text.
    void answer(const QString& device, const QString& questionId, const QStringList& options,
                const QString& text = QString());
    void remote(const QString& type, const QVariant& data = QVariant());
    void send(const QString& from, const QString& type, const QVariant& data);
    void closeBus();

Q_SIGNALS:
    /// A request or a message has come.
    void received();

private:
    void readRequests(QTcpSocket* socket);
    void answerRequest(QTcpSocket* socket, const QString& path);
    QByteArray reply(const QString& path) const;
    void acceptPresenter();
    void readFrame(const QString& frame);
    void readPublish(const QVariantMap& frame);
    void inject(const QVariantMap& body);

    QTcpServer m_service;
    QWebSocketServer m_bus;
    QList<QWebSocket*> m_presenters;
    QHash<QTcpSocket*, QByteArray> m_buffers;
    QStringList m_requests;
    QHash<QString, QString> m_bodies;
    QHash<QString, QString> m_refusals;
    QHash<QString, QByteArray> m_replies;
    QStringList m_held;
    QList<QPair<QPointer<QTcpSocket>, QString>> m_waiting;
    QVariantList m_users;
    QList<Message> m_messages;
    QList<Message> m_toRemote;
};
