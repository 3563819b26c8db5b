#include "entry.h"

#include "input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    check(Input(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size))));
    return 0;
}
