// Text into the picture: asked for in a dialog and drawn where the selection is, or was last.

#include "foundation/Numbers.h"
#include "shell/Boxes.h"
#include "shell/MainFrame.h"
#include "view/EditLetters.h"

#include <new>

namespace
{

constexpr u32 Opaque = 255;

/// Null where there is none. Lives as long as the stack is left alone.
const WCHAR* PopText(VariantStack* stack)
{
    Variant item{nullptr, VariantWide, 0};
    return stack->Pop(&item) < Done ? nullptr : reinterpret_cast<const WCHAR*>(item.value);
}

u32 PopNumber(VariantStack* stack)
{
    Variant item{nullptr, VariantUnsigned, 0};
    return stack->Pop(&item) < Done ? 0 : static_cast<u32>(item.value);
}

} // namespace

void MainFrame::DrawLetters()
{
    VariantStack* const answers = new (std::nothrow) VariantStack;
    if (answers == nullptr) {
        ShowError(window, TEXT("Failed to create a buffer for string."),
                  TEXT("文字列バッファの作成に失敗しました。"));
        return;
    }
    const LettersRequest request = {image,          answers,         selectionLeft, selectionTop,
                                    selectionRight, selectionBottom, faceColor};
    if (ShowEditLetters(window, instance, &request) >= Done) {
        const WCHAR* const font = PopText(answers);
        const WCHAR* const text = PopText(answers);
        const u32 size = PopNumber(answers);
        // Meant: no look at whether there is a selection, no word of a failure, no undo.
        (void)image->DrawTextSmooth(text, request.faceColor | Opaque, font,
                                    TruncateToSigned(request.left), TruncateToSigned(request.top),
                                    TruncateToSigned(request.right),
                                    TruncateToSigned(request.bottom), size, DT_WORDBREAK);
        RedrawView();
    }
    delete answers;
}
