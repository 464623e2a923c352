// The one host window: what the desktop sees of the program. It is as large as the device screen,
// or full screen with the device screen at its own size in the middle of black; F11 changes between
// the two at any time and never reaches the program. Whatever it shows, the program's coordinates
// are those of the device screen. User-interface thread.
#pragma once

#include <windows.h>

#include <QWidget>

#include <string>

class QKeyEvent;

namespace tavrix::platform
{

class HostWindow : public QWidget
{
public:
    HostWindow();

    /// Takes the device screen, a child of this window.
    void Hold(QWidget* deviceScreen);
    /// Shows it for the first time.
    void ShowFirst();
    /// From a window to full screen, or back.
    void ToggleFullScreen();

    /// What the desktop shows for the program: the main window's title and icons, null for none.
    void SetTitle(const std::u16string& title);
    void SetIcons(HICON small, HICON big);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void ShowFullScreen();
    void Centre();

    QWidget* screen = nullptr;
};

/// The host window; made with the device screen at the first use.
HostWindow& TheHostWindow();

/// Whether a key event of the toolkit is the full screen key's; its press has its effect here.
bool TakeFullScreenKey(const QEvent& event);

} // namespace tavrix::platform
