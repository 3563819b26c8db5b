#include "program/simulation.h"

#include "controller/endpoint.h"

struct Simulation::ServedController
{
    explicit ServedController(const Setup &setup) : place(setup.place), controller(setup.profile)
    {
        for (const GeneratedValue &generated : setup.generators)
            controller.memory.generate(generated.address, generated.generator);
        for (const StoredValue &cell : setup.memory)
            controller.memory.setValue(cell.address, cell.value);
        for (const QByteArray &fault : setup.faults)
            controller.faults.add(fault);
        controller.replay = setup.replay;
    }

    Place place;
    QByteArray endpoint;
    Controller controller;
    Server server{&controller};
};

Simulation::Simulation(const QList<Setup> &setups, QObject *parent) : QObject(parent)
{
    for (const Setup &setup : setups) {
        m_controllers.push_back(std::make_unique<ServedController>(setup));
        Server *server = &m_controllers.back()->server;
        connect(server, &Server::restartFailed, this,
                [this, server] { Q_EMIT restartFailed(server->errorString()); });
    }
}

Simulation::~Simulation() = default;

bool Simulation::listen()
{
    // While the first port is free, one of those that follow it may be in use.
    const bool choose = m_controllers.size() > 1 && m_controllers.back()->place.port == 0;
    const int attempts = choose ? 20 : 1;
    for (int i = 0; i < attempts; ++i) {
        if (listenOnce())
            return true;
        close();
    }
    return false;
}

bool Simulation::listenOnce()
{
    const Server &first = m_controllers.front()->server;
    for (const auto &served : m_controllers) {
        const Place &place = served->place;
        int port = place.port;
        if (port == 0 && place.portOffset && first.isListening())
            port = first.serverPort() + *place.portOffset;
        Server &server = served->server;
        if (port > 65535 || !server.listen(place.address, static_cast<quint16>(port))) {
            m_errorString
                = QString::fromLatin1(endpointText(place.address, static_cast<quint16>(port)))
                  + u": " + server.errorString();
            return false;
        }
        served->endpoint = endpointText(server.serverAddress(), server.serverPort());
    }
    return true;
}

void Simulation::close()
{
    for (const auto &served : m_controllers)
        served->server.close();
}

NamedControllers Simulation::controllers() const
{
    NamedControllers controllers;
    for (const auto &served : m_controllers)
        controllers.append({served->place.name, served->endpoint, &served->controller});
    return controllers;
}
