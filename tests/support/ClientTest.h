#pragma once

#include "support/ClientProbe.h"
#include "support/FakeService.h"

#include <QObject>

#include <memory>

/// Base of the client's tests: each function gets a new service, and a client of it that goes first.
class ClientTest : public QObject
{
    Q_OBJECT

protected:
    using Answer = FakeService::Answer;

    FakeService& service() { return *m_service; }
    ClientProbe& client() { return *m_client; }
    void deleteClient() { m_client.reset(); }
    /// Another service, and a client of it.
    void begin()
    {
        cleanup();
        m_service = std::make_unique<FakeService>();
        m_client = std::make_unique<ClientProbe>(m_service->url());
    }

private Q_SLOTS:
    void init() { begin(); }

    void cleanup()
    {
        m_client.reset();
        m_service.reset();
    }

private:
    std::unique_ptr<FakeService> m_service;
    std::unique_ptr<ClientProbe> m_client;
};
