// Long work: one worker thread under one modal progress dialog. A command fills the kind's argument
// block and a record on its own stack, calls RunJob and goes on behind it as straight-line code.
//
// The dialog's start creates the thread; the thread's last act is to post a command to the dialog,
// which joins the thread and closes. While it runs, the user-interface thread sits in the dialog's
// modal loop, and that alone keeps commands away from the picture and the plugin.
#pragma once

#include "foundation/BlockStream.h"
#include "foundation/Stream.h"
#include "image/Raster.h"
#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/PrintPlugin.h"
#include "plugin/ScalePlugin.h"
#include "plugin/SubtractPlugin.h"

enum : u32 {
    JobLoad = 1,        // decode a picture from a stream
    JobReceive = 2,     // an object over infrared
    JobSave = 3,        // encode a picture to a file
    JobVirtualSave = 4, // encode it to nowhere and tell its size
    JobEffect = 16,
    JobAdjust = 17,
    JobScale = 18,
    JobSubtract = 19, // no command starts it
    JobPrint = 20     // the one that the user can stop
};

/// Lives as long as the dialog, on the stack of the command that starts the job.
struct JobRecord {
    u32 kind;
    void* arguments; // the kind's block
};

/// The arguments of JobLoad.
struct LoadArguments {
    InputPlugin* host;
    const WCHAR* path; // always null: the plugin reads the stream
    Stream* stream;
    Raster* target;
};

/// The arguments of JobReceive.
struct ReceiveArguments {
    BlockStream* destination; // takes the object and its name
};

/// The arguments of JobSave and JobVirtualSave.
struct SaveArguments {
    OutputPlugin* host;
    const WCHAR* path; // JobVirtualSave asks it for the size to compare with
    Raster* source;
};

/// The arguments of JobEffect.
struct EffectArguments {
    EffectPlugin* host;
    Raster* image;
    TavrixPutPropertyCallback put;
    TavrixGetPropertyCallback get;
};

/// The arguments of JobAdjust.
struct AdjustArguments {
    AdjustPlugin* host;
    Raster* image;
};

/// The arguments of JobScale.
struct ScaleArguments {
    ScalePlugin* host;
    Raster* image;
    u32 width;
    u32 height;
    TavrixPutPropertyCallback put;
    TavrixGetPropertyCallback get;
};

/// The arguments of JobSubtract.
struct SubtractArguments {
    SubtractPlugin* host;
    Raster* image;
    u32 argument;
};

/// The arguments of JobPrint. The caller clears MainFrame::abortRequested before and after.
struct PrintArguments {
    PrintPlugin* host;
    HWND owner;
    Raster* image;
};

/// Opens the progress dialog, which runs the job. Done when the job has ended, whether it succeeded
/// or not; NothingDone or negative when there was no dialog or no thread. The caller then unlocks
/// all lines of the raster that the job worked on: a plugin may have left some locked.
[[nodiscard]] i32 RunJob(HWND owner, HINSTANCE instance, JobRecord* record);
