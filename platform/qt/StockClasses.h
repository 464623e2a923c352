// The platform's own window classes that dialogs are made of, and their one registration.
#pragma once

#include <windows.h>

class QWidget;

namespace tavrix::platform
{

struct Window;

/// Makes the stock classes known to CreateWindowExW. Only the first call does anything.
void RegisterStockClasses();

// Each class's window procedure and the maker of its widget, defined by its own source.
LRESULT CALLBACK DialogClassProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeDialogWidget(Window& window, QWidget* parent);
LRESULT CALLBACK StaticProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeStaticWidget(Window& window, QWidget* parent);
LRESULT CALLBACK ButtonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeButtonWidget(Window& window, QWidget* parent);
LRESULT CALLBACK ProgressProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeProgressWidget(Window& window, QWidget* parent);
LRESULT CALLBACK TrackbarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeTrackbarWidget(Window& window, QWidget* parent);
LRESULT CALLBACK TreeProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeTreeWidget(Window& window, QWidget* parent);
LRESULT CALLBACK EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeEditWidget(Window& window, QWidget* parent);
LRESULT CALLBACK ListProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeListWidget(Window& window, QWidget* parent);
LRESULT CALLBACK ComboProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeComboWidget(Window& window, QWidget* parent);
LRESULT CALLBACK ListBoxProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeListBoxWidget(Window& window, QWidget* parent);
LRESULT CALLBACK CommandBarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeCommandBarWidget(Window& window, QWidget* parent);

inline constexpr const WCHAR* CommandBarClassName = TEXT("CommandBar");

} // namespace tavrix::platform
