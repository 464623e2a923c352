// The main window object and the one record that holds all state of the running program: the
// picture, where it came from, the view, the plugin hosts, the menus and the settings. Shell and
// view share it, so its fields are open to both and each of their operations stands in the file of
// its topic.
//
// One instance. Everything runs on the user-interface thread; a worker has the picture, its plugin
// and the settings for the time of its job, and reads `abortRequested` and `window`. No lock: the
// modal progress dialog keeps commands away meanwhile.
//
// Coordinates of the picture and the view are doubles; zoom is picture pixels for one screen pixel,
// so that 2.0 is the menu's 50%. Colours are words 0xRRGGBBAA.
#pragma once

#include "foundation/Allocator.h"
#include "image/Raster.h"
#include "pixel/Brush.h"
#include "pixel/ScreenSurface.h"
#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/FormatList.h"
#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/PrintPlugin.h"
#include "plugin/ScalePlugin.h"
#include "plugin/SubtractPlugin.h"
#include "settings/SettingsFile.h"
#include "shell/HandOver.h"
#include "view/ColorChooser.h"
#include "view/FileDialog.h"

#include <windows.h>

#include <atomic>

class MainFrame
{
public:
    /// Leaves all window work to OnCreate. An object that cannot be allocated stays null.
    MainFrame();
    /// Saves and closes the settings, then gives everything up.
    virtual ~MainFrame();
    MainFrame(const MainFrame&) = delete;
    MainFrame& operator=(const MainFrame&) = delete;

    /// Whether every object that it owns could be allocated. The start ends without it, so that no
    /// other operation has to ask.
    bool IsWhole() const;

    // Message handlers, in the order of their slots.
    virtual void GetCreateParams(CREATESTRUCTW* record);
    virtual LRESULT OnCreate(const CREATESTRUCTW* record);
    virtual void OnPaint();
    virtual LRESULT OnCommand(u32 notifyCode, u32 id, HWND control);
    /// The pen (view/Tools.cpp): MK_ flags, and the point in the window, x in the low word and y in
    /// the high one, both signed.
    virtual void OnLButtonDown(u32 keys, LPARAM packedPoint);
    virtual void OnLButtonUp(u32 keys, LPARAM packedPoint);
    virtual void OnMouseMove(u32 keys, LPARAM packedPoint);
    /// Nothing: the window's size is taken from the screen once, at creation.
    virtual void OnSize(u32 kind, i32 width, i32 height);
    virtual void OnClose();
    /// Timer 2 polls the clipboard (shell/ClipboardPoll.cpp); there is no other.
    virtual LRESULT OnTimer(u32 id);
    virtual LRESULT OnCtlColorStatic();
    /// Brings the main window to the front. Always 0.
    virtual LRESULT OnNotify();
    /// The hand-over of a second start (shell/HandOver.cpp): writes LastCommandLine and opens the
    /// record's text, both at once or when the flow under way has ended. Always 1. Never reads
    /// beyond the record's count; without data it opens nothing.
    virtual LRESULT OnCopyData(HWND sender, const COPYDATASTRUCT* record);
    virtual LRESULT OnGetInstance();

    // Menus (shell/Menus.cpp).
    /// Takes all submenu handles by position. Called before each bulk update.
    void FetchMenus();
    /// A picture has come to exist. Enables only, never disables.
    void EnableImageMenus();
    void UpdateClipMenus();
    void UpdateZoomChecks();
    void UpdateDitherCheck();
    void UpdateScreenChecks();
    void UpdateWindowChecks();

    // The clips (shell/MemoryClip.cpp, ClipboardClip.cpp, ClipboardPoll.cpp). Copies take the
    // selection, or without one the picture's size; pastes need a selection, whose top left they go
    // to. None takes a snapshot.
    /// The clip has the size of the selection or the picture and begins at the selection's corner
    /// even where no selection counts: what lies beyond the picture is black. Asks where memory is
    /// short, when the old clip is gone already.
    void CopyToMemory();
    /// All of the clip, cut at the picture's edges alone.
    void PasteFromMemory();
    /// Gives the memory clip up.
    void ClearMemory();
    /// Asks for the format first. Without a selection it begins at the picture's corner.
    void CopyToClipboard();
    /// A picture of 24 bits, cut at the selection's edges. Its row 0 goes with the picture's line 0
    /// wherever the selection begins, its column 0 to the selection's left.
    void PasteFromClipboard();
    /// Empties the clipboard, if it offers a picture.
    void ClearClipboard();
    /// The clipboard's offer has changed, or not: grays or enables what depends on it.
    void PollClipboard();

    /// Starts the sibling viewer on the current file (shell/LaunchViewer.cpp).
    void LaunchViewer();

