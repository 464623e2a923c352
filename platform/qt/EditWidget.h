// The two toolkit widgets behind the class EDIT, behind one face: a single line, or several that
// are wrapped. Both speak of the text as the program knows it, where a line ends in CR and LF, and
// count its units so. What an input method composes shows in place and is no text yet: the program
// sees the text as it was before, and again if the composing comes to nothing. They never open a
// menu or start a drag of their own: each would run a loop of the toolkit's. User-interface thread.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

class QWidget;

namespace tavrix::platform
{

class EditWidget
{
public:
    /// Called whenever the person, or Replace, may have made the text another one, and not while
    /// something is being composed.
    using Changed = std::function<void()>;

    virtual ~EditWidget() = default;
    virtual QWidget* Widget() = 0;
    /// Where the pointer's events arrive.
    virtual QWidget* PointerTarget() = 0;

    virtual std::u16string Text() const = 0;
    /// Quietly; the caret goes to the end, and several lines show from their first.
    virtual void SetText(const std::u16string& text) = 0;
    /// The selection as first and behind the last unit.
    virtual std::pair<int, int> Selection() const = 0;
    /// From `anchor` to `caret`, either of which may be the larger; numbers past the end are the
    /// end.
    virtual void Select(int anchor, int caret) = 0;
    /// Puts a text in place of the selection, read-only or not.
    virtual void Replace(const std::u16string& text) = 0;
    /// How many units the person may type; a longer text that is there stays.
    virtual void SetLimit(int units) = 0;
    virtual void SetReadOnly(bool on) = 0;
    /// Lines as they are wrapped.
    virtual int LineCount() const = 0;

    virtual bool IsComposing() const = 0;
    /// What is being composed becomes text, or with `take` false is dropped.
    virtual void EndComposing(bool take) = 0;
};

/// Ends what is being composed in a control, by its becoming text or being dropped. False when the
/// control is no edit field or nothing is being composed. Behind the call it may be gone.
bool EndComposing(HWND control, bool take);

/// Below `parent`, which owns the toolkit's widget; `style` is the window's.
std::shared_ptr<EditWidget> MakeLineEdit(DWORD style, bool framed, EditWidget::Changed changed,
                                         QWidget* parent);
std::shared_ptr<EditWidget> MakeTextEdit(DWORD style, bool framed, EditWidget::Changed changed,
                                         QWidget* parent);

} // namespace tavrix::platform
