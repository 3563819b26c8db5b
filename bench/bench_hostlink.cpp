#include "hostlink.h"
#include "operation.h"

namespace {

void addLines()
{
    const QString device = QStringLiteral("DM1000");
    const QString word = QStringLiteral("1234");
    const QString words = QStringLiteral("16961 17475 17989 18503 19017 19531 20045 20559");
    const QString one = QStringLiteral("1");
    const QString eight = QStringLiteral("8");
    const QString read = QStringLiteral("read");
    const QString write = QStringLiteral("write");
    addOperation("getCommand/read", [=] { return Frame::getCommand(read, device, one, {}); });
    addOperation("getCommand/read 8 words",
                 [=] { return Frame::getCommand(read, device, eight, {}); });
    addOperation("getCommand/write", [=] { return Frame::getCommand(write, device, one, word); });
    addOperation("getCommand/write 8 words",
                 [=] { return Frame::getCommand(write, device, eight, words); });
    addOperation("getCommand/incomplete",
                 [=] { return Frame::getCommand(write, device, one, {}); });
}

void addEndPoints()
{
    const QString address = QStringLiteral("192.168.100.200");
    const QString name = QStringLiteral("plc.example.org");
    const QString port = QStringLiteral("8501");
    addOperation("validate/valid", [=] { return ethernetPLC::validate(address, port); });
    addOperation("validate/bad address", [=] { return ethernetPLC::validate(name, port); });
    addOperation("validate/bad port", [=] { return ethernetPLC::validate(address, name); });
}

void addTables()
{
    for (const int type : DataTypes::types) {
        const std::string number = std::to_string(type);
        const QString text = QString::number(type);
        addOperation("typeToString/" + number, [=] { return DataTypes::typeToString(type); });
        addOperation("typeFromString/" + number, [=] { return DataTypes::typeFromString(text); });
    }
    for (unsigned int code = Errors::Ok; code <= Errors::UnknownError; ++code)
        addOperation("errorToString/" + std::to_string(code),
                     [=] { return Errors::errorToString(static_cast<Errors::Error>(code)); });
}

} // namespace

int main(int argc, char **argv)
{
    addLines();
    addEndPoints();
    addTables();
    return runOperations(argc, argv);
}