    // The entries of plugins, by their position in the menu.
    virtual void OpenAs(u32 position); // shell/OpenAs.cpp, SaveAs.cpp, PrintImage.cpp
    virtual void SaveAs(u32 position);
    virtual void Print(u32 position);
    virtual void Effect(u32 position); // shell/ProcessImages.cpp
    virtual void Adjust(u32 position);

    // Undo and the work copy (shell/Undo.cpp, CopySelection.cpp).
    /// Puts the snapshot back and gives it up. Does nothing to the picture unless the menu entry is
    /// enabled and the snapshot is whole; grays the entry either way.
    void Undo();
    /// Takes `raster` as what Undo brings back, at (x, y), or for -1, -1 in place of the whole
    /// picture; only where undoing is enabled. A snapshot that fails is no reason to stop.
    void TakeUndo(Raster* raster, i32 x, i32 y);
    /// Makes `workImage` a 24-bit copy of the selection, after the question about memory where it
    /// is short. NothingDone without a selection, when the answer is not Yes, or when there is no
    /// memory, which it tells. The caller drops the copy.
    i32 CopySelection();
    /// The pixels of the picture inside the selection's corners, whether it counts or not. Width
    /// and height are 0 for corners out of order.
    struct SelectedPart {
        i32 left;
        i32 top;
        i32 width;
        i32 height;
    };
    SelectedPart GetSelectedPart() const;
    /// The same, with the picture's size where the selection does not count (shell/MemoryClip.cpp).
    SelectedPart GetPartToCopy() const;
    /// Drops the work copy and its allocator, if there are any.
    void DropWorkImage();

    // Changing the picture as a whole (shell/NewImage.cpp, ScaleImage.cpp, ResizeCanvas.cpp,
    // TurnImage.cpp, DrawLetters.cpp). The first three and the last ask the user first.
    /// A blank picture in place of the one there is.
    void NewImage();
    /// Another number of pixels, through a SCALE plugin.
    void ScaleImage();
    /// Another canvas: pixels are added or cut off at the edges.
    void ResizeCanvas();
    /// In place, as the next two. A line that cannot be locked ends the reversing of lines, which
    /// it tells, and nothing else.
    void ReverseHorizontally();
    void ReverseVertically();
    void TurnHalf();
    /// By the command: CommandRotateClockwise or CommandRotateCounterClockwise. Asks where memory
    /// is short. Leaves the picture as it is after a failure.
    void TurnQuarter(u32 command);
    /// Text into the selection's corners, whether it counts or not.
    void DrawLetters();

    // Plugins before the user (shell/PluginMenus.cpp).
    /// Puts the plugins' names into their menus, in place of the entries that stand for none. Once,
    /// behind the pass that finds them.
    void BuildPluginMenus();
    /// Opens the plugin information dialog.
    void ShowPlugins();

    // Opening (shell/OpenImages.cpp, OpenAs.cpp, OpenUrl.cpp, OpenIrObex.cpp, Reload.cpp).
    // Paths are device paths.
    /// Null asks the user for a file. Otherwise opens what the command line or a hand-over names;
    /// silent when it cannot be opened or no plugin's patterns hold its extension.
    void OpenFile(const WCHAR* path);
    /// A picture from a web server, decoded while it comes. Asks for the address, unless `reload`
    /// is 1: then the last one is fetched again. The opened path stays as it is.
    void OpenUrl(i32 reload);
    /// A picture that another device sends. Waits for it, then decodes it. The opened path stays as
    /// it is.
    void OpenIrObex();
    /// Reads the picture again from where it came: the file, the address, or anew.
    void ReloadOpened();
    /// Reads the file that was last written.
    void ReloadSaved();
    /// The open's negative code, else what LoadFromStream gives.
    i32 LoadFromFile(const WCHAR* path, i32 plugin, i32 configure);
    /// Decodes `stream` with INPUT plugin number `plugin` into `image`, as one job. NothingDone if
    /// it stopped before the job, else the dialog's result, which says nothing about the success.
    i32 LoadFromStream(Stream* stream, i32 plugin, i32 configure);
    /// The plugin of the first format whose patterns hold the path's extension. NothingDone when
    /// there is no extension or no such format.
    [[nodiscard]] i32 FindInputPlugin(const WCHAR* path, i32* plugin) const;

    // Saving (shell/SaveImages.cpp, EncodeImage.cpp).
    /// Asks for a name and a format and writes the picture there.
    void Save();
    /// Encodes as Save does, to nowhere, and tells the size.
    void SaveVirtualCommand();
    /// Encodes the picture, or the selection if the user says so, with OUTPUT plugin number
    /// `plugin`, as one job. NothingDone if it stopped before the job, else the dialog's result,
    /// which says nothing about the success.
    i32 SaveToFile(const WCHAR* path, i32 plugin, i32 configure);
    /// The same to nowhere; `path` names the file whose size is compared. Done also when the user
    /// cancelled the plugin's settings.
    i32 SaveVirtual(const WCHAR* path, i32 plugin, i32 configure);

