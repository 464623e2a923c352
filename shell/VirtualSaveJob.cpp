// Saving to nowhere: the plugin encodes as usual into a stream that only counts, and the user is
// told how large the file would become.

#include "foundation/CountingStream.h"
#include "foundation/Language.h"
#include "foundation/Numbers.h"
#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"
#include "shell/ProgressDialog.h"

#include <math.h>

namespace
{

constexpr f64 KilobytesOfByte = 0.0009765625; // 1 / 1024

f64 OriginalKilobytes(const WCHAR* path)
{
    HANDLE file = CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return 0;
    // The low 32 bits alone, as the report has always taken them.
    const DWORD size = GetFileSize(file, nullptr);
    CloseHandle(file);
    return size * KilobytesOfByte;
}

// The device formats no fractions. A size has at most 32 bits and its kilobytes are a multiple of
// 1/1024, so ten times that is exact, and what lies in the middle goes to the even digit.
u32 Tenths(f64 kilobytes)
{
    return TruncateToUnsigned(nearbyint(kilobytes * 10.0));
}

void ShowSizes(f64 original, f64 output)
{
    WCHAR report[64];
    const u32 first = Tenths(original);
    const u32 second = Tenths(output);
    wsprintfW(report,
              InLanguage(TEXT("Original : %u.%uKB\r\n  Output : %u.%uKB"),
                         TEXT("オリジナル : %u.%uKB\r\n出力サイズ : %u.%uKB")),
              first / 10, first % 10, second / 10, second % 10);
    // The worker waits here for the user, and the progress dialog stays open below the box.
    MessageBoxW(progressState.dialog, report, TEXT(""), MB_OK);
}

} // namespace

DWORD WINAPI VirtualSaveJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const SaveArguments*>(parameter);
    CountingStream stream;
    return RunPluginJob(JobVirtualSave, [&] {
        const i32 result =
            arguments.host->PutImage(nullptr, &stream, arguments.source, JobCallbacks);
        if (result >= 0) {
            u64 size = 0;
            (void)stream.GetSize(&size);
            ShowSizes(OriginalKilobytes(arguments.path), static_cast<f64>(size) * KilobytesOfByte);
        }
        return result;
    });
}
