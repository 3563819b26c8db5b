#pragma once

#include <vector>

/// A listening socket on loopback whose queue is full, so that connecting to it is never answered.
class FullQueue
{
public:
    FullQueue();
    ~FullQueue();
    FullQueue(const FullQueue &) = delete;
    FullQueue &operator=(const FullQueue &) = delete;

    int port() const { return m_port; }

private:
    std::vector<int> m_descriptors;
    int m_port = 0;
};
