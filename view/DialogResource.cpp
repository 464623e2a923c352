#include "view/DialogResource.h"

LPCDLGTEMPLATEW FindDialogResource(HINSTANCE instance, u32 id)
{
    const HRSRC resource = FindResourceW(instance, MAKEINTRESOURCEW(id), RT_DIALOG);
    if (resource == nullptr)
        return nullptr;
    return static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(instance, resource)));
}
