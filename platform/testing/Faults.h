// Faults for tests: one place of a run after the other fails, and the test looks at what is left.
//
// A fault test takes some eight lines:
//
//     TEST(PropertyList, SurvivesEveryShortageOfMemory)
//     {
//         ForEveryFault(FaultKind::Allocation, [] {
//             PropertyList list;
//             const i32 result = list.SetUnsigned(TEXT("key"), 7);
//             EXPECT_TRUE(result == Added || result < 0);
//         });
//     }
//
// Allocations are those from the device's heaps, the global heap and for DIB sections, and what the
// program takes from the C run time: malloc, calloc and new (std::nothrow) of everything that is
// linked into the test program, the test's own calls included. (`new` that throws is the test's and
// the host's and never fails.)
#pragma once

#include "platform/testing/Testing.h"

#include <functional>

namespace tavrix::testing
{

enum class FaultKind {
    Allocation,
    Create,     // making a file or a folder
    Open,       // opening a file that is there
    Read,       // fails
    ShortRead,  // one byte fewer than there are
    Write,      // nothing is written
    ShortWrite, // one byte fewer
    Thread,     // making a thread
    Socket      // a call on a socket
};

/// How far a fault reaches: the n-th operation of its kind alone, or all from there on.
enum class FaultReach { Once, Onward };

/// One armed fault. It fires at the n-th operation (from 1) of its kind that follows its making,
/// and rests again at its end or when it is disarmed. One at a time; it replaces a file or
/// allocation fault that a test has set.
class ArmedFault
{
public:
    ArmedFault(FaultKind kind, unsigned number, FaultReach reach);
    ~ArmedFault() { Disarm(); }
    ArmedFault(const ArmedFault&) = delete;
    ArmedFault& operator=(const ArmedFault&) = delete;

    void Disarm();
    /// How many operations of the kind have come.
    unsigned Seen() const;
    bool Fired() const;

private:
    FaultKind kind;
    unsigned number;
};

/// Runs `body` without a fault and then with the first, the second, ... operation failing, first
/// that one alone, then all from it on; each time until a run in which nothing fired. Of many
/// operations those fail that NextPlace chooses. After every
/// run `check` is called with nothing armed, and told whether the fault fired.
///
/// Fails the test if no fault ever fires, and if a run leaves more device memory, heaps, handles or
/// drawing objects behind than the first one did. Stops at the first run that fails the test, with
/// the number of the fault in the message. Answers how many operations there were to fail.
unsigned ForEveryFault(FaultKind kind, const std::function<void()>& body,
                       const std::function<void(bool fired)>& check = {});

} // namespace tavrix::testing
