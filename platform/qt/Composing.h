// What the two toolkit widgets of the class EDIT do alike while an input method composes in them:
// a composing that begins over a selection gives the selection back when it comes to nothing, and
// one that the input method leaves behind becomes text. User-interface thread.
#pragma once

#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>

#include <functional>
#include <utility>

namespace tavrix::platform
{

/// `Base` is a text widget of the toolkit's; `Self`, derived from this, has `QString Selected()`,
/// `void Reinsert(const QString&)`, which puts a text in at the caret and selects it,
/// `QString Admitted(QString)`, as much of a text as it takes, and `bool IsSecret()`, whether its
/// text is not shown.
template <class Self, class Base>
class Composing : public Base
{
public:
    using Base::Base;

    /// Called when the text may be another one and nothing is being composed.
    std::function<void()> changed;

    bool IsComposing() const { return !composed.isEmpty(); }

    void TellChange()
    {
        if (!IsComposing() && changed)
            changed();
    }

    void EndComposing(bool take)
    {
        if (!IsComposing())
            return;
        QInputMethodEvent last;
        if (take)
            last.setCommitString(composed);
        Take(last);
        // The input method must not bring it once more.
        if (this->hasFocus())
            QGuiApplication::inputMethod()->reset();
    }

    /// The same before the program does something to the text, which begins at what it knows of it.
    void DropComposing()
    {
        const std::function<void()> kept = std::exchange(changed, nullptr);
        EndComposing(false);
        changed = kept;
    }

    /// What is only read needs no input method, and in a password what is composed could be read.
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override
    {
        const Self& self = static_cast<const Self&>(*this);
        if (query == Qt::ImEnabled && (this->isReadOnly() || self.IsSecret()))
            return false;
        return Base::inputMethodQuery(query);
    }

protected:
    void inputMethodEvent(QInputMethodEvent* event) override
    {
        event->accept();
        if (!this->isReadOnly())
            Take(*event);
    }

    void focusOutEvent(QFocusEvent* event) override
    {
        // An input method that ends its work when the focus goes has done so by now.
        EndComposing(true);
        Base::focusOutEvent(event);
    }

private:
    void Take(const QInputMethodEvent& event)
    {
        Self& self = static_cast<Self&>(*this);
        const bool composing = IsComposing();
        if (!composing)
            replaced = self.Selected();
        const QString now = event.preeditString();
        QInputMethodEvent admitted(now, event.attributes());
        admitted.setCommitString(self.Admitted(event.commitString()), event.replacementStart(),
                                 event.replacementLength());
        // Until it is over, what the toolkit tells does not count.
        composed = now.isEmpty() && composing ? composed : now;
        Base::inputMethodEvent(&admitted);
        composed = now;
        if (composing && now.isEmpty() && event.commitString().isEmpty() && !replaced.isEmpty())
            self.Reinsert(replaced);
        if (now.isEmpty())
            replaced.clear();
        TellChange();
    }

    QString composed; // what shows and is no text yet
    QString replaced; // the selection that the composing began over
};

} // namespace tavrix::platform
