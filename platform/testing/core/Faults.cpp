#include "platform/testing/Faults.h"
#include "platform/testing/Thorough.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

namespace tavrix::testing
{

namespace
{

using platform::FileOperation;

constexpr unsigned MostFaults = 100000; // beyond that the body never ends its work

// What the armed fault counts. Open to every thread of the body.
std::atomic<unsigned> seen{0};

bool Fires(unsigned number, FaultReach reach)
{
    const unsigned current = ++seen;
    return reach == FaultReach::Once ? current == number : current >= number;
}

FileOperation OperationOf(FaultKind kind)
{
    switch (kind) {
    case FaultKind::Create:
        return FileOperation::Create;
    case FaultKind::Open:
        return FileOperation::Open;
    case FaultKind::Read:
    case FaultKind::ShortRead:
        return FileOperation::Read;
    default:
        return FileOperation::Write;
    }
}

DWORD MissingBytes(FaultKind kind)
{
    switch (kind) {
    case FaultKind::ShortRead:
    case FaultKind::ShortWrite:
        return 1;
    case FaultKind::Write:
        return 0xFFFFFFFF;
    default:
        return 0;
    }
}

void ArmFile(FaultKind kind, unsigned number, FaultReach reach)
{
    SetFileFault([kind, number, reach](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        if (operation != OperationOf(kind) || !Fires(number, reach))
            return false;
        *shortBy = MissingBytes(kind);
        return true;
    });
}

const char* NameOf(FaultReach reach)
{
    return reach == FaultReach::Once ? "alone" : "and all behind it";
}

/// What is held, in words for a failed test.
std::string TextOf(const platform::Holdings& held)
{
    return std::to_string(held.heapBytes) + " bytes, " + std::to_string(held.heaps) + " heaps, " +
           std::to_string(held.kernelHandles) + " handles, " + std::to_string(held.drawingObjects) +
           " drawing objects";
}

class FaultLoop
{
public:
    FaultLoop(FaultKind faultKind, const std::function<void()>& theBody,
              const std::function<void(bool)>& theCheck)
        : kind(faultKind), body(theBody), check(theCheck)
    {
        // What is made once and kept for good is made here.
        body();
        Check(false);
        held = platform::CountHoldings();
    }

    /// Faults of one reach, until none fires; answers how many fired.
    unsigned Run(FaultReach reach)
    {
        for (unsigned number = 1; number <= MostFaults; number = NextPlace(number)) {
            SCOPED_TRACE(::testing::Message() << "fault " << number << " " << NameOf(reach));
            ArmedFault fault(kind, number, reach);
            body();
            fault.Disarm();
            const bool fired = fault.Fired();
            Check(fired);
            LookForRemains();
            if (!fired || ::testing::Test::HasFailure())
                return fault.Seen();
        }
        ADD_FAILURE() << "more than " << MostFaults << " faults";
        return MostFaults;
    }

private:
    void Check(bool fired)
    {
        if (check)
            check(fired);
    }

    void LookForRemains()
    {
        const platform::Holdings now = platform::CountHoldings();
        EXPECT_TRUE(now == held) << "left behind: " << TextOf(now) << "; before: " << TextOf(held);
    }

    FaultKind kind;
    const std::function<void()>& body;
    const std::function<void(bool)>& check;
    platform::Holdings held;
};

} // namespace

ArmedFault::ArmedFault(FaultKind faultKind, unsigned faultNumber, FaultReach reach)
    : kind(faultKind), number(faultNumber)
{
    seen = 0;
    if (kind == FaultKind::Allocation)
        SetAllocationFault([number = number, reach](SIZE_T) { return Fires(number, reach); });
    else if (kind == FaultKind::Thread)
        SetThreadFault([number = number, reach] { return Fires(number, reach); });
    else if (kind == FaultKind::Socket)
        SetSocketFault([number = number, reach](platform::SocketOperation, int*) {
            return Fires(number, reach);
        });
    else
        ArmFile(kind, number, reach);
}

void ArmedFault::Disarm()
{
    if (kind == FaultKind::Allocation)
        SetAllocationFault(nullptr);
    else if (kind == FaultKind::Thread)
        SetThreadFault(nullptr);
    else if (kind == FaultKind::Socket)
        SetSocketFault(nullptr);
    else
        SetFileFault(nullptr);
}

unsigned ArmedFault::Seen() const
{
    return seen;
}

bool ArmedFault::Fired() const
{
    return Seen() >= number;
}

unsigned ForEveryFault(FaultKind kind, const std::function<void()>& body,
                       const std::function<void(bool fired)>& check)
{
    if (::testing::Test::HasFailure())
        return 0;
    FaultLoop loop(kind, body, check);
    const unsigned fired = loop.Run(FaultReach::Once);
    EXPECT_GT(fired, 0U) << "no fault fired: nothing was tested";
    if (!::testing::Test::HasFailure())
        loop.Run(FaultReach::Onward);
    return fired;
}

} // namespace tavrix::testing
