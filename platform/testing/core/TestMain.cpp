// The entry of every test program: gives the run a home of its own and fixed surroundings, so that
// no test sees the user's files, settings, fonts' language or display.

#include "platform/testing/core/TestHome.h"
#include "platform/testing/core/TestsApart.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace
{

std::filesystem::path home;

/// Where homes are made: TMPDIR is that of a home from then on.
std::string BaseOfHomes()
{
    const char* base = std::getenv("TMPDIR");
    return base != nullptr ? base : "/tmp";
}

void MakeHome()
{
    static const std::string base = BaseOfHomes();
    std::string pattern = base + "/tavrix-test-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        std::abort();
    home = pattern;
    std::filesystem::create_directories(home / "tmp");
    std::filesystem::create_directories(home / "runtime");
    std::filesystem::permissions(home / "runtime", std::filesystem::perms::owner_all);
}

void SetSurroundings()
{
    for (const char* name : {"TAVRIX_SCREEN", "TAVRIX_LANG", "TAVRIX_MEMORY", "TAVRIX_STORAGE_CARD",
                             "TAVRIX_IR", "TAVRIX_SHOT", "TAVRIX_FULLSCREEN", "TAVRIX_STARTUP_LOG",
                             "DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS",
                             "QT_SCALE_FACTOR", "QT_FONT_DPI", "QT_AUTO_SCREEN_SCALE_FACTOR"})
        unsetenv(name);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (home / "runtime").c_str(), 1);
    setenv("TMPDIR", (home / "tmp").c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("TAVRIX_SCREEN", "640x480", 1);

    const std::filesystem::path screen = home / "screen.json";
    std::ofstream(screen) << R"({"screens":[{"name":"s","x":0,"y":0,"width":1280,"height":1024,)"
                             R"("logicalDpi":96,"dpr":1}],"windowFrameMargins":false})";
    setenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + screen.string()).c_str(), 1);
}

/// What the font library keeps for the life of the process is made where no leak is looked for. A
/// list of suppressions alone would let each process read all its libraries' names at its end,
/// which takes longer than most tests.
void LoadFontsUnwatched()
{
#if defined(__SANITIZE_ADDRESS__)
    using Init = int (*)();
    const auto init = reinterpret_cast<Init>(dlsym(RTLD_DEFAULT, "FcInit"));
    if (init == nullptr)
        return;
    __lsan_disable();
    init();
    __lsan_enable();
#endif
}

int InHome(int (*run)())
{
    MakeHome();
    SetSurroundings();
    LoadFontsUnwatched();
    const int result = run();
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    return result;
}

int RunHere()
{
    return InHome([] { return RUN_ALL_TESTS(); });
}

int RunApart()
{
    return InHome([] { return tavrix::testing::RunTestsApart(RunHere); });
}

} // namespace

namespace tavrix::testing
{

std::string TestHome()
{
    return home.string();
}

} // namespace tavrix::testing

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    return tavrix::testing::AreTestsApart() ? RunApart() : RunHere();
}
