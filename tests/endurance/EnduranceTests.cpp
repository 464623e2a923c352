// A person who does anything at all to the whole program, the same for a seed every time, while
// memory, disks, files, plugins and servers fail: the program lives through it, comes back to what
// it held before, and ends by its own Exit with nothing left behind.

#include "tests/endurance/RandomPerson.h"

#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

using endurance::RandomPerson;

uint64_t NumberOf(const char* name, uint64_t otherwise)
{
    const char* const text = std::getenv(name);
    return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

class Endurance : public ::testing::TestWithParam<uint64_t>
{
    tavrix::testing::Scope scope;
};

} // namespace

TEST_P(Endurance, ThroughWhateverAPersonDoesTheProgramLivesAndEndsClean)
{
    const uint64_t seed = NumberOf("TAVRIX_ENDURANCE_SEED", 1) + GetParam();
    const auto steps = static_cast<unsigned>(NumberOf("TAVRIX_ENDURANCE_STEPS", 600));
    RandomPerson person(seed, steps);
    EXPECT_EQ(person.UseTheProgram(), 0);
    if (HasFailure())
        std::fprintf(stderr, "%s", person.Notes().Text().c_str());
}

INSTANTIATE_TEST_SUITE_P(Seed, Endurance, ::testing::Values(0, 1, 2, 3));
