// How a combo box looks while it is closed: a field with the chosen text, cut with an ellipsis
// where it is too long, and an arrow. Of one with an edit field the field is the window of that.
// Its height is its font's alone. Keys and the pointer become messages. User-interface thread.
#pragma once

#include <windows.h>

#include <QWidget>

namespace tavrix::platform
{

class ComboWidget : public QWidget
{
public:
    ComboWidget(HWND window, bool hasEdit, QWidget* parent);
    void SetText(const QString& text);
    /// Drawn as dropped down.
    void SetDropped(bool on);
    /// Where the edit field lies.
    QRect FieldPlace() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    void FitHeight();

    HWND handle;
    bool editable;
    bool dropped = false;
    int turned = 0; // by the wheel, less than a notch
    QString text;
};

/// The wheel turned over a combo box by so many notches, up positive; ComboInput.cpp.
void ComboWheel(HWND combo, int notches);

} // namespace tavrix::platform
