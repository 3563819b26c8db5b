#pragma once

#include <QByteArray>
#include <QList>

/// An item with the parameters of the real plug-in, by default a signed word. `more` follows the
/// parameters.
inline QByteArray itemJson(const QByteArray &name, const QByteArray &address,
                           const QByteArray &memoryType = "1", const QByteArray &dataType = "Short",
                           const QByteArray &more = "")
{
    return R"({"name": ")" + name + R"(", "parameters": {"memory_address": ")" + address
           + R"(", "memory_type": ")" + memoryType + R"(", "data_type": ")" + dataType + R"("})"
           + more + '}';
}

inline QByteArray portParameter(int port)
{
    return R"("port": ")" + QByteArray::number(port) + '"';
}

/// A plant with the device "Press". `parameters` are the members of its object of parameters.
inline QByteArray plantJson(const QByteArray &ip, const QByteArray &parameters,
                            const QList<QByteArray> &items)
{
    return R"({"devices": [{"id": 1, "name": "Press", "ip": ")" + ip + R"(", "parameters": {)"
           + parameters + R"(}, "items": [)" + items.join(",\n") + "]}]}";
}
