// A menu shown: a bar of the toolkit along the command bar, its popups made and filled when they
// open. The model stays the truth; what the person picks is posted as WM_COMMAND to the target, and
// no check mark changes but by the program. User-interface thread.
#pragma once

#include "platform/qt/MenuBarStyle.h"
#include "platform/qt/MenuModel.h"

#include <QMenu>
#include <QMenuBar>

namespace tavrix::platform
{

/// Where commands go.
struct MenuTarget {
    HWND window = nullptr;
    /// Whether the target takes commands now (it is enabled, no modal dialog is over it).
    bool Ready() const;
};

class PopupMenu : public QMenu
{
public:
    /// `position`: the popup's place in the menu it hangs in, for WM_INITMENUPOPUP.
    PopupMenu(std::shared_ptr<Menu> menu, MenuTarget target, int position, QWidget* parent);
    ~PopupMenu() override;

    /// The actions follow the model, if it has changed since.
    void Fill();

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void OnAboutToShow();

    std::shared_ptr<Menu> model;
    MenuTarget target;
    int position;
    bool filled = false;
    unsigned filledRevision = 0;
};

class MenuBar : public QMenuBar
{
public:
    MenuBar(std::shared_ptr<Menu> menu, MenuTarget target, int height, QWidget* parent);
    ~MenuBar() override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void Fill();
    bool OpenFirst(const QKeySequence& letter);

    std::shared_ptr<Menu> model;
    MenuTarget target;
    MenuBarStyle look;
};

} // namespace tavrix::platform
