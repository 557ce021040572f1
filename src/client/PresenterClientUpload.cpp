#include "client/PresenterClientPrivate.h"

#include "client/ServiceEnvelope.h"

QString PresenterClient::resourceId() const
{
    return d->resourceId;
}

QString PresenterClient::resourcePath() const
{
    return d->resourcePath;
}

bool PresenterClient::doUploadResource(QString fileName, QByteArray data, QString* resourceId,
                                       QString* downloadPath)
{
    // The service wants exactly this layout, the empty line behind each delimiter included.
    const QByteArray delimiter = "--" + MULTIPART_BOUNDARY.toUtf8() + "\r\n";
    QByteArray body = delimiter;
    body += "Content-Disposition: form-data; name=files; filename=\"" + fileName.toUtf8() + "\"\r\n\r\n";
    body += data;
    body += "\r\n" + delimiter + "\r\n";
    body += addMultipartValue(QStringLiteral("isTemporary"), QStringLiteral("true"), false).toUtf8();
    body += addMultipartValue(QStringLiteral("clientProvidedGUID"), QStringLiteral("false"), true).toUtf8();

    d->resourcePath = QString();
    d->resourceId = QString();
    const QPointer<PresenterClient> self(this);
    doRequest(true, QUrl(d->server + QStringLiteral("/tavisto/resource/uploadResourceFile")), body,
              &PresenterClient::uploadResourceResponse, nullptr, true);
    if (!self || d->resourceId.isNull())
        return false;
    if (resourceId)
        *resourceId = d->resourceId;
    if (downloadPath)
        *downloadPath = QStringLiteral("/tavisto/resource/downloadResourceFile?resourceId=") + d->resourceId;
    return true;
}

QString PresenterClient::addMultipartValue(QString name, QString value, bool last)
{
    return QStringLiteral("Content-Disposition: form-data; name=") + name + QStringLiteral("\r\n") +
           QStringLiteral("Content-Type: text/plain; charset=utf-8\r\n\r\n") + value +
           QStringLiteral("\r\n--") + MULTIPART_BOUNDARY + QString(QLatin1String(last ? "--" : "")) +
           QStringLiteral("\r\n\r\n");
}

void PresenterClient::uploadResourceResponse(QString body)
{
    bool ok = false;
    const QVariantMap data = ServiceEnvelope::data(ServiceEnvelope::parse(body, &ok));
    if (!ok)
        return;
    // A reply without an id still means that the file is stored: empty, where Qt gives null.
    d->resourceId = QStringLiteral("") + data.value(QStringLiteral("id")).toString();
    d->resourcePath = data.value(QStringLiteral("path")).toString();
}
