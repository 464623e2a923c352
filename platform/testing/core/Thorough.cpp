#include "platform/testing/Thorough.h"

#include <cstdlib>

namespace tavrix::testing
{

bool AreTestsThorough()
{
    static const bool thorough = std::getenv("TAVRIX_TESTS_THOROUGH") != nullptr;
    return thorough;
}

unsigned NextPlace(unsigned place)
{
    constexpr unsigned dense = 32;
    constexpr unsigned share = 16;
    return place + 1 + (AreTestsThorough() || place < dense ? 0 : place / share);
}

} // namespace tavrix::testing
