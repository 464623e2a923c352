// The list of a combo box while it is dropped down: a widget on the device screen, above all else
// there, so that no window system takes part and no loop of the toolkit's runs. It takes the
// pointer alone; keys stay with the combo box, which has the keyboard. While it is there, a press
// or the wheel anywhere beside it and its combo box closes it, and so does its combo box's
// disappearance. User-interface thread.
#pragma once

#include "platform/qt/ChoiceView.h"

namespace tavrix::platform
{

class DropList : public ChoiceView
{
public:
    /// For the combo box `window` with its widget `box`.
    DropList(HWND window, QWidget* box, std::shared_ptr<const ChoiceModel> model);
    /// Lies below the box, or above it where there is more room, inside the screen, at most
    /// `height` high and as wide as its rows need.
    void Place(int height);
    /// Put away, whoever still has it on the stack.
    void Bury();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool LooksActive() const override { return true; }

private:
    HWND handle;
    QWidget* combo;
    int wantedHeight = 0;
};

/// The person took a row (-1: no row, the list closes); ComboInput.cpp. The list is buried behind
/// the call, and the combo box may be gone.
void DropListDone(HWND combo, int row);

} // namespace tavrix::platform
