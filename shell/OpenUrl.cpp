// A picture from a web server: the connection itself is the stream that the plugin reads, with no
// file between them.

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"
#include "shell/Boxes.h"
#include "shell/FileChoice.h"
#include "shell/LoadFromWire.h"
#include "shell/MainFrame.h"
#include "transfer/HttpClient.h"
#include "view/UrlDialog.h"

namespace
{

constexpr const WCHAR* LastUrl = TEXT("LastURL");

void ReadLastUrl(SettingsFile& settings, WCHAR* address)
{
    const WCHAR* last = nullptr;
    if (settings.GetText(ProgramSection, LastUrl, &last) < Done || last == nullptr)
        last = TEXT("http://");
    CopyText(address, UrlCapacity, last);
}

/// The address up to its last "/", that included; all of it without one.
void AddReferer(PropertyList& headers, const WCHAR* address, WCHAR* base)
{
    CopyText(base, UrlCapacity, address);
    const WCHAR* last = nullptr;
    if (FindLastChar(base, TEXT('/'), &last) >= Done)
        base[last - base + 1] = 0;
    // Without memory the server is asked without it.
    (void)headers.SetWide(TEXT("Referer"), base);
}

} // namespace

void MainFrame::OpenUrl(i32 reload)
{
    const ScopedFlow flow(this);
    HeapAllocator work;
    PropertyList headers(&work);
    HttpClient client;
    WCHAR* const address = AllocText(work, UrlCapacity);
    WCHAR* const base = AllocText(work, UrlCapacity);
    if (address == nullptr || base == nullptr) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    if (inputExtensions->Count() == 0) {
        TellNoInputPlugin(window);
        return;
    }
    ReadLastUrl(*settings, address);
    if (reload != 1 && ShowUrlDialog(window, instance, address) < Done)
        return;
    settings->SetText(ProgramSection, LastUrl, address);
    AddReferer(headers, address, base);
    u16 status = 0;
    // An answer such as "not found" is no failure here: the plugin's first read is, and the job
    // tells it. The window waits meanwhile and does not answer.
    if (client.Open(address, &status, &headers) < 0) {
        ShowEnglishError(window, TEXT("Connection Failure"), MB_ICONHAND | MB_TOPMOST);
        return;
    }
    // Meant: it is the last "." of the whole address, of a query or the server's name too, and of
    // the address as it was asked for, wherever the server led to.
    i32 plugin = -1;
    if (FindInputPlugin(address, &plugin) < Done) {
        ShowEnglishError(window, TEXT("Unknown File Format"));
        return;
    }
    LoadFromWire(*this, &client, plugin);
}
