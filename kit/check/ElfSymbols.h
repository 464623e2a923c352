// What a library tells about itself in its file: the symbols that it exports and the libraries that
// it needs. Read without loading it, so that nothing of it runs.
#pragma once

#include <string>
#include <vector>

namespace plugincheck
{

struct ExportedSymbol {
    std::string name;
    bool unique = false; // one that keeps its library in memory for good
};

struct LibraryFile {
    bool readable = false; // false: no library of this machine, and the rest is empty
    std::vector<ExportedSymbol> exports;
    std::vector<std::string> needed;
};

LibraryFile ReadLibraryFile(const std::string& path);

} // namespace plugincheck
