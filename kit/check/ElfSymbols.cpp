#include "kit/check/ElfSymbols.h"

#include <elf.h>
#include <link.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>

namespace plugincheck
{

namespace
{

using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);
using Symbol = ElfW(Sym);
using Dynamic = ElfW(Dyn);

/// A file's bytes, of which nothing outside is ever read.
class Bytes
{
public:
    explicit Bytes(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        content.assign(std::istreambuf_iterator<char>(file), {});
    }
    template <typename Record>
    bool Take(uint64_t offset, Record* out) const
    {
        if (offset > content.size() || sizeof(Record) > content.size() - offset)
            return false;
        std::memcpy(out, content.data() + offset, sizeof(Record));
        return true;
    }
    std::string Text(uint64_t offset) const
    {
        if (offset >= content.size())
            return {};
        return std::string(content.data() + offset,
                           strnlen(content.data() + offset, content.size() - offset));
    }

private:
    std::vector<char> content;
};

bool IsExported(const Symbol& symbol)
{
    const unsigned bind = symbol.st_info >> 4;
    const unsigned visibility = symbol.st_other & 3;
    return symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS &&
           (bind == STB_GLOBAL || bind == STB_WEAK || bind == STB_GNU_UNIQUE) &&
           (visibility == STV_DEFAULT || visibility == STV_PROTECTED);
}

void ReadSymbols(const Bytes& bytes, const Section& table, const Section& names, LibraryFile* out)
{
    Symbol symbol;
    for (uint64_t at = 0; at + sizeof symbol <= table.sh_size; at += sizeof symbol) {
        if (!bytes.Take(table.sh_offset + at, &symbol))
            return;
        if (IsExported(symbol))
            out->exports.push_back({bytes.Text(names.sh_offset + symbol.st_name),
                                    symbol.st_info >> 4 == STB_GNU_UNIQUE});
    }
}

void ReadNeeds(const Bytes& bytes, const Section& table, const Section& names, LibraryFile* out)
{
    Dynamic entry;
    for (uint64_t at = 0; at + sizeof entry <= table.sh_size; at += sizeof entry) {
        if (!bytes.Take(table.sh_offset + at, &entry))
            return;
        if (entry.d_tag == DT_NEEDED)
            out->needed.push_back(bytes.Text(names.sh_offset + entry.d_un.d_val));
    }
}

} // namespace

LibraryFile ReadLibraryFile(const std::string& path)
{
    LibraryFile library;
    const Bytes bytes(path);
    Header header;
    if (!bytes.Take(0, &header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_shentsize != sizeof(Section))
        return library;
    library.readable = true;
    const auto take = [&](unsigned index, Section* section) {
        return bytes.Take(header.e_shoff + uint64_t{index} * sizeof(Section), section);
    };
    for (unsigned i = 0; i < header.e_shnum; ++i) {
        Section section;
        Section names;
        if (!take(i, &section) || section.sh_link >= header.e_shnum ||
            !take(section.sh_link, &names))
            continue;
        if (section.sh_type == SHT_DYNSYM)
            ReadSymbols(bytes, section, names, &library);
        else if (section.sh_type == SHT_DYNAMIC)
            ReadNeeds(bytes, section, names, &library);
    }
    return library;
}

} // namespace plugincheck
