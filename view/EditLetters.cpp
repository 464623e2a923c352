#include "view/EditLetters.h"

#include "foundation/Language.h"
#include "image/DrawingContext.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"

#include <new>

namespace
{

constexpr u32 TextCapacity = 1024; // with the zero; of a longer text the beginning is taken
constexpr u32 MostFonts = 512;

constexpr const WCHAR* Sizes[] = {TEXT("10"), TEXT("20"), TEXT("30"), TEXT("40"),
                                  TEXT("50"), TEXT("75"), TEXT("100")};

void Push(VariantStack* stack, const WCHAR* text)
{
    const Variant item{nullptr, VariantWide, reinterpret_cast<uintptr_t>(text)};
    // Whoever pops finds out that it is not there.
    (void)stack->Push(&item);
}

int CALLBACK TakeFont(const LOGFONTW* font, const TEXTMETRICW*, DWORD kind, LPARAM stack)
{
    if (kind == TRUETYPE_FONTTYPE)
        Push(reinterpret_cast<VariantStack*>(stack), font->lfFaceName);
    return 1;
}

void AddChoice(HWND dialog, i32 list, const WCHAR* text)
{
    SendDlgItemMessageW(dialog, list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
}

void ChooseFirst(HWND dialog, i32 list)
{
    SendDlgItemMessageW(dialog, list, CB_SETCURSEL, 0, 0);
}

void ListFonts(HWND dialog, VariantStack* names)
{
    DrawingContext context;
    (void)context.AttachWindow(dialog);
    if (EnumFontFamiliesW(context.Handle(), nullptr, TakeFont, reinterpret_cast<LPARAM>(names)) ==
        0) {
        AddChoice(dialog, ControlLettersFont, TEXT("unexpected error..."));
        return;
    }
    for (u32 i = 0; i < MostFonts; ++i) {
        Variant name{nullptr, VariantWide, 0};
        if (names->Pop(&name) < Done)
            break;
        AddChoice(dialog, ControlLettersFont, reinterpret_cast<const WCHAR*>(name.value));
    }
}

void Start(HWND dialog)
{
    VariantStack* const names = new (std::nothrow) VariantStack;
    if (names == nullptr) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    ListFonts(dialog, names);
    delete names;
    ChooseFirst(dialog, ControlLettersFont);
    for (const WCHAR* const size : Sizes)
        AddChoice(dialog, ControlLettersSize, size);
    ChooseFirst(dialog, ControlLettersSize);
    AddChoice(dialog, ControlLettersUnit, TEXT("px"));
    ChooseFirst(dialog, ControlLettersUnit);
}

/// The text of the row that is chosen or, where one is typed, of the row that it is. Empty for
/// none: meant, a size that the list does not have is lost.
void PushChoice(HWND dialog, i32 list, VariantStack* stack)
{
    WCHAR text[TextCapacity] = {};
    LRESULT row = SendDlgItemMessageW(dialog, list, CB_GETCURSEL, 0, 0);
    if (row == CB_ERR) {
        GetDlgItemTextW(dialog, list, text, TextCapacity);
        row = SendDlgItemMessageW(dialog, list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                  reinterpret_cast<LPARAM>(text));
    }
    text[0] = 0;
    if (row != CB_ERR)
        SendDlgItemMessageW(dialog, list, CB_GETLBTEXT, static_cast<WPARAM>(row),
                            reinterpret_cast<LPARAM>(text));
    Push(stack, text);
}

void PushText(HWND dialog, VariantStack* stack)
{
    WCHAR text[TextCapacity] = {};
    GetDlgItemTextW(dialog, ControlLettersText, text, TextCapacity);
    Push(stack, text);
}

void OnCommand(HWND dialog, u32 id)
{
    const auto* request =
        reinterpret_cast<const LettersRequest*>(GetWindowLongPtrW(dialog, DWLP_USER));
    switch (id) {
    case IDOK:
        PushChoice(dialog, ControlLettersSize, request->stack);
        PushText(dialog, request->stack);
        PushChoice(dialog, ControlLettersFont, request->stack);
        EndDialog(dialog, 1);
        break;
    case IDCANCEL:
        EndDialog(dialog, 0);
        break;
    default:
        break;
    }
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Start(dialog);
        return TRUE;
    case WM_COMMAND:
        OnCommand(dialog, LOWORD(wParam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

i32 ShowEditLetters(HWND owner, HINSTANCE instance, const LettersRequest* request)
{
    if (request == nullptr || request->stack == nullptr)
        return BadArgument;
    const u32 id = IsJapanese() ? DialogLettersJapanese : DialogLettersEnglish;
    const INT_PTR result =
        DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), owner, Procedure,
                                reinterpret_cast<LPARAM>(request));
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}
