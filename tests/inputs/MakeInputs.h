// Makes the picture files of this folder: a few sound ones and many that are broken in one way
// each, named by what is wrong with them. The files are kept; this program stays so that they can
// be looked through, and made again or added to. Run: make-inputs FOLDER (such as tests/inputs).
#pragma once

#include <functional>
#include <string>

/// Takes a file's name without its folder and its bytes.
using KeepInput = std::function<void(const std::string& name, const std::string& bytes)>;

void MakeJpegInputs(const KeepInput& keep);
void MakePngInputs(const KeepInput& keep);
