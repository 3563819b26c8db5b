#include "text.h"

#include <vel/plugininitoptions.h>
#include <vel/records.h>

#include <QTest>

// The offsets and sizes of the records that the host shares with the plug-in. The numbers are
// computed by hand from the order and the types of the fields: on 32-bit ARM a pointer, a text, a
// list, a map and a time take four bytes, on 64-bit machines eight. Each is aligned to its size. An
// array of two 32-bit words is aligned to four.

namespace {

// Selects the number for the machine that the test runs on.
int here(int on32Bit, int on64Bit)
{
    static_assert(sizeof(void *) == 4 || sizeof(void *) == 8);
    return sizeof(void *) == 4 ? on32Bit : on64Bit;
}

// A row for one field. With another type than the given one it does not compile.
template<typename Type, typename Record>
void addField(const char *name, Type Record::*field, int on32Bit, int on64Bit)
{
    const Record record{};
    const auto *start = reinterpret_cast<const char *>(&record);
    const auto *found = reinterpret_cast<const char *>(&(record.*field));
    QTest::newRow(name) << static_cast<int>(found - start) << on32Bit << on64Bit;
}

template<typename Record>
void addRecord(const char *name, int on32Bit, int on64Bit)
{
    QTest::newRow(name) << static_cast<int>(sizeof(Record)) << static_cast<int>(alignof(Record))
                        << on32Bit << on64Bit;
}

void addDeviceFields()
{
    using Device = DeviceInstancePlugin;
    addField<int>("device 1", &Device::id, 0, 0);
    addField<QString>("device 2", &Device::unused2, 4, 8);
    addField<QString>("device 3", &Device::name, 8, 16);
    addField<QString>("device 4", &Device::unused4, 12, 24);
    addField<quint32>("device 5", &Device::unused5, 16, 32);
    addField<quint32>("device 6", &Device::unused6, 20, 36);
    addField<std::array<quint32, 2>>("device 7", &Device::unused7, 24, 40);
    addField<QString>("device 8", &Device::ipAddress, 32, 48);
    addField<quint32>("device 9", &Device::unused9, 36, 56);
    addField<QString>("device 10", &Device::lastError, 40, 64);
    addField<bool>("device 11", &Device::unused11, 44, 72);
    addField<bool>("device 12", &Device::unused12, 45, 73);
    addField<QMap<QString, QString>>("device 13", &Device::parameters, 48, 80);
    addField<QList<ItemInstancePlugin>>("device 14", &Device::items, 52, 88);
    addField<QList<FileInstancePlugin>>("device 15", &Device::files, 56, 96);
}

void addItemFields()
{
    using Item = ItemInstancePlugin;
    addField<quint32>("item 1", &Item::unused1, 0, 0);
    addField<QString>("item 2", &Item::name, 4, 8);
    addField<QString>("item 3", &Item::unused3, 8, 16);
    addField<QString>("item 4", &Item::unused4, 12, 24);
    addField<QString>("item 5", &Item::unused5, 16, 32);
    addField<quint32>("item 6", &Item::unused6, 20, 40);
    addField<quint32>("item 7", &Item::unused7, 24, 44);
    addField<quint32>("item 8", &Item::unused8, 28, 48);
    addField<quint32>("item 9", &Item::unused9, 32, 52);
    addField<QString>("item 10", &Item::unused10, 36, 56);
    addField<quint32>("item 11", &Item::unused11, 40, 64);
    addField<quint32>("item 12", &Item::unused12, 44, 68);
    addField<quint32>("item 13", &Item::unused13, 48, 72);
    addField<quint32>("item 14", &Item::unused14, 52, 76);
    addField<quint32>("item 15", &Item::unused15, 56, 80);
    addField<QString>("item 16", &Item::unused16, 60, 88);
    addField<quint32>("item 17", &Item::unused17, 64, 96);
    addField<QVector<QString>>("item 18", &Item::unused18, 68, 104);
    addField<quint32>("item 19", &Item::unused19, 72, 112);
    addField<quint32>("item 20", &Item::unused20, 76, 116);
    addField<quint32>("item 21", &Item::unused21, 80, 120);
    addField<quint32>("item 22", &Item::unused22, 84, 124);
    addField<quint32>("item 23", &Item::unused23, 88, 128);
    addField<quint32>("item 24", &Item::unused24, 92, 132);
    addField<QString>("item 25", &Item::lastError, 96, 136);
    addField<QMap<QString, QString>>("item 26", &Item::parameters, 100, 144);
    addField<QList<Mapping>>("item 27", &Item::mappings, 104, 152);
}

void addPluginFields()
{
    using Plugin = PluginInstancePlugin;
    using Columns = QList<DatabaseColumnStructure>;
    addField<quint32>("plug-in 1", &Plugin::unused1, 0, 0);
    addField<QString>("plug-in 2", &Plugin::unused2, 4, 8);
    addField<QString>("plug-in 3", &Plugin::unused3, 8, 16);
    addField<QString>("plug-in 4", &Plugin::unused4, 12, 24);
    addField<QString>("plug-in 5", &Plugin::unused5, 16, 32);
    addField<QString>("plug-in 6", &Plugin::unused6, 20, 40);
    addField<quint32>("plug-in 7", &Plugin::unused7, 24, 48);
    addField<quint32>("plug-in 8", &Plugin::unused8, 28, 52);
    addField<Columns>("plug-in 9", &Plugin::unused9, 32, 56);
    addField<Columns>("plug-in 10", &Plugin::unused10, 36, 64);
    addField<Columns>("plug-in 11", &Plugin::unused11, 40, 72);
    addField<Columns>("plug-in 12", &Plugin::unused12, 44, 80);
    addField<Columns>("plug-in 13", &Plugin::unused13, 48, 88);
    addField<Columns>("plug-in 14", &Plugin::unused14, 52, 96);
    addField<Columns>("plug-in 15", &Plugin::unused15, 56, 104);
    addField<Columns>("plug-in 16", &Plugin::unused16, 60, 112);
    addField<QList<DeviceInstancePlugin>>("plug-in 17", &Plugin::unused17, 64, 120);
    addField<QList<ItemInstancePlugin>>("plug-in 18", &Plugin::unused18, 68, 128);
    addField<QList<FileInstancePlugin>>("plug-in 19", &Plugin::unused19, 72, 136);
    addField<quint32>("plug-in 20", &Plugin::unused20, 76, 144);
}

void addCycleFields()
{
    addField<QMap<QString, QString>>("data item 1", &DataItem::values, 0, 0);
    addField<QDateTime>("data item 2", &DataItem::timestamp, 4, 8);
    addField<ItemInstancePlugin>("data item 3", &DataItem::item, 8, 16);
    addField<PluginInstancePlugin>("data item 4", &DataItem::plugin, 116, 176);
    addField<ItemInstancePlugin>("data item 5", &DataItem::secondItem, 196, 328);
    addField<DeviceInstancePlugin>("data item 6", &DataItem::device, 304, 488);
    addField<quint32>("data item 7", &DataItem::unused7, 364, 592);
    addField<quint32>("data item 8", &DataItem::unused8, 368, 596);
    addField<quint32>("data item 9", &DataItem::unused9, 372, 600);
    addField<quint32>("data item 10", &DataItem::unused10, 376, 604);
    addField<quint32>("data item 11", &DataItem::unused11, 380, 608);

    const LogList list;
    const auto *device
        = reinterpret_cast<const char *>(&static_cast<const DeviceInstancePlugin &>(list));
    QTest::newRow("list, its device")
        << static_cast<int>(device - reinterpret_cast<const char *>(&list)) << 0 << 0;
    addField<QList<DataItem>>("list, its items", &LogList::dataItems, 60, 104);
}

void addRegistrationFields()
{
    using Column = DatabaseColumnStructure;
    using Selection = Column::SelectionValue;
    addField<QString>("column 1", &Column::name, 0, 0);
    addField<Column::DataType>("column 2", &Column::type, 4, 8);
    addField<int>("column 3", &Column::intValue, 8, 12);
    addField<QString>("column 4", &Column::defaultValue, 12, 16);
    addField<QString>("column 5", &Column::description, 16, 24);
    addField<QList<Selection>>("column 6", &Column::selectionValues, 20, 32);
    addField<QString>("selection 1", &Selection::text, 0, 0);
    addField<QString>("selection 2", &Selection::value, 4, 8);

    using Options = PluginInitOptions;
    addField<int>("options 1", &Options::unused1, 0, 0);
    addField<bool>("options 2", &Options::flag2, 4, 4);
    addField<bool>("options 3", &Options::flag3, 5, 5);
    addField<bool>("options 4", &Options::unused4, 6, 6);
    addField<int>("options 5", &Options::unused5, 8, 8);
    addField<bool>("options 6", &Options::flag6, 12, 12);
    addField<bool>("options 7", &Options::flag7, 13, 13);
    addField<bool>("options 8", &Options::unused8, 14, 14);
    addField<bool>("options 9", &Options::unused9, 15, 15);
    addField<QString>("options 10", &Options::text10, 16, 16);
    addField<QMap<QString, QVariant>>("options 11", &Options::unused11, 20, 24);

    // Only the first fields of these are known.
    addField<quint32>("file 1", &FileInstancePlugin::unused1, 0, 0);
    addField<QString>("file 2", &FileInstancePlugin::unused2, 4, 8);
    addField<QString>("network interface 1", &NetworkInterfaceInstance::name, 0, 0);
}

} // namespace