    // Dialogs about the picture and the program (view/ImageInformation.cpp, ...).
    void ShowImageInformation();
    void ShowPaletteInformation();
    void ShowAbout();

    // Tools and tool windows (view/Tools.cpp, ToolWindows.cpp).
    /// Takes the tool of a command and tells the toolbox.
    void ChooseTool(u32 command);
    /// Has the toolbox show the tool in force.
    void TellToolbox();
    /// Makes toolbox and colorbox, shown or hidden as their flags say.
    void CreateToolWindows();
    /// Shows or hides the toolbox or the colorbox, by its command.
    void ToggleToolWindow(u32 command);

    // View (view/ViewTransform.cpp, Zoom.cpp, Scroll.cpp, ScreenMode.cpp, RedrawView.cpp). The
    // conversions change the point in place; Done, or NothingDone for null.
    struct Point {
        f64 x;
        f64 y;
    };
    i32 WindowToView(Point* point) const;
    i32 ViewToWindow(Point* point) const;
    i32 ViewToImage(Point* point) const;
    i32 ImageToView(Point* point) const;
    i32 WindowToScreen(Point* point) const;
    i32 ScreenToWindow(Point* point) const;
    /// Centres the picture, or starts it at its own edge where it is larger than the view; redraws.
    void InitializeView();
    /// Computes the zoom at which the picture fills the view; with `centre` initialises the view.
    void FitToWindow(i32 centre);
    /// A fixed zoom, by its command.
    void SetZoom(u32 command);
    /// Moves the picture by 10 screen pixels away in the key's direction. There is no limit.
    void ScrollByKeys(u32 command);
    /// Orders the selection's corners and cuts them to the picture (view/Selection.cpp).
    void NormalizeSelection();
    /// The whole picture is the selection.
    void SelectAll();
    /// The selection no longer counts; its corners stay.
    void Deselect();
    /// Dithering on or off.
    void ToggleDither();
    /// Makes the surface at the depth that the screen mode asks for.
    i32 CreateSurface();
    /// 0 shows colours, 1 four greys.
    void SetMonoScreen(u32 mono);
    /// Composes and shows the whole view.
    void RedrawView();
    /// Composes and shows a part, in window coordinates, inclusive: for what follows the pen.
    /// NothingDone without a picture, else Done.
    i32 RedrawRegion(f64 left, f64 top, f64 right, f64 bottom);

