#pragma once

#include "controller/controller.h"
#include "controller/setup.h"
#include "network/server.h"

#include <memory>
#include <vector>

/// The controllers of one program, each with a server of its own.
class Simulation : public QObject
{
    Q_OBJECT

public:
    /// At least one controller.
    explicit Simulation(const QList<Setup> &setups, QObject *parent = nullptr);
    ~Simulation() override;
    Simulation(const Simulation &) = delete;
    Simulation &operator=(const Simulation &) = delete;

    /// Starts all servers. False, and none is started, when one cannot: `errorString()` then tells
    /// where and why.
    bool listen();

    QString errorString() const { return m_errorString; }

    /// All controllers in their order; where they listen is known after listen().
    NamedControllers controllers() const;

Q_SIGNALS:
    /// A controller could not listen again after a restart, `reason` tells why.
    void restartFailed(const QString &reason);

private:
    struct ServedController;

    bool listenOnce();
    void close();

    std::vector<std::unique_ptr<ServedController>> m_controllers;
    QString m_errorString;
};
