#pragma once

#include <QByteArray>
#include <QNetworkRequest>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

/// The posts that go out over Qt's HTTP stack: requests to the service, and "/xhr_send".
namespace PostRequest {

/// A post to \p url with the headers that all of them carry.
QNetworkRequest make(const QUrl& url, const QString& contentType);

/// Posts \p body, and lets the connection, if it is kept, send what is written to it at once: Qt writes a
/// post's header and its body apart, and Nagle's algorithm would hold the body back until the server's kernel
/// has acknowledged the header, some 40 ms later.
///
/// The post has no address, and fails, where the process has no file descriptors left: Qt aborts the process
/// when the first request finds none for its thread.
QNetworkReply* send(QNetworkAccessManager* manager, QNetworkRequest request, const QByteArray& body);

/// Why \p reply has failed, for the log.
QString errorText(const QNetworkReply* reply);

} // namespace PostRequest