    // State, in the order of the record.
    HWND window = nullptr;
    HINSTANCE instance = nullptr;
    HeapAllocator allocator;
    ScreenSurface surface; // what the view is presented to and painted from
    Raster viewRaster;     // 24 bits, of the screen's size; the view is composed here
    f64 clientOriginX = 0; // the view's top left in the window
    f64 clientOriginY = 0; // the command bar's height
    i32 screenWidth;
    i32 screenHeight;
    i32 viewWidth;   // usable area, for fitting and centring
    i32 viewHeight;  // the screen's less command bar, task bar and 1
    f64 scrollX = 0; // picture coordinate at the view's top left
    f64 scrollY = 0;
    enum : u32 {
        ToolScroll = 1,
        ToolSelect = 18,
        ToolBrush = 32,
        ToolColorEraser = 48,
        ToolAlphaEraser = 49,
        ToolPipette = 64
    };
    u32 tool = ToolScroll;
    HWND toolbox = nullptr;
    u32 showToolbox = 1;
    Raster* sprites; // 21 by 48 at 32 bits: the two markers of the scroll tool
    enum : u32 { PhaseNone = 0, PhasePressed = 16, PhaseDragging = 17 };
    u32 toolPhase = PhaseNone; // pressed and dragging show a marker
    Brush* brush;
    u32 backgroundColor = 0xFFFFFFFF;
    u32 faceColor = 0;
    HWND colorbox = nullptr;
    u32 showColorbox = 1;
    ColorChooser colorDialog;
    InputPlugin* inputPlugins;
    OutputPlugin* outputPlugins;
    PrintPlugin* printPlugins;
    EffectPlugin* effectPlugins;
    AdjustPlugin* adjustPlugins;
    ScalePlugin* scalePlugins;
    SubtractPlugin* subtractPlugins;
    enum : u32 { PathCapacity = 260 };
    WCHAR* openedPath; // file of the picture, empty when it has none
    WCHAR* savedPath;  // last file written
    i32 inputPlugin = -1;
    Raster* image;        // the document
    u32 imagePresent = 0; // 1 once a picture was loaded or made, and from then on
    // Each of the two copies has an allocator of its own, so that dropping it gives back all its
    // memory at a stroke: first the raster, then the allocator.
    HeapAllocator* clipAllocator = nullptr;
    HeapAllocator* workAllocator = nullptr;
    Raster* clipImage = nullptr; // the memory clip
    Raster* workImage = nullptr; // the selection while a plugin works on it
    u32 undoEnabled = 0;
    Raster undoImage; // the one snapshot
    i32 undoX = -1;   // where it goes back; both -1: in place of the whole picture
    i32 undoY = -1;
    FormatList* inputExtensions;
    FormatList* outputExtensions;
    FileDialog fileDialog;    // keeps its folder and its sort from one use to the next
    PropertyList* inputNames; // plugin name -> plugin index, in menu order
    PropertyList* outputNames;
    PropertyList* effectNames;
    PropertyList* adjustNames;
    PropertyList* scaleNames;
    PropertyList* subtractNames;
    PropertyList* printNames;
    u32 selecting = 0; // 1 during the drag
    u32 selectionActive = 0;
    u32 selectionFrame = 1;                // a selection at rest is tinted
    u32 selectionFrameColor = 0x0090FF70u; // a light blue, half seen through
    f64 selectionLeft = 0; // corners in picture coordinates, inclusive once normalised; they stay
    f64 selectionTop = 0;  // when the selection is dropped
    f64 selectionRight = 0;
    f64 selectionBottom = 0;
    u32 clipboardHasImage = 0;
    Point toolPoint = {0, 0};         // the pen's last place in the window
    Point toolPreviousPoint = {0, 0}; // and the one before
    u32 zoomCommand;
    f64 zoom = 1.0;
    u32 dither = 0;
    u32 monoScreen = 0;
    HMENU mainMenu = nullptr;
    HMENU fileMenu = nullptr;
    HMENU editMenu = nullptr;
    HMENU toolsMenu = nullptr;
    HMENU imageMenu = nullptr;
    HMENU infoMenu = nullptr;
    HMENU displayMenu = nullptr;
    HMENU openMenu = nullptr;
    HMENU openAsMenu = nullptr;
    HMENU saveMenu = nullptr;
    HMENU saveAsMenu = nullptr;
    HMENU streamMenu = nullptr; // fetched and never used
    HMENU printMenu = nullptr;
    HMENU copyMenu = nullptr;
    HMENU pasteMenu = nullptr;
    HMENU clearMenu = nullptr;
    HMENU selectMenu = nullptr;
    HMENU brushMenu = nullptr;
    HMENU eraserMenu = nullptr;
    HMENU effectMenu = nullptr;
    HMENU adjustMenu = nullptr;
    HMENU reloadMenu = nullptr;
    HMENU windowMenu = nullptr;
    HMENU zoomMenu = nullptr;
    HMENU methodMenu = nullptr;
    HMENU ditherMenu = nullptr;
    HMENU screenMenu = nullptr;
    HWND commandBar = nullptr;
    HICON smallIcon = nullptr;
    HMENU popupMenu = nullptr; // never set; destroyed at close if it ever were
    enum : u32 { ClipboardTimer = 2, ClipboardPollMilliseconds = 1000 };
    std::atomic<u32> abortRequested{0}; // set by the dialog, read by the worker
    SettingsFile* settings;
    HandOvers handOvers; // names that wait for the end of the flow under way

private:
    struct ViewRectangles {
        Point sourceTopLeft;
        Point sourceBottomRight;
        Point targetTopLeft;
        Point targetBottomRight;
    };
    // Redrawing (view/RedrawView.cpp).
    ViewRectangles GetViewRectangles() const;
    PixelRect GetSelectionMarks(bool region) const;
    void DrawSelection(const PixelRect& marks);
    void DrawMarker();
    void ShowSurface(i32 left, i32 top, i32 width, i32 height);
    void PutUndoBack();
    void CreateCommandBar();
    void ScanPlugins();
    void ReadColors();
    void ReadToolWindows();
    void ReadBrush();
    void LoadSprites();
    void ReadZoom();
    void ReadDither();
    void ReadScreenMode();
    void TakeTaskBar();
    void OpenCommandLine();
    void ReadUndo();
};

/// The frame, from its construction to the end of its destruction; for the callbacks that run
/// without an object at hand.
extern MainFrame* mainFrame;

/// The window procedure of the main window: hands the messages to the handlers.
LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// The section of the settings that is the program's own, and the plugins'.
inline const WCHAR* const ProgramSection = TEXT("Tavrix");
inline const WCHAR* const PluginSection = TEXT("Global");
