#include "shell/HandOver.h"

#include "shell/MainFrame.h"

#include <new>
#include <stdlib.h>
#include <string.h>

namespace
{

/// The characters of the record's bytes up to their first zero, which need not be there; the
/// caller's to free. Null without data or memory.
WCHAR* CopyHandedText(const COPYDATASTRUCT& record)
{
    if (record.lpData == nullptr)
        return nullptr;
    const size_t limit = record.cbData / sizeof(WCHAR);
    auto* text = static_cast<WCHAR*>(malloc((limit + 1) * sizeof(WCHAR)));
    if (text == nullptr)
        return nullptr;
    memcpy(text, record.lpData, limit * sizeof(WCHAR));
    text[limit] = 0;
    return text;
}

/// What the settings get is the pointer's own bytes read as text, and not the text it points to.
/// That is meant: the value says nothing and is written anew at the next start, which is the only
/// one to read it.
void WritePointerBytes(SettingsFile& settings, const void* pointer)
{
    WCHAR text[sizeof pointer / sizeof(WCHAR) + 1] = {};
    memcpy(text, &pointer, sizeof pointer);
    settings.SetText(ProgramSection, TEXT("LastCommandLine"), text);
}

/// Writes what is to be written of the last hand-over, but not while a worker may be in the
/// settings.
void WriteLastPointer(MainFrame& frame)
{
    HandOvers& handOvers = frame.handOvers;
    if (handOvers.pointerWaits == 0 || handOvers.holds != 0)
        return;
    handOvers.pointerWaits = 0;
    WritePointerBytes(*frame.settings, handOvers.pointer);
}

void OpenQueued(MainFrame& frame)
{
    HandOvers& queue = frame.handOvers;
    if (queue.opening != 0 || queue.holds != 0)
        return;
    // One that comes meanwhile goes behind the others, also between two of them.
    queue.opening = 1;
    while (WCHAR* text = queue.TakeFirst()) {
        frame.OpenFile(text);
        free(text);
    }
    queue.opening = 0;
}

} // namespace

HandOvers::~HandOvers()
{
    Drop();
}

void HandOvers::Append(WCHAR* text)
{
    auto* name = new (std::nothrow) Name{nullptr, text};
    if (name == nullptr) {
        free(text);
        return;
    }
    (last != nullptr ? last->next : first) = name;
    last = name;
}

WCHAR* HandOvers::TakeFirst()
{
    if (first == nullptr)
        return nullptr;
    Name* name = first;
    first = name->next;
    if (first == nullptr)
        last = nullptr;
    WCHAR* text = name->text;
    delete name;
    return text;
}

void HandOvers::Drop()
{
    while (WCHAR* text = TakeFirst())
        free(text);
}

ScopedHold::ScopedHold(MainFrame* heldFrame) : frame(heldFrame)
{
    if (frame != nullptr)
        ++frame->handOvers.holds;
}

ScopedHold::~ScopedHold()
{
    if (frame == nullptr)
        return;
    --frame->handOvers.holds;
    WriteLastPointer(*frame);
    if (frame->handOvers.flows == 0)
        OpenQueued(*frame);
}

ScopedFlow::ScopedFlow(MainFrame* flowingFrame) : frame(flowingFrame)
{
    if (frame != nullptr)
        ++frame->handOvers.flows;
}

ScopedFlow::~ScopedFlow()
{
    if (frame == nullptr)
        return;
    --frame->handOvers.flows;
    OpenQueued(*frame);
}

LRESULT MainFrame::OnCopyData(HWND, const COPYDATASTRUCT* record)
{
    if (record == nullptr)
        return 1;
    handOvers.pointer = record->lpData;
    handOvers.pointerWaits = 1;
    WriteLastPointer(*this);
    WCHAR* text = CopyHandedText(*record);
    if (text == nullptr)
        return 1;
    if (handOvers.closed != 0) {
        free(text);
        return 1;
    }
    // The sender waits for the answer. Where nothing stands in the way it waits for the open, too.
    const ScopedFlow flow(this);
    handOvers.Append(text);
    return 1;
}
