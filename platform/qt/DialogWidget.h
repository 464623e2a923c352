// How a dialog looks around its controls: a raised border, and a caption strip where its style has
// one, by which it is dragged. The client area is a widget of its own inside, the controls' parent.
// User-interface thread.
#pragma once

#include <windows.h>

#include <QMargins>
#include <QPoint>
#include <QWidget>

namespace tavrix::platform
{

struct Window;

/// What the frame of a dialog of this style adds to its client area.
QMargins DialogFrame(DWORD style);

class CaptionStrip : public QWidget
{
public:
    CaptionStrip(HWND dialog, bool closeButton, QWidget* parent);
    void SetTitle(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QRect CloseButton() const;

    HWND dialog;
    QString title;
    bool hasCloseButton;
    bool dragging = false;
    bool closing = false; // the press was on the close button
    QPoint grip;          // the pointer's place in the dialog when the drag began
};

class DialogWidget : public QWidget
{
public:
    DialogWidget(Window& window, QWidget* parent);
    void SetTitle(const QString& text);
    /// Gives caption and client area their places. The toolkit tells a hidden widget nothing of its
    /// new size, so whoever sizes it calls this.
    void LayOut();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    DWORD style;
    CaptionStrip* caption = nullptr;
    QWidget* client;
};

} // namespace tavrix::platform
