// How a tree looks and where its items lie: rows from the top, the expander, the image and the text
// of each, scroll bars. It changes nothing but what is in view; the pointer and the keys go to the
// window procedure. Whoever changes the items says so by ItemsChanged, and rows and scroll bars
// follow when they are next asked for, so that thousands of changes cost one layout. Client
// coordinates are those of the viewport. User-interface thread.
#pragma once

#include "platform/qt/TreeItems.h"

#include <QAbstractScrollArea>

#include <memory>
#include <vector>

namespace tavrix::platform
{

struct Window;

/// What the window and its widget share.
struct TreeState {
    TreeItems items;
    TreeItem* selected = nullptr;
    HIMAGELIST images = nullptr; // the program's; may be gone by now
    QSize imageSize{0, 0};       // what images take in each row
    DWORD style = 0;

    /// The TVIS_ bits of an item.
    UINT StateOf(const TreeItem& item) const
    {
        return (selected == &item ? TVIS_SELECTED : 0) | (item.expanded ? TVIS_EXPANDED : 0);
    }
};

class TreeWidget : public QAbstractScrollArea
{
public:
    enum class Part { Nothing, Button, Item };
    struct Hit {
        Part part = Part::Nothing;
        TreeItem* item = nullptr;
    };

    TreeWidget(HWND window, std::shared_ptr<TreeState> shown, QWidget* parent);

    /// Items came, went, moved or have another size.
    void ItemsChanged();
    /// Items look different in their places.
    void Redraw() { viewport()->update(); }
    /// The toolkit tells a hidden widget nothing of its new size, so the window does.
    void LayOutHidden();

    /// The items whose parents are all expanded, from the top.
    const std::vector<TreeItem*>& Rows();
    /// How many whole rows are in view, 1 at least.
    int PageRows() const;
    /// Scrolls until the item's row is in view; tells whether it had to. Nothing for an item
    /// without a row.
    bool Reveal(const TreeItem& item);
    Hit HitTest(QPoint at);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    int RowHeight() const;
    int Indent() const;
    bool HasRootColumn() const;
    bool HasColumn(const TreeItem& item) const;
    bool ShowsButton(const TreeItem& item) const;
    /// Where the item's image, or without images its text, begins.
    int Left(const TreeItem& item) const;
    QRect TextPlace(TreeItem& item, int top) const;
    void PaintRow(QPainter& painter, TreeItem& item, int top);
    void PaintLines(QPainter& painter, const TreeItem& item, int top) const;
    void PaintButton(QPainter& painter, const TreeItem& item, int top) const;
    void PaintText(QPainter& painter, TreeItem& item, int top);
    int ContentWidth();
    /// Gives the scroll bars their ranges for content of that width in the viewport as it is.
    void SetRanges(int width);
    /// The same and shows or hides the bars, until ranges and viewport agree.
    void SetBars();

    HWND handle;
    // Shared with the window, which may be gone before the widget.
    std::shared_ptr<TreeState> state;
    std::vector<TreeItem*> rows;
    bool stale = false; // the rows do not follow the items
    bool settingBars = false;
    bool asked = false; // an event that sets the bars is on its way
};

} // namespace tavrix::platform
