#include "kit/check/Watch.h"

#include "kit/check/Check.h"
#include "kit/check/Tables.h"
#include "kit/check/Text.h"
#include "plugin/PluginObjects.h"

#include <cxxabi.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <typeinfo>

namespace plugincheck
{

namespace
{

struct WatchState {
    CheckContext* context = nullptr;
    Conditions conditions;
    Seen seen;
    std::atomic<bool> running{false};
    std::thread::id thread;
    std::string exportName;
    HandSet set = HandSet::First;
    std::map<TavrixImageHandle, std::set<i32>> locked;
    LentTables* tables = nullptr;
};

WatchState& State()
{
    static WatchState& state = *new WatchState;
    return state;
}

void Tell(const char* key, const std::string& text)
{
    WatchState& state = State();
    if (state.context != nullptr)
        state.context->ViolationOf(key, state.exportName, state.exportName + " " + text);
}

/// Made only for calls that get tables, as they are never given back.
LentTables* TablesOfCall()
{
    WatchState& state = State();
    if (state.tables == nullptr)
        state.tables = MakeLentTables();
    return state.tables;
}

void TellLeftLocked()
{
    size_t lines = 0;
    for (const auto& [image, set] : State().locked)
        lines += set.size();
    if (lines != 0)
        Tell("locked", "left " + Counted(lines, "line") +
                           " of a picture locked when it returned; every RasterLockLines needs its "
                           "RasterUnlockLines, on failures too.");
}

void TellLeftObjects()
{
    const u32 left = CountPluginObjects();
    if (left != 0)
        Tell("left", "left " + Counted(left, "picture or palette", "pictures and palettes") +
                         " that it had made with RasterCreate or PaletteCreate undestroyed.");
}

} // namespace

void WatchFor(CheckContext* context, const Conditions& conditions)
{
    State().context = context;
    State().conditions = conditions;
    State().seen = {};
}

const Seen& WhatWasSeen()
{
    return State().seen;
}

Seen& SeenNow()
{
    return State().seen;
}

const Conditions& CurrentConditions()
{
    return State().conditions;
}

void BeginWatch(const char* exportName)
{
    WatchState& state = State();
    state.exportName = exportName;
    state.set = NextSet();
    state.thread = std::this_thread::get_id();
    state.locked.clear();
    state.tables = nullptr;
    state.running = true;
}

void EndWatch()
{
    WatchState& state = State();
    state.running = false;
    if (state.tables != nullptr) {
        if (IsSpoiled(*state.tables))
            Tell("tables", "wrote into the function tables that it was lent.");
        TrapTables(state.tables);
    }
    TellLeftLocked();
    TellLeftObjects();
}

void TellException()
{
    std::string type;
    // Only the name is asked for; the sources are built without run-time types of their own.
    if (const std::type_info* thrown = abi::__cxa_current_exception_type()) {
        char* plain = abi::__cxa_demangle(thrown->name(), nullptr, nullptr, nullptr);
        type = std::string(" (") + (plain != nullptr ? plain : thrown->name()) + ")";
        std::free(plain);
    }
    Tell("exceptions", "let a C++ exception" + type + " out; an export answers by its result.");
    State().context->End();
}

RasterFunctionTable* LendTable(RasterFunctionTable* hosts)
{
    return LendRasters(TablesOfCall(), hosts, State().set);
}

PaletteFunctionTable* LendTable(PaletteFunctionTable* hosts)
{
    return LendPalettes(TablesOfCall(), hosts, State().set);
}

HandSet NextSet()
{
    return State().set == HandSet::First ? HandSet::Second : HandSet::First;
}

bool IsAllowedHere(const char* function, HandSet set)
{
    WatchState& state = State();
    if (!state.running) {
        Tell("kept", std::string("used ") + function + " after it had returned.");
        return false;
    }
    if (set != state.set) {
        TellKept(function);
        return false;
    }
    if (std::this_thread::get_id() == state.thread)
        return true;
    Tell("foreign", std::string("used ") + function +
                        " from another thread than its own; tables and callbacks belong to the "
                        "thread of the call.");
    return false;
}

void TellKept(const char* function)
{
    Tell("kept", std::string("used ") + function + " that belonged to an earlier call.");
}

void NoteLocked(TavrixImageHandle image, i32 line, u32 count)
{
    for (u32 i = 0; i < count; ++i)
        State().locked[image].insert(line + static_cast<i32>(i));
}

void NoteUnlocked(TavrixImageHandle image, i32 line, u32 count)
{
    std::set<i32>& lines = State().locked[image];
    // A count beyond the picture is nothing to walk through.
    lines.erase(lines.lower_bound(line), lines.lower_bound(static_cast<i32>(
                                             std::min<i64>(i64{line} + count, i64{0x7FFFFFFF}))));
}

void NoteRenewed(TavrixImageHandle image)
{
    State().locked.erase(image);
}

} // namespace plugincheck
