#pragma once

#include <QByteArray>
#include <QStringList>

/// The kinds of cases. Each takes its input apart, and writes what comes out.
namespace Cases {

using Case = void (*)(const QByteArray& input, QStringList* out);

void message(const QByteArray& input, QStringList* out);
void frame(const QByteArray& input, QStringList* out);
void http(const QByteArray& input, QStringList* out);
void gzip(const QByteArray& input, QStringList* out);
void payload(const QByteArray& input, QStringList* out);
void block(const QByteArray& input, QStringList* out);
void json(const QByteArray& input, QStringList* out);
void reply(const QByteArray& input, QStringList* out);
void send(const QByteArray& input, QStringList* out);

} // namespace Cases
