#pragma once

#include "support/LogRecorder.h"

#include <CalyxClient/CollaborationMessageHandler>

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariant>

#include <memory>

/// A host that connects by string, and keeps what it hears.
class MessageHandlerHost : public QObject
{
    Q_OBJECT

public:
    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;

    /// Whether all connections could be made.
    bool listenTo(CollaborationMessageHandler* handler);

    QStringList heard;
    /// Deleted by whatever slot is called first.
    QPointer<QObject> victim;

Q_SIGNALS:
    void frame(QString text);

public Q_SLOTS:
    void answered(QString device, QString poll, int time, QString answer);
    void joined(Learner learner);
    void left(QString device);
    void controller(bool isRegister);
    void commanded(RemoteControlMessage message);
    void unhandled(QVariantMap body, QVariant data);
    void asked(QString device, int question);

private:
    void hear(const QString& text);
};

/// Base of the handler's tests: each function gets a new handler, a host that listens to it, and an empty
/// log, and may cause no warning.
class MessageHandlerTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<LogRecorder> m_log;
    QPointer<CollaborationMessageHandler> m_handler;
    std::unique_ptr<MessageHandlerHost> m_host;

private Q_SLOTS:
    void init();
    void cleanup();
};
