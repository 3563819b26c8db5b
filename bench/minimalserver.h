#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

/// A server process that does the least for an exchange: one wait, one read, one send. It answers
/// every request with the word 12345, on any number of connections, in the protocol of the
/// controllers or, for a request of 12 bytes, in Modbus TCP. It ends with the object.
class MinimalServer
{
public:
    MinimalServer();
    ~MinimalServer();
    MinimalServer(const MinimalServer &) = delete;
    MinimalServer &operator=(const MinimalServer &) = delete;

    int port() const { return m_port; }

private:
    int m_port = 0;
    pid_t m_process = -1;
};

/// Allows this process as many descriptors as the system does.
void allowManyDescriptors();

/// A blocking connection to the port on 127.0.0.1. Without one it ends the program.
int connectedTo(int port);

/// So many times: sends a read of one word, waits, and reads the answer; with nothing else around
/// it. A failure ends the program.
void exchangeBare(int descriptor, int count);
