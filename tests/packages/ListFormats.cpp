// Writes the name patterns of INPUT plugins, which find the device's functions in a library that
// stands in for the program, one a line: list-formats LIBRARY PLUGIN.dll...

#include <tavrix/plugin.h>

#include <dlfcn.h>

#include <iostream>
#include <string>

namespace
{

constexpr uint32_t FirstPatterns = 0x10001;
constexpr uint32_t FormatsAtMost = 50;

/// Patterns are plain letters, so each character is one byte.
std::string Narrow(const TavrixChar* text)
{
    std::string narrow;
    for (; *text != 0; ++text)
        narrow += *text < 128 ? static_cast<char>(*text) : '?';
    return narrow;
}

bool ListPatterns(const char* path)
{
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    const auto info =
        library != nullptr
            ? reinterpret_cast<TavrixGetPluginInfoFunction>(dlsym(library, "GetPluginInfo"))
            : nullptr;
    if (info == nullptr) {
        std::cerr << path << ": " << dlerror() << '\n';
        return false;
    }
    bool some = false;
    for (uint32_t format = 0; format < FormatsAtMost; ++format) {
        TavrixChar text[1024] = {};
        if (info(FirstPatterns + 2 * format, text, 1024) < 0 || text[0] == 0)
            break;
        std::string patterns = Narrow(text) + ';';
        for (size_t end; (end = patterns.find(';')) != patterns.npos; some = true) {
            std::cout << patterns.substr(0, end) << '\n';
            patterns.erase(0, end + 1);
        }
    }
    return some;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL) == nullptr) {
        std::cerr << (argc < 3 ? "list-formats LIBRARY PLUGIN.dll..." : dlerror()) << '\n';
        return 1;
    }
    bool all = true;
    for (int i = 2; i < argc; ++i)
        all = ListPatterns(argv[i]) && all;
    return all ? 0 : 1;
}
