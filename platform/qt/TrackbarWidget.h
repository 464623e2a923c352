// How a trackbar looks and where its parts lie, and the toolkit's events on their way to messages.
// What the messages do stands in TrackbarControl.cpp. User-interface thread.
#pragma once

#include <windows.h>

#include <QBasicTimer>
#include <QWidget>

#include <memory>

namespace tavrix::platform
{

struct TrackbarState {
    int lowest = 0;
    int highest = 100;
    int position = 0;
    int line = 1;
    int page = 0; // 0: a fifth of the range
    /// What the held left button does: nothing, moves the thumb, or pages to one side.
    enum class Holding { Nothing, Thumb, PageUp, PageDown } holding = Holding::Nothing;
    int pressedAt = 0;       // along the bar, in pixels
    int pressedPosition = 0; // the position when the thumb was taken
};

class TrackbarWidget : public QWidget
{
public:
    TrackbarWidget(HWND window, bool upright, std::shared_ptr<const TrackbarState> state,
                   QWidget* parent);

    /// The thumb goes where the state has it, at the loop's next turn.
    void Follow();
    /// A point's place along the bar.
    int Along(const QPoint& point) const { return isUpright ? point.y() : point.x(); }
    /// Where the thumb begins, and how long it is.
    int ThumbStart() const;
    int ThumbLength() const;
    /// By how much the position changes when the thumb moves so many pixels.
    int PositionsOf(int pixels) const;

    /// Calls `TrackbarPageAgain` for as long as the button is held in the groove.
    void BeginPaging();
    void EndPaging() { repeat.stop(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    int Travel() const;
    QRect Thumb() const;

    HWND handle;
    bool isUpright;
    // Shared with the window, which may be gone before the widget's last paint.
    std::shared_ptr<const TrackbarState> shown;
    QBasicTimer repeat;
    int drawn = -1; // where the thumb began when it was drawn last
};

/// The next page towards the held button; TrackbarControl.cpp.
void TrackbarPageAgain(HWND window);

} // namespace tavrix::platform
