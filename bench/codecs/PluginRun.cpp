// Runs one plugin once, as a process whose time and memory others measure:
//   plugin-run idle             nothing: what the process itself takes
//   plugin-run read DLL FILE    GetImage, into a picture that keeps no line
//   plugin-run write DLL PPM OUT   PutImage of a binary PPM file, read line by line; its samples
//                               come in the host's order, blue first
// Exits with 0 when the plugin succeeded.
#include <tavrix/plugin.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{

struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    // Where the pixels come from; -1 for a picture that is being read.
    int file = -1;
    off_t pixels = 0;
    std::vector<uint8_t> line;
} picture;

int32_t Alloc(TavrixImageHandle, uint32_t width, uint32_t height, uint32_t)
{
    picture.width = width;
    picture.height = height;
    picture.line.assign(size_t{4} * width + 4, 0);
    return 1;
}

int32_t Free(TavrixImageHandle)
{
    return 1;
}

int32_t Insert(TavrixImageHandle, int32_t, uint32_t* count)
{
    picture.height += *count;
    return 1;
}

int32_t Lock(TavrixImageHandle, int32_t y, void** lines, uint32_t*)
{
    if (picture.file >= 0) {
        const size_t bytes = size_t{3} * picture.width;
        if (pread(picture.file, picture.line.data(), bytes,
                  picture.pixels + static_cast<off_t>(bytes) * y) != static_cast<ssize_t>(bytes))
            return -1;
    }
    lines[0] = picture.line.data();
    return 1;
}

int32_t Unlock(TavrixImageHandle, int32_t, uint32_t)
{
    return 1;
}

int32_t GetInfo(TavrixImageHandle, RasterInfo* info)
{
    *info = {sizeof *info, picture.width, picture.height, 24, (3 * (picture.width + 1)) & ~3u, 0};
    return 1;
}

int32_t NoPalette(TavrixImageHandle, TavrixPaletteHandle)
{
    return 0;
}

RasterFunctionTable Rasters()
{
    RasterFunctionTable table = {};
    table.size = sizeof table;
    table.RasterAlloc = Alloc;
    table.RasterFree = Free;
    table.RasterInsertLines = Insert;
    table.RasterLockLines = Lock;
    table.RasterUnlockLines = Unlock;
    table.RasterGetInfo = GetInfo;
    table.RasterGetPalette = NoPalette;
    return table;
}

FILE* FileOf(void* handle)
{
    return static_cast<FILE*>(handle);
}

PluginStreamRecord StreamOver(FILE* file)
{
    PluginStreamRecord record = {};
    record.size = sizeof record;
    record.handle = file;
    record.getSize = [](void*, uint64_t*) -> int32_t { return -1; };
    record.seek = [](void*, const int64_t*, uint64_t*, uint32_t) -> int32_t { return -1; };
    record.read = [](void* handle, void* buffer, uint32_t* length) -> int32_t {
        *length = static_cast<uint32_t>(fread(buffer, 1, *length, FileOf(handle)));
        return 1;
    };
    record.write = [](void* handle, const void* buffer, uint32_t* length) -> int32_t {
        *length = static_cast<uint32_t>(fwrite(buffer, 1, *length, FileOf(handle)));
        return 1;
    };
    return record;
}

int32_t Progress(uint32_t, uint32_t)
{
    return 1;
}

int32_t Message(const TavrixChar* text, const TavrixChar*, uint32_t)
{
    for (; *text; ++text)
        std::fputc(*text < 128 ? static_cast<char>(*text) : '?', stderr);
    std::fputc('\n', stderr);
    return 0;
}

// No setting is stored but what the environment names: KEY=number.
int32_t Get(Variant* item)
{
    std::string key;
    for (const TavrixChar* at = item->name; *at; ++at)
        key += static_cast<char>(*at);
    const char* value = std::getenv(key.c_str());
    if (!value)
        return -10;
    item->value = std::strtoul(value, nullptr, 10);
    return 1;
}

int32_t Put(Variant*)
{
    return -1;
}

bool OpenPpm(const char* path)
{
    FILE* file = std::fopen(path, "rb");
    unsigned width = 0;
    unsigned height = 0;
    if (!file || std::fscanf(file, "P6 %u %u 255", &width, &height) != 2)
        return false;
    (void)std::fgetc(file);
    picture.pixels = std::ftell(file);
    picture.file = dup(fileno(file));
    std::fclose(file);
    picture.width = width;
    picture.height = height;
    picture.line.assign(size_t{4} * width + 4, 0);
    return true;
}

// The path by which the device knows a file of the host.
std::u16string DevicePath(const std::string& host)
{
    std::u16string path = u"\\Computer";
    for (const char c : host)
        path += c == '/' ? u'\\' : static_cast<char16_t>(c);
    return path;
}

int32_t Run(TavrixImageFunction work, bool reads, const char* target)
{
    RasterFunctionTable table = Rasters();
    PaletteFunctionTable palettes = {};
    palettes.size = sizeof palettes;
    const auto image = reinterpret_cast<TavrixImageHandle>(&picture);
    const std::u16string path = DevicePath(target);
    const bool byPath = !reads && std::getenv("BY_PATH") != nullptr;
    FILE* file = byPath ? nullptr : std::fopen(target, reads ? "rb" : "wb");
    if (!byPath && !file)
        return -1;
    PluginStreamRecord stream = StreamOver(file);
    const int32_t result = work(byPath ? path.c_str() : nullptr, byPath ? nullptr : &stream, image,
                                &table, &palettes, Progress, Message, Put, Get);
    if (file && std::fclose(file) != 0)
        return -1;
    return result;
}

} // namespace

int main(int count, char** arguments)
{
    const std::string what = count > 1 ? arguments[1] : "";
    if (what == "idle")
        return 0;
    const bool reads = what == "read";
    if ((!reads && what != "write") || count != (reads ? 4 : 5))
        return 2;
    if (!reads && !OpenPpm(arguments[3]))
        return 2;
    void* library = dlopen(arguments[2], RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 2;
    }
    const auto work =
        reinterpret_cast<TavrixImageFunction>(dlsym(library, reads ? "GetImage" : "PutImage"));
    return work && Run(work, reads, arguments[reads ? 3 : 4]) == 1 ? 0 : 1;
}
