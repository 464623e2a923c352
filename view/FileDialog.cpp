#include "view/FileDialog.h"

struct FileDialog::State {};

FileDialog::FileDialog() = default;
FileDialog::~FileDialog() = default;

i32 FileDialog::Open(OPENFILENAMEW*)
{
    return NothingDone;
}

i32 FileDialog::Save(OPENFILENAMEW*)
{
    return NothingDone;
}
