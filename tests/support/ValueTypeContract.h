#pragma once

#include "support/LogRecorder.h"

#include <CalyxClient/CollaborationMessageHandler>

#include <QByteArray>
#include <QObject>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>

/// A host's own signals and slots for a value type T, in both spellings: told(T), toldQualified(Calyx::T),
/// take(T) and takeQualified(Calyx::T).
class ValueTypeHost : public QObject
{
    Q_OBJECT

public:
    /// Emits one of the signals with a sample.
    virtual void tell(bool qualified) = 0;

    QStringList taken;

public Q_SLOTS:
    void endThread();
};

/// Base of the tests of the value types that go through signals: what each keeps to. A test gives the facts
/// of its type.
class ValueTypeContract : public QObject
{
    Q_OBJECT

public:
    /// A value type, by its name without the namespace.
    struct ValueType
    {
        QByteArray name;
        int id;
        void (*registerAgain)();
        std::function<QString(const QVariant&)> textOf;

        std::function<std::unique_ptr<ValueTypeHost>()> newHost;
        QString told; ///< the text of what a host tells

        QByteArray signal; ///< of the handler
        std::function<void(CollaborationMessageHandler*)> handle;
        QString handled; ///< the text of what the signal then carries
    };

protected:
    explicit ValueTypeContract(const ValueType& type);

    std::unique_ptr<CollaborationMessageHandler> m_handler;

private Q_SLOTS:
    void init();
    void cleanup();

    void isRegisteredUnderBothSpellings();
    void mayBeRegisteredAgain();
    void queuedConnectionByString_data() { spellings(); }
    void queuedConnectionByString();
    void queuedConnectionOfTheHandlersSignal();
    void connectionAcrossThreads();
    void signalSpyByString_data() { spellings(); }
    void signalSpyByString();

private:
    void spellings();
    QByteArray signalOfTheHandler() const;

    ValueType m_type;
    std::unique_ptr<LogRecorder> m_log;
};
