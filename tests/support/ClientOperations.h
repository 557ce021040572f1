#pragma once

#include <CalyxClient/PresenterClient>

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QVariant>

#include <functional>

/// The client's operations, for tests that go through all of them.
namespace ClientOperations {

/// An answer with which every operation goes on to its next request.
extern const char ALL_IS_WELL[];

/// An operation of the client with the requests that it makes.
struct Operation
{
    /// Gives what the operation returned; nothing for one that returns nothing.
    std::function<QVariant(PresenterClient*)> call;
    QList<QByteArray> paths;
    /// What it returns when its last request is not answered in time.
    QVariant timedOut = false;
    std::function<void(PresenterClient*)> prepare = [](PresenterClient*) {};
};

/// With their names.
QList<QPair<const char*, Operation>> operations();
/// Operations whose later requests follow from a first one that fails: only their destruction is of interest.
QList<QPair<const char*, Operation>> chainedOperations();

} // namespace ClientOperations

Q_DECLARE_METATYPE(ClientOperations::Operation)
