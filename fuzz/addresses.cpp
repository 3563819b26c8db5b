// The grammar of addresses and the checks of an item. The fields: address, type, value, length.

#include "expectedgrammar.h"
#include "input.h"
#include "itemdata.h"
#include "require.h"

namespace {

void checkAddress(const QString &address)
{
    require(addressReading(address) == expectedReading(address),
            "an address is read as its patterns say");
    requireSame(getBitNumber(address), expectedBitNumber(address),
                "the bit of an address is what stands behind its one point");
    const int words = expectedWordCount(address);
    requireSame(ItemData::effectiveDataLength(address),
                words > 0 ? QString::number(words) : QString(),
                "the length of an address is its number of words");
}

void checkItem(const QString &address, const QString &dataType, const QString &value,
               const QString &length)
{
    const Errors::Error result = ItemData::validateItemFields(address, dataType, value, length);
    requireSame(result, expectedValidation(address, dataType, value, length),
                "an item is judged as its patterns say");
    requireSame(ItemData::validateItemFields(readItemAddress(address),
                                             DataTypes::typeFromString(dataType), value, length),
                result, "an address that was read before is judged alike");
    const int type = dataType.toUShort();
    requireSame(ItemData::getDataLength(value, type, length),
                expectedDataLength(value, type, length), "a value takes its type's words");
    requireSame(ItemData::checkDataForItem(value, type, length), expectedCheck(value, type, length),
                "a value is judged as its pattern says");
}

} // namespace

void check(Input input)
{
    const QString address = input.text();
    const QString dataType = input.text();
    const QString value = input.text();
    checkAddress(address);
    checkItem(address, dataType, value, ItemData::effectiveDataLength(address));
    checkItem(address, dataType, value, input.text());
}
