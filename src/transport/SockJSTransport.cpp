#include "transport/SockJSTransport.h"

SockJSTransport::~SockJSTransport() = default;
