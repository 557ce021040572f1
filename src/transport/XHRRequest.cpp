#include "transport/XHRRequest.h"

std::atomic<int> XHRRequest::REQUEST_COUNTER{0};

XHRRequest::XHRRequest(const QString& path, const QString& payload, QObject* parent)
    : QObject(parent), m_requestId(++REQUEST_COUNTER), m_path(path), m_payload(payload)
{}
