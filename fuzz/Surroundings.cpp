// What every entry starts with: a home of its own in the temporary folder and fixed surroundings,
// so that no run sees or touches the user's files. The home goes when the run ends without a find.
#include <cstdlib>
#include <filesystem>
#include <string>

namespace
{

std::filesystem::path& Home()
{
    static std::filesystem::path home;
    return home;
}

void RemoveHome()
{
    std::error_code ignored;
    std::filesystem::remove_all(Home(), ignored);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr ? base : "/tmp") + "/tavrix-fuzz-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        std::abort();
    Home() = pattern;
    std::atexit(RemoveHome);
    for (const char* folder : {"tmp", "runtime"})
        std::filesystem::create_directories(Home() / folder);
    std::filesystem::permissions(Home() / "runtime", std::filesystem::perms::owner_all);

    for (const char* name : {"TAVRIX_LANG", "TAVRIX_MEMORY", "TAVRIX_STORAGE_CARD",
                             "TAVRIX_STARTUP_LOG", "DISPLAY", "WAYLAND_DISPLAY"})
        unsetenv(name);
    setenv("HOME", Home().c_str(), 1);
    setenv("XDG_DATA_HOME", (Home() / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (Home() / "config").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (Home() / "runtime").c_str(), 1);
    setenv("TMPDIR", (Home() / "tmp").c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    return 0;
}
