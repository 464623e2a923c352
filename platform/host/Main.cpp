// The host's entry: answers --help and --version, turns the host path on the command line into the
// device's and hands over to the program.

#include "platform/core/HostPaths.h"
#include "platform/host/Resources.h"
#include "platform/qt/ClipboardEnd.h"
#include "resources/Embedded.h"

#include <windows.h>

#include <cstring>
#include <iostream>
#include <string>

namespace
{

constexpr int UsageError = 2;

void PrintHelp()
{
    std::cout << "Usage: tavrix [PICTURE]\n"
                 "Shows a picture.\n\n"
                 "  --help     show this text\n"
                 "  --version  show the version\n"
                 "  --         what follows is a file name\n\n"
                 "Environment:\n"
                 "  TAVRIX_SCREEN=800x480   size of the device screen\n"
                 "  TAVRIX_FULLSCREEN=1     the device screen is the whole screen\n"
                 "  TAVRIX_LANG=ja|en       language, else the locale's\n"
                 "  TAVRIX_MEMORY=16M       memory that the device pretends to have\n"
                 "  TAVRIX_STORAGE_CARD=DIR second folder for pictures that do not fit\n"
                 "  TAVRIX_IR=tcp:PORT      where devices send objects to: also tcp,\n"
                 "                          tcp:ADDRESS:PORT or unix:PATH\n"
                 "  TAVRIX_SHOT=FILE.png    write a picture of the device screen and end\n";
}

} // namespace

int main(int argc, char** argv)
{
    const char* picture = nullptr;
    bool options = true;
    for (int i = 1; i < argc; ++i) {
        if (options && std::strcmp(argv[i], "--help") == 0) {
            PrintHelp();
            return 0;
        }
        if (options && std::strcmp(argv[i], "--version") == 0) {
            std::cout << "tavrix " TAVRIX_VERSION "\n";
            return 0;
        }
        if (options && std::strcmp(argv[i], "--") == 0) {
            options = false;
        } else if ((options && argv[i][0] == '-' && argv[i][1] != 0) || picture != nullptr) {
            std::cerr << "tavrix: " << (picture != nullptr ? "one picture only" : "no such option")
                      << ": " << argv[i] << "\nTry tavrix --help.\n";
            return UsageError;
        } else {
            picture = argv[i];
        }
    }

    std::u16string commandLine;
    if (picture != nullptr && *picture != 0) {
        using tavrix::platform::DevicePathOf;
        using tavrix::platform::HostPathResult;
        std::u16string path;
        if (DevicePathOf(picture, &path) != HostPathResult::Done) {
            std::cerr << "tavrix: the path is too long or cannot be named on the device: "
                      << picture << '\n';
            return UsageError;
        }
        commandLine = u"\"" + path + u"\"";
    }

    const EmbeddedResources resources = GetEmbeddedResources();
    TavrixRegisterResources(nullptr, resources.begin, resources.end);
    const int result =
        wWinMain(GetModuleHandleW(nullptr), nullptr, commandLine.data(), SW_SHOWNORMAL);
    tavrix::platform::LeaveClipboardToDesktop();
    return result;
}
