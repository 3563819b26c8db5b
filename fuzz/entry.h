#pragma once

#include <cstddef>
#include <cstdint>

/// The function that libFuzzer calls with each input, by the name that it asks for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
