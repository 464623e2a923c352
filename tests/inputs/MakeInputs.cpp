#include "tests/inputs/MakeInputs.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace
{

KeepInput KeepIn(const std::filesystem::path& folder)
{
    std::filesystem::create_directories(folder);
    return [folder](const std::string& name, const std::string& bytes) {
        std::ofstream out(folder / name, std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!out)
            std::fprintf(stderr, "cannot write %s\n", (folder / name).c_str());
    };
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fprintf(stderr, "usage: make-inputs FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    MakeJpegInputs(KeepIn(folder / "jpeg"));
    MakePngInputs(KeepIn(folder / "png"));
    return 0;
}
