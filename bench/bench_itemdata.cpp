#include "itemdata.h"
#include "operation.h"

#include <array>

namespace {

struct Form
{
    std::string name;
    QString address;
};

const std::array<Form, 6> forms = {{
    {"simple", QStringLiteral("DM1000")},
    {"hexadecimal", QStringLiteral("W1F")},
    {"bit", QStringLiteral("DM1000.15")},
    {"count", QStringLiteral("D2000-10")},
    {"range", QStringLiteral("D2000-2009")},
    {"none", QStringLiteral("DM1000 ")},
}};

// A value of each type, and an answer that holds it.
struct Sample
{
    int type;
    QString address;
    QString value;
    QString answer;
};

const std::array<Sample, 10> samples = {{
    {DataTypes::Bit, QStringLiteral("DM1000.3"), QStringLiteral("1"), QStringLiteral("00008\r\n")},
    {DataTypes::Short, QStringLiteral("D201"), QStringLiteral("-1234"),
     QStringLiteral("64302\r\n")},
    {DataTypes::Long, QStringLiteral("D201"), QStringLiteral("-123456"),
     QStringLiteral("07616 65534\r\n")},
    {DataTypes::Word, QStringLiteral("D201"), QStringLiteral("12345"), QStringLiteral("12345\r\n")},
    {DataTypes::DWord, QStringLiteral("D201"), QStringLiteral("123456"),
     QStringLiteral("57920 00001\r\n")},
    {DataTypes::Hex16, QStringLiteral("D201"), QStringLiteral("BEEF"), QStringLiteral("48879\r\n")},
    {DataTypes::Hex32, QStringLiteral("D201"), QStringLiteral("DEADBEEF"),
     QStringLiteral("48879 57005\r\n")},
    {DataTypes::Float, QStringLiteral("D201"), QStringLiteral("3.1416"),
     QStringLiteral("04089 16457\r\n")},
    {DataTypes::Double, QStringLiteral("D201"), QStringLiteral("3.141593"),
     QStringLiteral("49284 65056 08699 16393\r\n")},
    {DataTypes::Ascii, QStringLiteral("D201-10"), QStringLiteral("ABCDEFGHIJKLMNOPQRST"),
     QStringLiteral("16961 17475 17989 18503 19017 19531 20045 20559 21073 21587\r\n")},
}};

void addForm(const Form &form)
{
    const QString address = form.address;
    const QString bit = QStringLiteral("0");
    addOperation("readItemAddress/" + form.name, [=] { return readItemAddress(address); });
    addOperation("getDevice/" + form.name, [=] { return ItemData::getDevice(address, bit); });
    addOperation("getBitNo/" + form.name, [=] { return ItemData::getBitNo(address); });
    addOperation("getBitNumber/" + form.name, [=] { return getBitNumber(address); });
    addOperation("addressWordCount/" + form.name,
                 [=] { return ItemData::addressWordCount(address); });
    addOperation("effectiveDataLength/" + form.name,
                 [=] { return ItemData::effectiveDataLength(address); });
}

void addType(const Sample &sample)
{
    const std::string name = DataTypes::typeToString(sample.type).toStdString();
    const int type = sample.type;
    const QString address = sample.address;
    const QString input = sample.value;
    const QString answer = sample.answer;
    const QByteArray bytes = answer.toLatin1();
    const QString typeText = QString::number(type);
    const QString length = ItemData::effectiveDataLength(address);
    addOperation("validateItemFields, read/" + name,
                 [=] { return ItemData::validateItemFields(address, typeText, {}, length); });
    addOperation("validateItemFields, write/" + name,
                 [=] { return ItemData::validateItemFields(address, typeText, input, length); });
    addOperation("checkDataForItem/" + name,
                 [=] { return ItemData::checkDataForItem(input, type, length); });
    addOperation("getDataLength/" + name,
                 [=] { return ItemData::getDataLength(input, type, length); });
    addOperation("getUserData/" + name,
                 [=] { return ItemData::getUserData(answer, type, address); });
    addOperation("getUserText/" + name,
                 [=] { return ItemData::getUserText(bytes, type, address); });
    const QString toConvert = type == DataTypes::Bit ? QStringLiteral("8") : input;
    addOperation("getPlcValue/" + name,
                 [=] { return ItemData::getPlcValue(toConvert, type, address, input); });
    addOperation("arrayToHex/" + name, [=] { return ItemData::arrayToHex(answer); });
}

void addHelpers()
{
    const QString bit = QStringLiteral("1");
    const QString word = QStringLiteral("32768");
    const QString address = QStringLiteral("DM1000.3");
    const QString number = QStringLiteral("18446744073709551615");
    addOperation("getBoolInt", [=] { return ItemData::getBoolInt(bit, word, address); });
    addOperation("decimalToArray", [=] { return ItemData::decimalToArray(number); });
    addOperation("bitSet", [] { return ItemData::bitSet(5, 3); });
    addOperation("bitClear", [] { return ItemData::bitClear(5, 2); });
    addOperation("bitCheck", [] { return ItemData::bitCheck(5, 2); });
}

} // namespace

int main(int argc, char **argv)
{
    for (const Form &form : forms)
        addForm(form);
    for (const Sample &sample : samples)
        addType(sample);
    addHelpers();
    return runOperations(argc, argv);
}
