#include "Failure.h"

#include <QVector>

namespace {

struct Row
{
    const char* begin; // of the key
    const char* advice;
};

// The first row that fits counts.
const Row rows[] = {
    {"login.error.badCredentials",
     "Check the user name and the password: small and capital letters are different."},
    {"login.error", "Log out and log in again."},
    {"session.error.tooMany", "End a lesson that is still open, then start this one again."},
    {"session.error", "End the lesson and start a new one."},
    {"SSLRootCertificateMissing",
     "The service's certificate is signed by an authority that this computer does not know. Have the "
     "authority's certificate installed, and do not go on if you did not expect this."},
    {"", "Try again. If it goes on, give this key to whoever runs the service."}};

} // namespace

Failure Failures::explain(const QString& what, const QString& key, Silence silence, const QString& server)
{
    if (!key.isEmpty()) {
        for (const Row& row : rows) {
            if (key.startsWith(QLatin1String(row.begin)))
                return {what, key, QString::fromLatin1(row.advice)};
        }
    }
    if (silence == GivesNoAnswer)
        return {what, key,
                QStringLiteral("%1 did not answer within 10 seconds. Check the network, then try again.")
                    .arg(server)};
    if (silence == IsNotThere)
        return {what, key,
                QStringLiteral("No classroom service answers at %1. Check the address, and that the network "
                               "reaches it.")
                    .arg(server)};
    return {what, key, QStringLiteral("The service gave no reason. Try again in a moment.")};
}
