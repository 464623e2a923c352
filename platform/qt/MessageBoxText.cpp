#include "platform/qt/MessageBoxText.h"

#include <algorithm>

namespace tavrix::platform
{
namespace
{

// Types that the program itself does not use but a plugin may.
constexpr UINT AbortRetryIgnore = 2;
constexpr UINT RetryCancel = 5;

constexpr LANGID PrimaryLanguageMask = 0x3FF;
constexpr LANGID PrimaryJapanese = 0x11;

struct Caption {
    UINT id;
    const WCHAR* english;
    const WCHAR* japanese;
};

const Caption captions[] = {
    {IDOK, TEXT("OK"), TEXT("OK")},
    {IDCANCEL, TEXT("Cancel"), TEXT("キャンセル")},
    {IDABORT, TEXT("&Abort"), TEXT("中止(&A)")},
    {IDRETRY, TEXT("&Retry"), TEXT("再試行(&R)")},
    {IDIGNORE, TEXT("&Ignore"), TEXT("無視(&I)")},
    {IDYES, TEXT("&Yes"), TEXT("はい(&Y)")},
    {IDNO, TEXT("&No"), TEXT("いいえ(&N)")},
};

std::vector<UINT> ButtonIds(UINT flags)
{
    switch (flags & MB_TYPEMASK) {
    case MB_OKCANCEL:
        return {IDOK, IDCANCEL};
    case AbortRetryIgnore:
        return {IDABORT, IDRETRY, IDIGNORE};
    case MB_YESNOCANCEL:
        return {IDYES, IDNO, IDCANCEL};
    case MB_YESNO:
        return {IDYES, IDNO};
    case RetryCancel:
        return {IDRETRY, IDCANCEL};
    default:
        return {IDOK};
    }
}

} // namespace

bool IsJapanese(LANGID language)
{
    return (language & PrimaryLanguageMask) == PrimaryJapanese;
}

std::vector<BoxButton> BoxButtons(UINT flags, LANGID language)
{
    std::vector<BoxButton> buttons;
    for (const UINT id : ButtonIds(flags)) {
        const Caption* caption =
            std::find_if(std::begin(captions), std::end(captions),
                         [id](const Caption& candidate) { return candidate.id == id; });
        buttons.push_back({id, IsJapanese(language) ? caption->japanese : caption->english});
    }
    return buttons;
}

bool EscapeAnswers(UINT flags)
{
    const std::vector<UINT> ids = ButtonIds(flags);
    return ids.size() == 1 || std::find(ids.begin(), ids.end(), UINT{IDCANCEL}) != ids.end();
}

} // namespace tavrix::platform
