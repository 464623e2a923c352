#include "shell/Boxes.h"

#include "foundation/Language.h"

void ShowError(HWND owner, const WCHAR* english, const WCHAR* japanese)
{
    MessageBoxW(owner, InLanguage(english, japanese), InLanguage(TEXT("ERROR"), TEXT("エラー")),
                MB_ICONHAND);
}

void ShowEnglishError(HWND owner, const WCHAR* text, u32 flags)
{
    MessageBoxW(owner, text, TEXT("ERROR"), flags);
}

void TellNoInputPlugin(HWND owner)
{
    MessageBoxW(owner,
                InLanguage(TEXT("No INPUT plugin is installed"),
                           TEXT("読み込みプラグインがインストールされていません。")),
                InLanguage(TEXT("WARNING"), TEXT("警告")), MB_ICONEXCLAMATION);
}

void TellNoPlaceToPaste(HWND owner)
{
    ShowError(owner, TEXT("Coordinates to paste must be pointed."),
              TEXT("貼り付ける座標が指定されていません"));
}

// Meant: the icon differs by language.
void WarnAboutConfigure(HWND owner)
{
    MessageBoxW(
        owner,
        InLanguage(TEXT("Failed to initialize plugin settings, but enforce next process..."),
                   TEXT("プラグイン設定の初期化に失敗しました。強行します。")),
        InLanguage(TEXT("WARNING"), TEXT("警告")), IsJapanese() ? MB_ICONEXCLAMATION : MB_ICONHAND);
}
