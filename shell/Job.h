// Long work: one worker thread under one modal progress dialog. A command fills the kind's argument
// block and a record on its own stack, calls RunJob and goes on behind it as straight-line code.
//
// The dialog's start creates the thread; the thread's last act is to post a command to the dialog,
// which joins the thread and closes. While it runs, the user-interface thread sits in the dialog's
// modal loop, and that alone keeps commands away from the picture and the plugin.
#pragma once

#include "foundation/Stream.h"
#include "image/Raster.h"
#include "plugin/InputPlugin.h"

enum : u32 {
    JobLoad = 1 // decode an INPUT plugin's picture
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

/// Opens the progress dialog, which runs the job. Done when the job has ended, whether it succeeded
/// or not; NothingDone or negative when there was no dialog or no thread. The caller then unlocks
/// all lines of the raster that the job worked on: a plugin may have left some locked.
[[nodiscard]] i32 RunJob(HWND owner, HINSTANCE instance, JobRecord* record);
