// The tests of a program run each in a process of its own, without the start of one.
#pragma once

namespace tavrix::testing
{

/// Whether TAVRIX_TESTS_APART asks for it: the seconds that a test may take.
bool AreTestsApart();

/// Runs each test that --gtest_filter chooses in a fork of this process, which loaded its libraries
/// once for all, one after the other: `run` gives the exit status of one. A test that takes longer
/// than its seconds is ended. What tests start themselves is not told of TAVRIX_TESTS_APART.
/// Returns the exit status of the whole: 0 when every test ran and gave 0. There must be no other
/// thread yet.
int RunTestsApart(int (*run)());

} // namespace tavrix::testing
