#include "kit/check/Workbench.h"

#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "platform/core/HostPaths.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace plugincheck
{

namespace
{

constexpr std::chrono::milliseconds PumpInterval{5};

void Pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/// Runs `call` on a thread of its own and serves the message loop meanwhile.
i32 OnWorker(const std::function<i32()>& call)
{
    std::mutex lock;
    std::condition_variable ended;
    bool done = false;
    i32 result = 0;
    std::thread worker([&] {
        result = call();
        const std::lock_guard<std::mutex> held(lock);
        done = true;
        ended.notify_one();
    });
    std::unique_lock<std::mutex> held(lock);
    while (!ended.wait_for(held, PumpInterval, [&done] { return done; })) {
        held.unlock();
        Pump();
        held.lock();
    }
    held.unlock();
    worker.join();
    return result;
}

/// What the platform keeps from its first thread, its first look at a path and its first file in
/// \\Temp on is none of the plugin's.
void WarmUp()
{
    (void)OnWorker([] { return 0; });
    const WCHAR* path = TEXT("\\Temp\\first.tmp");
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    (void)DeleteFileW(path);
}

} // namespace

Workbench::Workbench(CheckContext& given)
    : context(given), before(), plugin(given.plugin.kind), files(0), toolkit(false)
{
    WarmUp();
    before = CurrentHolding();
    WatchFor(&context, {});
    ListenToSettings(&context);
    context.Doing("", "while it was loaded");
    if (!plugin.Load(DevicePath(context.plugin.path)))
        context.End();
    context.DoingNothing();
}

Workbench::~Workbench()
{
    ForgetSettings();
    LookBehind();
}

i32 Workbench::Run(const std::function<i32()>& call, const char* exportName,
                   const Conditions& conditions, const std::string& doing)
{
    WatchFor(&context, conditions);
    context.Doing(exportName, "while it " + doing);
    const i32 result = OnWorker(call);
    context.DoingNothing();
    return result;
}

i32 Workbench::Other(const std::function<i32()>& call, const char* exportName,
                     const Conditions& conditions, const std::string& doing)
{
    return Run(call, exportName, conditions, doing);
}

i32 Workbench::Read(Raster* picture, ReadingStream* source, const Conditions& conditions,
                    const std::string& doing)
{
    const i32 result = Run([&] { return plugin.Transfer("GetImage", nullptr, source, picture); },
                           "GetImage", conditions, doing);
    if (source->wasSought)
        context.ViolationOf("forward", "GetImage",
                            "GetImage asks the stream for its size or seeks in it; over a network "
                            "there is no size and a seek asks the server again, so it has to read "
                            "forward only.");
    if (source->wasWritten)
        context.ViolationOf("forward", "GetImage writes",
                            "GetImage writes to the stream that it has to read.");
    if (result >= 0)
        LookAtResult("GetImage", picture);
    return result;
}

i32 Workbench::Write(Raster* picture, const std::u16string& path, Stream* target,
                     const Conditions& conditions, const std::string& doing)
{
    return Run(
        [&] {
            return plugin.Transfer("PutImage", target == nullptr ? path.c_str() : nullptr, target,
                                   picture);
        },
        "PutImage", conditions, doing);
}

i32 Workbench::Resize(Raster* picture, u32 width, u32 height, const Conditions& conditions,
                      const std::string& doing)
{
    return Run([&] { return plugin.Resize(picture, width, height); }, "ScaleImage", conditions,
               doing);
}

i32 Workbench::Reduce(Raster* picture, u32 argument, const Conditions& conditions,
                      const std::string& doing)
{
    return Run([&] { return plugin.Reduce(picture, argument); }, "SubtractImage", conditions,
               doing);
}

i32 Workbench::Work(Raster* picture, ReadingStream* source, const Conditions& conditions,
                    const std::string& doing)
{
    const Kind kind = context.plugin.kind;
    const PictureState state = StateOf(picture);
    switch (kind) {
    case Input:
        return Read(picture, source, conditions, doing);
    case Output:
        return Write(picture, FreshPath(nullptr), nullptr, conditions, doing);
    case Print:
        return Run([&] { return plugin.PrintImage(picture); }, "Print", conditions, doing);
    case Subtract:
        return Reduce(picture, 0, conditions, doing);
    default:
        break;
    }
    i32 result = 0;
    if (kind == Scale)
        result = Resize(picture, (state.width + 1) / 2, (state.height + 1) / 2, conditions, doing);
    else
        result = Run([&] { return plugin.Process(picture); }, WorkExport(kind), conditions, doing);
    if (result >= 0 && state.depth == 24 && state.width != 0 && state.height != 0)
        LookAtResult(WorkExport(kind), picture);
    return result;
}

void Workbench::LookAtResult(const char* exportName, Raster* picture)
{
    // A success in spite of what was refused is told by the check that refused it.
    if (WhatWasSeen().refusedAllocations != 0 || WhatWasSeen().refusedLocks != 0)
        return;
    const PictureState state = StateOf(picture);
    const std::string name = exportName;
    if (state.width == 0 || state.height == 0)
        context.ViolationOf("picture", name,
                            name + " reports success and leaves a picture of " +
                                std::to_string(state.width) + " x " + std::to_string(state.height) +
                                " pixels.");
    else if (state.depth != 24)
        context.ViolationOf("depth", name,
                            name + " reports success and leaves a picture of " +
                                std::to_string(state.depth) +
                                " bits a pixel; the host shows pictures of 24 bits only.");
    else if (!state.readable)
        context.ViolationOf("picture", name + " lines",
                            name + " reports success and leaves a picture with lines missing.");
}

std::u16string Workbench::FreshPath(std::string* host)
{
    char folder[4096];
    if (getcwd(folder, sizeof folder) == nullptr)
        return {};
    const std::string path = std::string(folder) + "/out" + std::to_string(files++);
    if (host != nullptr)
        *host = path;
    return DevicePath(path);
}

void Workbench::LookBehind()
{
    // Unloading a library in which a thread still runs ends the process.
    if (!toolkit && !ThreadsFallTo(before.threads)) {
        context.ViolationOf("threads", "",
                            "It leaves " + Counted(CountThreads() - before.threads, "thread") +
                                " running when its call has returned; the library is unloaded "
                                "under it.");
        context.End();
    }
    context.Doing("", "while it was unloaded");
    (void)plugin.Unload();
    context.DoingNothing();
    if (toolkit)
        return;
    const Holding after = CurrentHolding();
    if (after.descriptors > before.descriptors)
        context.ViolationOf("descriptors", "",
                            "It leaves " + Counted(after.descriptors - before.descriptors, "file") +
                                " open when its call has returned.");
    if (after.deviceBytes > before.deviceBytes)
        context.ViolationOf("heap", "",
                            "It leaves " + Counted(after.deviceBytes - before.deviceBytes, "byte") +
                                " of the device's heaps taken when it is unloaded.");
    if (after.handles > before.handles)
        context.ViolationOf("handles", "",
                            "It leaves " + Counted(after.handles - before.handles, "handle") +
                                " of the device open when it is unloaded.");
}

std::u16string DevicePath(const std::string& host)
{
    std::u16string path;
    return tavrix::platform::DevicePathOf(host, &path) == tavrix::platform::HostPathResult::Done
               ? path
               : std::u16string();
}

std::vector<Source> SourcesOf(const CheckContext& context)
{
    std::vector<Source> sources;
    for (const Sample& sample : context.plugin.samples)
        sources.push_back({"the sample " + sample.name, sample.bytes, true});
    if (sources.empty()) {
        sources.push_back({"a stream without a byte", {}, false});
        sources.push_back({"a stream of random bytes", RandomBytes(4096, 1), false});
    }
    return sources;
}

void ForEachPiece(CheckContext& context, const PictureShape& shape,
                  const std::function<void(const Piece&)>& body)
{
    if (context.plugin.kind != Input) {
        body({shape.words, nullptr});
        return;
    }
    for (const Source& source : SourcesOf(context))
        body({source.words, &source});
}

} // namespace plugincheck
