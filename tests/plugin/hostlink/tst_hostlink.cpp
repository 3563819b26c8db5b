#include "hostlink.h"

#include <QTest>

class tst_HostLink : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typeNumbers();
    void typeToString_data();
    void typeToString();
    void typeFromString_data();
    void typeFromString();

    void errorNumbers();
    void errorToString_data();
    void errorToString();

    void commandTable();
    void getCommand_data();
    void getCommand();

    void validate_data();
    void validate();
};

void tst_HostLink::typeNumbers()
{
    QList<int> walked;
    for (const int type : DataTypes::types)
        walked.append(type);
    QCOMPARE(walked, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));

    using namespace DataTypes;
    const QList<int> named
        = {Bit, Short, Long, Word, DWord, Hex16, Hex32, Float, Double, Ascii, UnknownType};
    QCOMPARE(named, walked);
}

void tst_HostLink::typeToString_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");

    QTest::newRow("bit") << 0 << QStringLiteral("BIT");
    QTest::newRow("short") << 1 << QStringLiteral("Short");
    QTest::newRow("long") << 2 << QStringLiteral("Long");
    QTest::newRow("word") << 3 << QStringLiteral("Word");
    QTest::newRow("dword") << 4 << QStringLiteral("DWord");
    QTest::newRow("hex16") << 5 << QStringLiteral("Hexadecimal 16Bit");
    QTest::newRow("hex32") << 6 << QStringLiteral("Hexadecimal 32Bit");
    QTest::newRow("float") << 7 << QStringLiteral("Float");
    QTest::newRow("double") << 8 << QStringLiteral("Double");
    QTest::newRow("ascii, the last") << 9 << QStringLiteral("ASCII");
    QTest::newRow("above the last") << 10 << QStringLiteral("Unknown Data Type");
    QTest::newRow("above the list") << 11 << QStringLiteral("Unknown Data Type");
    QTest::newRow("negative") << -1 << QStringLiteral("Unknown Data Type");
    QTest::newRow("greatest") << 2147483647 << QStringLiteral("Unknown Data Type");
}

void tst_HostLink::typeToString()
{
    QFETCH(int, type);
    QTEST(DataTypes::typeToString(type), "text");
}

void tst_HostLink::typeFromString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type");

    QTest::newRow("first") << QStringLiteral("0") << 0;
    QTest::newRow("float") << QStringLiteral("7") << 7;
    QTest::newRow("last") << QStringLiteral("9") << 9;
    QTest::newRow("beyond the list") << QStringLiteral("42") << 42;
    QTest::newRow("negative") << QStringLiteral("-1") << -1;
    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("name of type 0") << QStringLiteral("BIT") << 0;
    QTest::newRow("name of type 7") << QStringLiteral("Float") << 0;
    QTest::newRow("no number") << QStringLiteral("abc") << 0;
    QTest::newRow("hexadecimal") << QStringLiteral("0x7") << 0;
    QTest::newRow("beyond 16 bits") << QStringLiteral("65536") << 65536;
    QTest::newRow("beyond 32 bits") << QStringLiteral("4294967296") << 0;
}

void tst_HostLink::typeFromString()
{
    QFETCH(QString, text);
    QTEST(DataTypes::typeFromString(text), "type");
}

void tst_HostLink::errorNumbers()
{
    using namespace Errors;
    const QList<int> named = {Ok,
                              DataTypeNotBoolean,
                              DataTypeNotValid,
                              ValueOutOfRange,
                              InvalidFormatForDataType,
                              BitNumberInvalid,
                              InvalidAddress,
                              InvalidPort,
                              DataLengthInvalid,
                              InvalidDataProvided,
                              NoDataProvided,
                              ProtocolError,
                              DataItemParametersInvalid,
                              UnknownError};
    QCOMPARE(named, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
    QCOMPARE(sizeof(Error), std::size_t(4));
}

void tst_HostLink::errorToString_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");

    QTest::newRow("0") << 0 << QStringLiteral("OK");
    QTest::newRow("1") << 1 << QStringLiteral("data type not boolean");
    QTest::newRow("2") << 2 << QStringLiteral("data type not valid");
    QTest::newRow("3") << 3 << QStringLiteral("value out of range");
    QTest::newRow("4") << 4 << QStringLiteral("invalid format for data type");
    QTest::newRow("5") << 5 << QStringLiteral("bit number invalid");
    QTest::newRow("6") << 6 << QStringLiteral("invalid address");
    QTest::newRow("7") << 7 << QStringLiteral("invalid port");
    QTest::newRow("8") << 8 << QStringLiteral("data lenght invalid");
    QTest::newRow("9") << 9 << QStringLiteral("invalid data provided");
    QTest::newRow("10") << 10 << QStringLiteral("no data provided");
    QTest::newRow("11") << 11 << QStringLiteral("protocol error");
    QTest::newRow("12") << 12 << QStringLiteral("Data item parameters invalid");
    QTest::newRow("13") << 13 << QStringLiteral("Unknown error: 13");
    QTest::newRow("above the last") << 14 << QStringLiteral("Unknown error: 13");
    QTest::newRow("far above") << 1000 << QStringLiteral("Unknown error: 13");
    QTest::newRow("negative") << -1 << QStringLiteral("Unknown error: 13");
}

void tst_HostLink::errorToString()
{
    QFETCH(int, code);
    QTEST(Errors::errorToString(static_cast<Errors::Error>(code)), "text");
}

void tst_HostLink::commandTable()
{
    const QMap<QString, QString> expected = {
        {QStringLiteral("read"), QStringLiteral("RD")},
        {QStringLiteral("write"), QStringLiteral("WR")},
    };
    QCOMPARE(Frame::commands(), expected);
    QCOMPARE(Frame::commandSet, expected);
}

