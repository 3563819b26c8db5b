#pragma once

#include "faultplan.h"
#include "recordingbackend.h"
#include "simulatorthread.h"

#include <vel/velinterface.h>

#include <QMap>

#include <random>

/// What the soak has seen so far.
struct Tally
{
    qint64 good = 0;
    /// Values that did not come, or did not go; an error says so.
    qint64 missing = 0;
    /// Wrong values that the fault in force explains, see Harm.
    qint64 explained = 0;
    /// Wrong values without such an explanation, and missing ones without an error.
    qint64 wrong = 0;
    /// The most cycles of a device from the end of a fault to the first with good values only.
    int worstRecovery = 0;
    QMap<QByteArray, quint64> applied;
    QMap<QString, qint64> errors;
};

/// One simulated controller and the device that reads and writes it, cycle by cycle, with a fault
/// now and then. Memory that nobody wrote tells its own address, so that every value can be judged.
class SoakedDevice
{
public:
    explicit SoakedDevice(int id);

    /// What the host has configured.
    const DeviceInstancePlugin &record() const { return m_record; }
    quint64 exchanges() const { return m_simulator.counters().commands; }
    /// Whether no fault is in force and the last one is over, consequences included.
    bool isWell() const { return m_fault == nullptr && !m_shifted && m_recovery < 0; }

    /// Reads and writes all items once. With `strike` a fault that `random` chooses strikes one of
    /// them now and then.
    void runCycle(VELInterface *plugin, RecordingBackend *host, bool strike, std::mt19937 *random,
                  Tally *tally);

private:
    void addFault(const PlannedFault *fault, const QByteArray &address);
    void put(const QByteArray &fault);
    void read(VELInterface *plugin, RecordingBackend *host, Tally *tally);
    void write(VELInterface *plugin, RecordingBackend *host, Tally *tally);
    void noteConnection();
    bool noteStrike();
    void endFault(Tally *tally);
    bool isExplained(bool struck, int index, int struckIndex) const;
    void count(bool good, bool missing, bool explained, const QString &what, Tally *tally);

    SimulatorThread m_simulator;
    DeviceInstancePlugin m_record;
    int m_cycle = 0;
    quint64 m_clients = 0;
    const PlannedFault *m_fault = nullptr;
    QByteArray m_struckAddress;
    bool m_struck = false;
    // Answers are behind their commands, until there is a new connection.
    bool m_shifted = false;
    bool m_allGood = true;
    // Cycles since the end of the last fault; -1 when all is well again.
    int m_recovery = -1;
};
