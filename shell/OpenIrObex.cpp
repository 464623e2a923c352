// A picture that another device sends: received whole into memory by one job, then decoded by
// another.

#include "foundation/BlockStream.h"
#include "foundation/Language.h"
#include "shell/Boxes.h"
#include "shell/Job.h"
#include "shell/LoadFromWire.h"
#include "shell/MainFrame.h"

namespace
{

constexpr u32 BlockSize = 1024;
constexpr i32 ObjectNameCapacity = 64; // what is cut off takes the extension with it

} // namespace

void MainFrame::OpenIrObex()
{
    const ScopedFlow flow(this);
    if (inputExtensions->Count() == 0) {
        TellNoInputPlugin(window);
        return;
    }
    BlockStream object;
    (void)object.Open(BlockSize, nullptr);
    ReceiveArguments arguments = {&object};
    JobRecord record = {JobReceive, &arguments};
    if (RunJob(window, instance, &record) < 0)
        return;
    // The job has told its failure, if it had one, and the size alone tells what came: meant, a
    // part of an object is decoded as far as it goes.
    u64 size = 0;
    if (object.GetSize(&size) < Done || size == 0)
        return;
    const i64 start = 0;
    (void)object.Seek(&start, nullptr, FILE_BEGIN);
    WCHAR name[ObjectNameCapacity] = {};
    (void)object.GetName(name, ObjectNameCapacity);
    i32 plugin = -1;
    if (FindInputPlugin(name, &plugin) < Done) {
        MessageBoxW(window,
                    InLanguage(TEXT("Unknown File Format"), TEXT("不明なフォーマットです。")),
                    TEXT("ERROR"), MB_ICONHAND);
        return;
    }
    LoadFromWire(*this, &object, plugin);
}
