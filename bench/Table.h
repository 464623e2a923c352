// The rows of the table that is printed at the end: an operation, and everyone who carries it out.
//
// A benchmark is named OPERATION/WHO: "FillAll/800x480/tavrix". Every contestant of an operation is
// prepared alike, runs once untimed, is looked at once whether it did what it should, and is timed
// only if so.
#pragma once

#include "bench/Pictures.h"

#include <functional>
#include <string>
#include <vector>

namespace bench
{

/// One contestant, ready to run. It is made anew for every repetition.
struct Work {
    std::function<void()> run;          // what is timed
    std::function<std::string()> fault; // called after the first run: empty, or what is wrong
    std::function<void()> between = {}; // untimed, before every run but the first
    u32 items = 1;                      // of which one run does as many
};

/// Which time counts: the thread's own, with the kernel's work for it, which leaves out what other
/// programs take and waiting for the disk; Process adds the threads that a library starts.
enum class Clock { Thread, Process };

using Prepare = std::function<Work()>;

/// Our own part of an operation. It stands first in its row.
void AddOurs(const std::string& operation, Prepare prepare, Clock clock = Clock::Thread);
/// A peer, or what else we are compared with.
void AddPeer(const std::string& operation, const std::string& who, Prepare prepare,
             Clock clock = Clock::Thread);
/// A peer whose Debian package was not there when this program was built.
void AddMissing(const std::string& operation, const std::string& who, const std::string& package);
/// The copy limit: `rows` rows of `bytes` bytes, each in a block of its own like our lines, copied
/// one by one to others.
void AddLimit(const std::string& operation, u32 rows, size_t bytes, u32 items = 1);
/// The copy limit of a whole picture of 24 bits.
void AddLimit(const std::string& operation, Size size);

/// The same with the plain loops on rows in place of those that the processor is given otherwise.
std::function<void()> AtPlainLevel(std::function<void()> run);

/// Runs what the filter of Google Benchmark leaves and prints the table. False when a contestant
/// did not do what it should.
bool RunAll();

// Each family's benchmarks.
void AddStretches();
void AddFills();
void AddBlends();
void AddSurfaces();
void AddTurns();
void AddStores();
void AddTexts();

} // namespace bench
