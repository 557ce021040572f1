#pragma once

#include <QString>

class QUrl;

/// Where learners find the service.
namespace JoinAddress {

/// The address for learners of the service at \p server: that address, or, where it names all addresses of
/// this machine, the first of those by which others know it, else loopback's.
QString of(const QString& server);
/// What learners at other machines need before they can join at \p address, a sentence for people,
/// translated; empty when they need nothing.
QString hint(const QUrl& address);

} // namespace JoinAddress
