#include "platform/qt/MenuBar.h"

#include "platform/qt/DialogFont.h"
#include "platform/qt/Window.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QShortcutEvent>

namespace tavrix::platform
{
namespace
{

bool IsEnabledItem(const MenuItem& item)
{
    return (item.state & (MF_GRAYED | MF_DISABLED)) == 0;
}

/// Puts an entry's text and state into its action.
void ShowItem(const MenuItem& item, QAction& action)
{
    action.setText(DisplayText(item.text));
    action.setEnabled(IsEnabledItem(item));
    const bool checked = (item.state & MF_CHECKED) != 0;
    action.setCheckable(checked);
    action.setChecked(checked);
}

/// Makes the entry's action in `parent`, a menu or a bar.
template <class Parent>
void AddItem(Parent& parent, const MenuItem& item, int position, const MenuTarget& target)
{
    if (item.separator) {
        parent.addSeparator();
        return;
    }
    if (item.popup) {
        auto* popup = new PopupMenu(item.popup, target, position, &parent);
        parent.addMenu(popup);
        ShowItem(item, *popup->menuAction());
        return;
    }
    QAction* action = parent.addAction(DisplayText(item.text));
    ShowItem(item, *action);
    QObject::connect(action, &QAction::triggered, &parent, [action, target, id = item.id](bool) {
        if (action->isCheckable())
            action->setChecked(true); // the toolkit has toggled it; the mark is the program's
        if (target.Ready())
            PostMessageW(target.window, WM_COMMAND, MAKEWPARAM(id, 0), 0);
    });
}

/// Whether the actions stand for the entries one by one, so that only states need to be set.
bool MatchesKinds(const Menu& menu, const QList<QAction*>& actions)
{
    if (static_cast<size_t>(actions.size()) != menu.items.size())
        return false;
    for (qsizetype i = 0; i < actions.size(); ++i) {
        const MenuItem& item = menu.items[static_cast<size_t>(i)];
        if (actions[i]->isSeparator() != item.separator ||
            (actions[i]->menu() != nullptr) != (item.popup != nullptr))
            return false;
    }
    return true;
}

template <class Parent>
void ShowItems(Parent& parent, const Menu& menu, const MenuTarget& target)
{
    // Popups are deleted at once and not later: later never comes in the platform's own loops.
    for (QAction* action : parent.actions()) {
        QMenu* popup = action->menu();
        parent.removeAction(action);
        if (popup != nullptr)
            delete popup;
        else
            delete action;
    }
    int position = 0;
    for (const MenuItem& item : menu.items)
        AddItem(parent, item, position++, target);
}

void ShowStates(const QList<QAction*>& actions, const Menu& menu)
{
    for (qsizetype i = 0; i < actions.size(); ++i) {
        const MenuItem& item = menu.items[static_cast<size_t>(i)];
        if (!item.separator)
            ShowItem(item, *actions[i]);
    }
}

} // namespace

bool MenuTarget::Ready() const
{
    const Window* record = FindWindowRecord(window);
    return record != nullptr && TakesInput(*record);
}

PopupMenu::PopupMenu(std::shared_ptr<Menu> menu, MenuTarget commandTarget, int place,
                     QWidget* parent)
    : QMenu(parent), model(std::move(menu)), target(commandTarget), position(place)
{
    setFont(DialogFont());
    connect(this, &QMenu::aboutToShow, this, [this] { OnAboutToShow(); });
    connect(this, &QMenu::aboutToHide, this, [this] { model->onChange = nullptr; });
}

PopupMenu::~PopupMenu()
{
    model->onChange = nullptr;
}

void PopupMenu::Fill()
{
    if (filled && filledRevision == model->revision)
        return;
    filled = true;
    filledRevision = model->revision;
    ShowItems(*this, *model, target);
}

// On screens of the toolkit's own a popup that comes up again is not painted again; its window is
// made anew instead.
void PopupMenu::hideEvent(QHideEvent* event)
{
    QMenu::hideEvent(event);
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("vnc") || platform == QLatin1String("linuxfb"))
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (!isVisible())
                    destroy();
            },
            Qt::QueuedConnection);
}

void PopupMenu::OnAboutToShow()
{
    SendMessageW(target.window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(model->handle),
                 MAKELPARAM(position, 0));
    Fill();
    // While the popup is open a changed state shows at once; other entries wait for its next
    // opening, as the one under the pointer must not go.
    model->onChange = [this] {
        if (MatchesKinds(*model, actions()))
            ShowStates(actions(), *model);
    };
}

MenuBar::MenuBar(std::shared_ptr<Menu> menu, MenuTarget commandTarget, int height, QWidget* parent)
    : QMenuBar(parent), model(std::move(menu)), target(commandTarget), look(height)
{
    setNativeMenuBar(false);
    setStyle(&look);
    setFont(DialogFont());
    setFocusPolicy(Qt::NoFocus);
    Fill();
    model->onChange = [this] { Fill(); };
}

MenuBar::~MenuBar()
{
    model->onChange = nullptr;
    setStyle(nullptr); // it goes before the widget does
}

void MenuBar::Fill()
{
    if (MatchesKinds(*model, actions()))
        ShowStates(actions(), *model);
    else
        ShowItems(*this, *model, target);
}

// Where several titles have one letter the toolkit opens one after the other, from one time to the
// next. The letter means the first.
bool MenuBar::OpenFirst(const QKeySequence& letter)
{
    for (QAction* action : actions()) {
        QMenu* popup = action->menu();
        if (popup == nullptr || !action->isEnabled() ||
            QKeySequence::mnemonic(action->text()) != letter)
            continue;
        setActiveAction(action);
        // By key a popup opens on its first entry.
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
        QCoreApplication::sendEvent(popup, &down);
        return true;
    }
    return false;
}

bool MenuBar::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::Shortcut:
        if (!target.Ready())
            return true; // taken and dropped
        break;
    default:
        break;
    }
    if (event->type() == QEvent::Shortcut) {
        const auto& shortcut = static_cast<const QShortcutEvent&>(*event);
        if (shortcut.isAmbiguous() && OpenFirst(shortcut.key()))
            return true;
    }
    return QMenuBar::event(event);
}

bool MenuBar::eventFilter(QObject* object, QEvent* event)
{
    // Here the toolkit watches the main window for the alt key, which is not to open a bar whose
    // window is shut out.
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease ||
                     event->type() == QEvent::ShortcutOverride;
    if (key && !target.Ready())
        return false;
    return QMenuBar::eventFilter(object, event);
}

} // namespace tavrix::platform
