// Turns squares drawn in letters into an icon file: make-icon SOURCE.txt TARGET.ico
// Each square becomes one 32-bit image of the icon.

#include "tools/IconFile.h"

#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: make-icon SOURCE.txt TARGET.ico\n";
        return 2;
    }
    return ConvertBlocks(argv[1], argv[2], IconOf);
}
