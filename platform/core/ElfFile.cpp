#include "platform/core/ElfFile.h"

#include "platform/core/HostFiles.h"

#include <fcntl.h>
#include <link.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace tavrix::platform
{

namespace
{

constexpr unsigned char NativeClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr unsigned char NativeOrder =
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;

bool ReadExactly(const Descriptor& file, void* bytes, size_t length, uint64_t position)
{
    int error = 0;
    return ReadAt(file.Get(), bytes, length, static_cast<off_t>(position), &error) == length;
}

bool Inside(uint64_t offset, uint64_t length, uint64_t size)
{
    return offset <= size && length <= size - offset;
}

} // namespace

bool IsWholeLibrary(const std::string& hostPath)
{
    Descriptor file;
    struct stat status = {};
    if (OpenRegular(hostPath, O_RDONLY, 0, &file) != 0 || fstat(file.Get(), &status) != 0)
        return false;
    const auto size = static_cast<uint64_t>(status.st_size);

    // The segments' table stands behind the header in all but strange files: one read has both.
    std::array<unsigned char, 1024> start{};
    int error = 0;
    const size_t atStart = ReadAt(file.Get(), start.data(), start.size(), 0, &error);
    ElfW(Ehdr) header{};
    if (atStart < sizeof header)
        return false;
    std::memcpy(&header, start.data(), sizeof header);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != NativeClass || header.e_ident[EI_DATA] != NativeOrder ||
        header.e_type != ET_DYN || header.e_phentsize != sizeof(ElfW(Phdr)))
        return false;

    bool dynamic = false;
    for (unsigned index = 0; index < header.e_phnum; ++index) {
        ElfW(Phdr) segment{};
        const uint64_t position = uint64_t{header.e_phoff} + uint64_t{index} * sizeof segment;
        if (!Inside(position, sizeof segment, size))
            return false;
        if (Inside(position, sizeof segment, atStart))
            std::memcpy(&segment, start.data() + position, sizeof segment);
        else if (!ReadExactly(file, &segment, sizeof segment, position))
            return false;
        if ((segment.p_type == PT_LOAD || segment.p_type == PT_DYNAMIC) &&
            !Inside(segment.p_offset, segment.p_filesz, size))
            return false;
        dynamic = dynamic || segment.p_type == PT_DYNAMIC;
    }
    return dynamic;
}

} // namespace tavrix::platform
