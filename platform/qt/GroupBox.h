// The frame with a title around a group of controls. It lies behind them and takes no input.
// User-interface thread.
#pragma once

#include <QString>
#include <QWidget>

namespace tavrix::platform
{

class GroupBox : public QWidget
{
public:
    explicit GroupBox(QWidget* parent);
    void SetTitle(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title;
};

} // namespace tavrix::platform
