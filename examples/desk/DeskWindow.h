#pragma once

#include <QMainWindow>
#include <QUrl>

#include <memory>

/// The desk's window: the page to log in, that of the lesson, what went wrong, and what is going on.
std::unique_ptr<QMainWindow> makeDesk(const QUrl& server);
