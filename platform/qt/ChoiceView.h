// How the rows of a list box, or of a combo box that is dropped down, look: one text a row, one row
// lit, scrolled as far as needed. What input does is up to whoever shows it. Pixels of the widget.
// User-interface thread.
#pragma once

#include "platform/qt/ChoiceModel.h"

#include <QAbstractScrollArea>

#include <memory>

namespace tavrix::platform
{

class ChoiceView : public QAbstractScrollArea
{
public:
    /// The model is shared with the window, which may be gone before the last paint.
    ChoiceView(std::shared_ptr<const ChoiceModel> model, QWidget* parent);

    /// The rows are others now.
    void Renew();
    /// One row is lit and in sight; -1: none.
    void Light(int row);
    int Lit() const { return lit; }
    /// The row under a point of the widget; -1.
    int RowAt(QPoint point) const;
    /// The row that a key (VK_UP, VK_NEXT, ...) leads to from `row`, -1 where the key leads nowhere
    /// or there are no rows.
    int RowByKey(int row, int key) const;
    int RowHeight() const;
    /// What the rows need with no scroll bar, the frame not counted.
    QSize RowsSize() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    void scrollContentsBy(int x, int y) override;

    /// Whether the lit row looks like one that has the keyboard.
    virtual bool LooksActive() const { return hasFocus(); }

private:
    void Fit();

    std::shared_ptr<const ChoiceModel> rows;
    int lit = -1;
};

} // namespace tavrix::platform
