// The compiled resources of controls.rc under a module handle of their own.
#pragma once

#include "platform/host/Resources.h"

#include <windows.h>

extern "C" const unsigned char platform_qt_test_resources[];
extern "C" const unsigned char platform_qt_test_resources_end[];

namespace tavrix::testing
{

inline HINSTANCE ControlResources()
{
    static int marker = 0;
    static const HINSTANCE instance = [] {
        const auto handle = reinterpret_cast<HINSTANCE>(&marker);
        TavrixRegisterResources(handle, platform_qt_test_resources, platform_qt_test_resources_end);
        return handle;
    }();
    return instance;
}

inline LPCDLGTEMPLATEW DialogResource(int id)
{
    const HINSTANCE instance = ControlResources();
    const HRSRC resource = FindResourceW(instance, MAKEINTRESOURCEW(id), RT_DIALOG);
    return static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(instance, resource)));
}

} // namespace tavrix::testing