class tst_Layout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fields_data();
    void fields();
    void records_data();
    void records();
    void defaultOptions();
};

void tst_Layout::fields_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("on32Bit");
    QTest::addColumn<int>("on64Bit");

    addDeviceFields();
    addItemFields();
    addPluginFields();
    addCycleFields();
    addRegistrationFields();
}

void tst_Layout::fields()
{
    QFETCH(int, offset);
    QFETCH(int, on32Bit);
    QFETCH(int, on64Bit);
    QCOMPARE(offset, here(on32Bit, on64Bit));
}

void tst_Layout::records_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("alignment");
    QTest::addColumn<int>("on32Bit");
    QTest::addColumn<int>("on64Bit");

    addRecord<DeviceInstancePlugin>("device", 60, 104);
    addRecord<ItemInstancePlugin>("item", 108, 160);
    addRecord<PluginInstancePlugin>("plug-in", 80, 152);
    addRecord<DataItem>("data item", 384, 616);
    addRecord<LogList>("list", 64, 112);
    addRecord<DatabaseColumnStructure>("column", 24, 40);
    addRecord<DatabaseColumnStructure::SelectionValue>("selection", 8, 16);
    addRecord<PluginInitOptions>("options", 24, 32);
    addRecord<QDateTime>("time", 4, 8);
}

void tst_Layout::records()
{
    QFETCH(int, size);
    QFETCH(int, alignment);
    QFETCH(int, on32Bit);
    QFETCH(int, on64Bit);
    QCOMPARE(size, here(on32Bit, on64Bit));
    QCOMPARE(alignment, here(4, 8));
}

void tst_Layout::defaultOptions()
{
    const PluginInitOptions options;
    const auto *bytes = reinterpret_cast<const char *>(&options);
    QByteArray numbers(bytes, 16);
    // There is no other field between the first three flags and the next number.
    numbers[7] = '\0';
    QCOMPARE(numbers.toHex(' '), QByteArray("18 00 00 00 00 00 01 00 b4 00 00 00 00 00 00 00"));
    QCOMPARE(*reinterpret_cast<const QString *>(bytes + 16), text("discover"));
    const auto *map = reinterpret_cast<const QMap<QString, QVariant> *>(bytes + here(20, 24));
    QVERIFY(map->isEmpty());
}

QTEST_GUILESS_MAIN(tst_Layout)
#include "tst_layout.moc"
