#include "shell/Application.h"

#include "resources/Ids.h"

i32 Application::Init()
{
    WNDCLASSW record = {};
    record.style = CS_DBLCLKS;
    record.lpfnWndProc = MainWindowProcedure;
    record.hInstance = instance;
    record.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    record.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    record.lpszClassName = TEXT("Tavrix");
    RegisterClassW(&record);

    accelerators = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(AcceleratorTable));

    CREATESTRUCTW create;
    frame->GetCreateParams(&create);
    if (create.hInstance == nullptr)
        create.hInstance = instance;
    HWND window =
        CreateWindowExW(create.dwExStyle, create.lpszClass, create.lpszName,
                        static_cast<DWORD>(create.style), create.x, create.y, create.cx, create.cy,
                        create.hwndParent, create.hMenu, create.hInstance, frame);
    return window != nullptr ? Done : NothingDone;
}

i32 Application::Run()
{
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0)) {
        if (!TranslateAcceleratorW(message.hwnd, accelerators, &message))
            TranslateMessage(&message);
        // A message that the accelerator table took is dispatched as well.
        DispatchMessageW(&message);
    }
    return static_cast<i32>(message.wParam);
}

i32 Application::Exit()
{
    return Done;
}
