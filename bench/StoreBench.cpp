// The store of lines: making a raster, taking one over, and paging all of one out and in.

#include "bench/Table.h"
#include "platform/core/HostPaths.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace bench
{

namespace
{

constexpr u32 Seed = 61;
constexpr const WCHAR* Folder = TEXT("\\Temp\\");
constexpr Size Created[] = {{800, 480}, {4000, 3000}, {1000, 1000}, {1000, 60000}};

size_t StrideOf(Size size)
{
    return (size_t{3} * (size.width + 1)) & ~size_t{3};
}

// Giving the lines back is not in the time.
Work OurCreate(Size size)
{
    auto raster = std::make_shared<Raster>();
    auto result = std::make_shared<i32>(NothingDone);
    Work work;
    work.run = [=] { *result = raster->Create(size.width, size.height, 24, nullptr, nullptr); };
    work.fault = [=] {
        return *result != Done ? NotDone(*result) : Difference(Picture(size), PictureOf(*raster));
    };
    work.between = [=] { raster->Reset(); };
    return work;
}

/// What a program without a raster does for lines of their own.
class PlainLines
{
public:
    PlainLines() = default;
    PlainLines(const PlainLines&) = delete;
    PlainLines& operator=(const PlainLines&) = delete;
    ~PlainLines() { Drop(); }
    void Take(Size size)
    {
        lines.resize(size.height);
        for (u8*& line : lines)
            line = static_cast<u8*>(std::calloc(1, StrideOf(size)));
    }
    void Drop()
    {
        for (u8* line : lines)
            std::free(line);
        lines.clear();
    }

    std::vector<u8*> lines;
};

Work CallocCreate(Size size)
{
    auto plain = std::make_shared<PlainLines>();
    Work work;
    work.run = [=] { plain->Take(size); };
    work.fault = [=]() -> std::string {
        for (const u8* line : plain->lines)
            if (line == nullptr ||
                std::any_of(line, line + StrideOf(size), [](u8 byte) { return byte != 0; }))
                return "a line is missing or not blank";
        return {};
    };
    work.between = [=] { plain->Drop(); };
    return work;
}

void AddCreate(Size size)
{
    const std::string name = "Create/" + Name(size);
    AddOurs(name, [=] { return OurCreate(size); });
    AddPeer(name, "calloc-per-line", [=] { return CallocCreate(size); });
    AddLimit(name, size);
}

// Into a target that holds the last snapshot, which goes first.
Work OurSnapshot(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer from = MakeRaster(*source);
    auto to = std::make_shared<Raster>();
    return {[=] {
                (void)from->SnapshotTo(to.get());
                from->UnlockAll();
                to->UnlockAll();
            },
            [=] { return Difference(*source, PictureOf(*to)); }};
}

Work CallocAndCopy(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer from = MakeRaster(*source);
    const std::vector<u8*> lines = LinesOf(*from);
    auto plain = std::make_shared<PlainLines>();
    return {[=] {
                plain->Drop();
                plain->Take(size);
                for (u32 y = 0; y < size.height; ++y)
                    std::memcpy(plain->lines[y], lines[y], StrideOf(size));
            },
            [=]() -> std::string {
                const std::vector<u8*> read = LinesOf(*from);
                for (u32 y = 0; y < size.height; ++y)
                    if (std::memcmp(plain->lines[y], read[y], StrideOf(size)) != 0)
                        return "a line is another";
                return {};
            }};
}

void AddSnapshot(Size size)
{
    const std::string name = "SnapshotTo/" + Name(size);
    AddOurs(name, [=] { return OurSnapshot(size); });
    AddPeer(name, "calloc-and-copy", [=] { return CallocAndCopy(size); });
    AddLimit(name, size);
}

// Forth and back: what is left of the source is dropped by the next Create in it.
Work OurTakeFrom(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    auto full = std::make_shared<RasterPointer>(MakeRaster(*source));
    auto empty = std::make_shared<RasterPointer>(std::make_shared<Raster>());
    return {[=] {
                (void)(*empty)->TakeFrom(full->get());
                std::swap(*empty, *full);
            },
            [=] { return Difference(*source, PictureOf(**full)); }};
}

Work CallocTakeOver(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    const size_t bytes = size_t{3} * size.width;
    auto plain = std::make_shared<PlainLines>();
    plain->Take(size);
    for (u32 y = 0; y < size.height; ++y)
        std::memcpy(plain->lines[y], source->At(0, y), bytes);
    return {[=] {
                for (u8*& line : plain->lines) {
                    u8* const made = static_cast<u8*>(std::calloc(1, StrideOf(size)));
                    std::memcpy(made, line, StrideOf(size));
                    std::free(line);
                    line = made;
                }
            },
            [=]() -> std::string {
                for (u32 y = 0; y < size.height; ++y)
                    if (std::memcmp(plain->lines[y], source->At(0, y), bytes) != 0)
                        return "row " + std::to_string(y) + " is no copy";
                return {};
            }};
}

void AddTakeFrom(Size size)
{
    const std::string name = "TakeFrom/" + Name(size);
    AddOurs(name, [=] { return OurTakeFrom(size); });
    AddPeer(name, "calloc-copy-free", [=] { return CallocTakeOver(size); });
    AddLimit(name, size);
}

std::string HostFolder()
{
    return tavrix::platform::HostPathOf(Folder);
}

u32 LineFiles()
{
    u32 count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(HostFolder()))
        count += entry.path().extension() == ".tmp";
    return count;
}

void PageOut(Raster& raster, u32 height)
{
    for (u32 y = 0; y < height; ++y) {
        u8* line = nullptr;
        (void)raster.LockLines(static_cast<i32>(y), &line, nullptr);
        raster.ReleaseLines(static_cast<i32>(y), 1, 1);
    }
}

void PageIn(Raster& raster, u32 height)
{
    for (u32 y = 0; y < height; ++y) {
        u8* line = nullptr;
        (void)raster.LockLines(static_cast<i32>(y), &line, nullptr);
        raster.ReleaseLines(static_cast<i32>(y), 1, 0);
    }
    raster.UnlockAll();
}

Work OurPaging(Size size)
{
    auto source = std::make_shared<Picture>(MakePicture(size, Seed));
    RasterPointer raster = MakeRaster(size, 24, Folder);
    const std::vector<u8*> lines = LinesOf(*raster);
    for (u32 y = 0; y < size.height; ++y)
        std::memcpy(lines[y], source->At(0, y), size_t{3} * size.width);
    return {[=] {
                PageOut(*raster, size.height);
                PageIn(*raster, size.height);
            },
            [=]() -> std::string {
                const u32 before = LineFiles();
                PageOut(*raster, size.height);
                // The last line is never released by a release.
                const u32 files = LineFiles() - before;
                PageIn(*raster, size.height);
                if (files != size.height - 1)
                    return std::to_string(files) + " lines were paged out";
                return Difference(*source, PictureOf(*raster));
            }};
}

// The same files in the same folder by the host's own calls. Named as line files, so that what a
// stopped run leaves is swept with them.
Work HostPaging(Size size)
{
    const size_t bytes = StrideOf(size);
    const u32 files = size.height - 1;
    auto block = std::make_shared<std::vector<u8>>(bytes);
    Noise(Seed).Fill(block->data(), bytes);
    auto names = std::make_shared<std::vector<std::string>>();
    for (u32 i = 0; i < files; ++i) {
        char name[32];
        std::snprintf(name, sizeof(name), "/%06u.tmp", i);
        names->push_back(HostFolder() + name);
    }
    auto read = std::make_shared<std::vector<u8>>(bytes);
    auto failures = std::make_shared<u32>(0);
    return {
        [=] {
            for (const std::string& name : *names) {
                const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
                if (file < 0 || write(file, block->data(), bytes) != static_cast<ssize_t>(bytes))
                    ++*failures;
                close(file);
            }
            for (const std::string& name : *names) {
                const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
                if (file < 0 || ::read(file, read->data(), bytes) != static_cast<ssize_t>(bytes))
                    ++*failures;
                close(file);
                unlink(name.c_str());
            }
        },
        [=]() -> std::string {
            return *failures == 0 && *read == *block ? std::string()
                                                     : std::to_string(*failures) + " files failed";
        }};
}

void AddPaging(Size size)
{
    const std::string name = "Paging/out-and-in/" + Name(size);
    AddOurs(name, [=] { return OurPaging(size); });
    AddPeer(name, "host-files", [=] { return HostPaging(size); });
    AddLimit(name, size.height, StrideOf(size));
}

} // namespace

void AddStores()
{
    for (const Size size : Created)
        AddCreate(size);
    for (const Size size : Sizes) {
        AddSnapshot(size);
        AddTakeFrom(size);
        AddPaging(size);
    }
}

} // namespace bench
