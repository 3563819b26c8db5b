#pragma once

#include <netinet/in.h>

/// The socket address of a port on 127.0.0.1.
sockaddr_in loopbackAddress(int port);

/// A non-blocking socket that listens on a free port of 127.0.0.1, which is stored in `port`. On
/// failure it ends the program: no test could continue.
int listenOnLoopback(int backlog, int *port);
