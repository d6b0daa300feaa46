#pragma once

// How often this test program has taken memory with new.

#include <cstddef>

namespace korvane::test
{

[[nodiscard]] std::size_t allocationCount();

} // namespace korvane::test