void tst_HostLink::getCommand_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("count");
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("line");

    const auto row = [](const char *name, const char *command, const char *address,
                        const char *count, const char *data, const char *line) {
        QTest::newRow(name) << QString::fromLatin1(command) << QString::fromLatin1(address)
                            << QString::fromLatin1(count) << QString::fromLatin1(data)
                            << QString::fromLatin1(line);
    };
    row("read one word", "read", "D100", "1", "", "RD D100\r");
    row("read two words", "read", "D100", "2", "", "RDS D100 2\r");
    row("read ten words", "read", "D200", "10", "", "RDS D200 10\r");
    row("read with count 0", "read", "D100", "0", "", "RD D100\r");
    row("read with count -1", "read", "D100", "-1", "", "");
    row("read with a count that is no number", "read", "D100", "abc", "", "RD D100\r");
    row("read with a padded count", "read", "D100", "05", "", "RDS D100 05\r");
    row("read with a count beyond 32 bits", "read", "D100", "4294967296", "", "RD D100\r");
    row("read without count", "read", "D100", "", "", "");
    row("read without address", "read", "", "1", "", "");
    row("read leaves data out", "read", "D100", "1", "5", "RD D100\r");
    row("write one word", "write", "DM100", "1", "123", "WR DM100 123\r");
    row("write three words", "write", "D200", "3", "1 2 3", "WRS D200 3 1 2 3\r");
    row("write with count 0", "write", "DM100", "0", "8", "WR DM100 8\r");
    row("write with count -1", "write", "D100", "-1", "5", "");
    row("write without data", "write", "D100", "1", "", "");
    row("write without count", "write", "D100", "", "5", "");
    row("write without address", "write", "", "1", "5", "");
    row("write copies blanks", "write", "DM100", "2", " 16961  67 ", "WRS DM100 2  16961  67 \r");
    row("no operation", "", "D100", "1", "5", "");
    row("unknown operation", "clear", "D100", "1", "5", " D100\r");
    row("unknown operation, two words", "clear", "D100", "2", "5", "S D100 2\r");
    row("operation in capitals", "READ", "D100", "1", "", " D100\r");
    row("operation in capitals needs no data", "WRITE", "D100", "1", "", " D100\r");
}

void tst_HostLink::getCommand()
{
    QFETCH(QString, command);
    QFETCH(QString, address);
    QFETCH(QString, count);
    QFETCH(QString, data);
    QTEST(Frame::getCommand(command, address, count, data), "line");
}

void tst_HostLink::validate_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<QString>("port");
    QTest::addColumn<int>("code");

    const auto row = [](const char *name, const char *ip, const char *port, Errors::Error code) {
        QTest::newRow(name) << QString::fromLatin1(ip) << QString::fromLatin1(port) << int(code);
    };
    using namespace Errors;
    row("good", "192.168.0.10", "8501", Ok);
    row("part at its greatest", "192.168.0.255", "8501", Ok);
    row("part above its greatest", "192.168.0.256", "8501", InvalidAddress);
    row("first part at its greatest", "255.0.0.0", "8501", Ok);
    row("first part above its greatest", "256.0.0.0", "8501", InvalidAddress);
    row("part below 250", "249.199.99.9", "8501", Ok);
    row("all zero", "0.0.0.0", "8501", Ok);
    row("leading zeros", "192.168.000.010", "8501", Ok);
    row("two leading zeros", "00.001.010.0", "8501", Ok);
    row("four digits", "192.168.0.0010", "8501", InvalidAddress);
    row("three parts", "1.2.3", "8501", InvalidAddress);
    row("four parts", "1.2.3.4", "8501", Ok);
    row("five parts", "1.2.3.4.5", "8501", InvalidAddress);
    row("empty part", "1..3.4", "8501", InvalidAddress);
    row("empty address", "", "8501", InvalidAddress);
    row("blank behind", "192.168.0.10 ", "8501", InvalidAddress);
    row("blank before", " 192.168.0.10", "8501", InvalidAddress);
    row("one line feed behind", "192.168.0.10\n", "8501", Ok);
    row("two line feeds behind", "192.168.0.10\n\n", "8501", InvalidAddress);
    row("line feed before", "\n192.168.0.10", "8501", InvalidAddress);
    row("host name", "plc.example", "8501", InvalidAddress);
    row("localhost", "localhost", "8501", InvalidAddress);
    row("with a port", "192.168.0.10:8501", "8501", InvalidAddress);
    row("IPv6", "::1", "8501", InvalidAddress);
    row("negative part", "192.168.0.-1", "8501", InvalidAddress);
    row("no port", "192.168.0.10", "", InvalidPort);
    row("port without digit", "192.168.0.10", "abc", InvalidPort);
    row("port with a digit inside", "192.168.0.10", "85x", Ok);
    row("negative port", "192.168.0.10", "-1", Ok);
    row("port 0", "192.168.0.10", "0", Ok);
    row("port beyond 16 bits", "192.168.0.10", "70000", Ok);
    row("both bad", "1.2.3", "abc", InvalidPort);
    row("both empty", "", "", InvalidPort);
    QTest::newRow("address with a digit of another script")
        << QStringLiteral("192.168.0.\u0661") << QStringLiteral("8501") << int(InvalidAddress);
    QTest::newRow("port in digits of another script")
        << QStringLiteral("192.168.0.10") << QStringLiteral("\u0661") << int(InvalidPort);
}

void tst_HostLink::validate()
{
    QFETCH(QString, ip);
    QFETCH(QString, port);
    QTEST(int(ethernetPLC::validate(ip, port)), "code");
}

QTEST_GUILESS_MAIN(tst_HostLink)
#include "tst_hostlink.moc"
