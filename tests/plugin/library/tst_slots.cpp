#include "text.h"

#include <keyence.h>

#include <QStringList>
#include <QTest>

// The host calls virtual functions by their number in the vtable, to which the first bytes of the
// object point. A destructor has two entries; the second one also frees the memory.

namespace {

QStringList called;

// A plug-in that records which operation was called. It has no meta-object of its own, because the
// operations of the meta-object are recorded, too.
class Recorder : public Keyence // clazy:exclude=missing-qobject-macro
{
public:
    Recorder() = default;
    ~Recorder() override { called.append(text("destructor")); }
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    static void *operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void *memory)
    {
        called.append(text("delete"));
        ::operator delete(memory);
    }

    const QMetaObject *metaObject() const override
    {
        note("metaObject");
        return nullptr;
    }
    void *qt_metacast(const char * /*name*/) override
    {
        note("qt_metacast");
        return nullptr;
    }
    int qt_metacall(QMetaObject::Call /*call*/, int /*id*/, void ** /*arguments*/) override
    {
        note("qt_metacall");
        return 0;
    }
    bool event(QEvent * /*event*/) override { return note("event"); }
    bool eventFilter(QObject * /*watched*/, QEvent * /*event*/) override
    {
        return note("eventFilter");
    }

    bool init() override { return note("init"); }
    bool stopPlugin() override { return note("stopPlugin"); }
    bool readData(LogList * /*list*/) override { return note("readData"); }
    bool writeData(LogList * /*list*/) override { return note("writeData"); }
    bool logCallback(LogList * /*list*/) override { return note("logCallback"); }
    bool getEventData(LogList * /*list*/) override { return note("getEventData"); }

protected:
    void timerEvent(QTimerEvent * /*event*/) override { note("timerEvent"); }
    void childEvent(QChildEvent * /*event*/) override { note("childEvent"); }
    void customEvent(QEvent * /*event*/) override { note("customEvent"); }
    void connectNotify(const QMetaMethod & /*signal*/) override { note("connectNotify"); }
    void disconnectNotify(const QMetaMethod & /*signal*/) override { note("disconnectNotify"); }

private:
    static bool note(const char *operation)
    {
        called.append(text(operation));
        return true;
    }
};

// Calls the operation by the object's address and the number, as the host does. Null stands for any
// argument.
void callSlot(void *object, int slot)
{
    using Operation = void *(*)(void *object, void *first, void *second, void *third);
    const Operation *table = *static_cast<Operation *const *>(object);
    table[slot](object, nullptr, nullptr, nullptr);
}

// The object with the vtable of the plug-in or with that of the interface.
void *seenAs(Recorder *recorder, bool interface)
{
    return interface ? static_cast<void *>(static_cast<VELInterface *>(recorder)) : recorder;
}

} // namespace

class tst_Slots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void operations_data();
    void operations();
    void destructors_data();
    void destructors();
};

void tst_Slots::operations_data()
{
    QTest::addColumn<bool>("interface");
    QTest::addColumn<int>("slot");
    QTest::addColumn<QString>("operation");

    QTest::newRow("VELInterface 2") << true << 2 << text("init");
    QTest::newRow("VELInterface 3") << true << 3 << text("readData");
    QTest::newRow("VELInterface 4") << true << 4 << text("getEventData");
    QTest::newRow("VELInterface 5") << true << 5 << text("logCallback");
    QTest::newRow("VELInterface 6") << true << 6 << text("writeData");
    QTest::newRow("VELInterface 7") << true << 7 << text("stopPlugin");

    QTest::newRow("Keyence 0") << false << 0 << text("metaObject");
    QTest::newRow("Keyence 1") << false << 1 << text("qt_metacast");
    QTest::newRow("Keyence 2") << false << 2 << text("qt_metacall");
    QTest::newRow("Keyence 5") << false << 5 << text("event");
    QTest::newRow("Keyence 6") << false << 6 << text("eventFilter");
    QTest::newRow("Keyence 7") << false << 7 << text("timerEvent");
    QTest::newRow("Keyence 8") << false << 8 << text("childEvent");
    QTest::newRow("Keyence 9") << false << 9 << text("customEvent");
    QTest::newRow("Keyence 10") << false << 10 << text("connectNotify");
    QTest::newRow("Keyence 11") << false << 11 << text("disconnectNotify");
    QTest::newRow("Keyence 12") << false << 12 << text("init");
    QTest::newRow("Keyence 13") << false << 13 << text("stopPlugin");
    QTest::newRow("Keyence 14") << false << 14 << text("readData");
    QTest::newRow("Keyence 15") << false << 15 << text("writeData");
    QTest::newRow("Keyence 16") << false << 16 << text("logCallback");
    QTest::newRow("Keyence 17") << false << 17 << text("getEventData");
}

void tst_Slots::operations()
{
    QFETCH(bool, interface);
    QFETCH(int, slot);
    QFETCH(QString, operation);

    Recorder recorder;
    called.clear();
    callSlot(seenAs(&recorder, interface), slot);
    QCOMPARE(called, QStringList{operation});
}

void tst_Slots::destructors_data()
{
    QTest::addColumn<bool>("interface");
    QTest::addColumn<int>("slot");
    QTest::addColumn<QStringList>("calls");

    const QStringList inPlace{text("destructor")};
    const QStringList freeing{text("destructor"), text("delete")};
    QTest::newRow("VELInterface 0") << true << 0 << inPlace;
    QTest::newRow("VELInterface 1") << true << 1 << freeing;
    QTest::newRow("Keyence 3") << false << 3 << inPlace;
    QTest::newRow("Keyence 4") << false << 4 << freeing;
}

void tst_Slots::destructors()
{
    QFETCH(bool, interface);
    QFETCH(int, slot);
    QFETCH(QStringList, calls);

    auto *recorder = new Recorder;
    called.clear();
    callSlot(seenAs(recorder, interface), slot);
    const QStringList found = called;
    if (!found.contains(text("delete")))
        Recorder::operator delete(recorder);
    QCOMPARE(found, calls);
}

QTEST_GUILESS_MAIN(tst_Slots)
#include "tst_slots.moc"
