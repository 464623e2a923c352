// What a check may take, where others want the processor too.

#include "kit/check/ChildProcess.h"

#include <sched.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace plugincheck;

namespace
{

constexpr int Others = 4;

double ProcessorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

void StayOnOneProcessor(int processor)
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    (void)sched_setaffinity(0, sizeof one, &one);
}

void WorkFor(double seconds)
{
    const double end = ProcessorSeconds() + seconds;
    while (ProcessorSeconds() < end)
        continue;
}

/// Others that work without a pause on the processor that a child is to stay on.
class TimeLimit : public testing::Test
{
protected:
    void SetUp() override
    {
        processor = sched_getcpu();
        for (int i = 0; i < Others; ++i) {
            const pid_t other = fork();
            if (other == 0) {
                StayOnOneProcessor(processor);
                alarm(60); // not behind a test that was killed
                for (;;)
                    WorkFor(1);
            }
            others.push_back(other);
        }
        char made[] = "/tmp/tavrix-test-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(made));
        plan.folder = made;
    }

    void TearDown() override
    {
        for (const pid_t other : others) {
            kill(other, SIGKILL);
            waitpid(other, nullptr, 0);
        }
        rmdir(plan.folder.c_str());
    }

    int processor = 0;
    std::vector<pid_t> others;
    ChildPlan plan;
};

TEST_F(TimeLimit, LeavesOutTheWaitForAProcessor)
{
    plan.seconds = 1;
    plan.work = [this] {
        StayOnOneProcessor(processor);
        WorkFor(0.5);
    };
    const auto seconds = [] {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
    };
    const double start = seconds();
    EXPECT_EQ(ChildOutcome::Returned, RunChild(plan).how);
    EXPECT_GT(seconds() - start, plan.seconds) << "the machine was not busy";
}

TEST_F(TimeLimit, EndsWhatWorksWithoutEndOnABusyMachine)
{
    plan.seconds = 0.3;
    plan.work = [this] {
        StayOnOneProcessor(processor);
        WorkFor(60);
    };
    EXPECT_EQ(ChildOutcome::TimedOut, RunChild(plan).how);
}

TEST_F(TimeLimit, EndsWhatSleepsOnABusyMachine)
{
    plan.seconds = 0.3;
    plan.work = [] { sleep(60); };
    EXPECT_EQ(ChildOutcome::TimedOut, RunChild(plan).how);
}

} // namespace
