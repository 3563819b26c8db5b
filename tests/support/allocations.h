#pragma once

/// How often the program, its libraries included, has asked for memory so far. A program that is to
/// count links `test-allocations`.
long allocationCount();
