// The single-line edit control.
#include "platform/qt/Composing.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/EditWidget.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace tavrix::platform
{
namespace
{

bool IsDigit(QChar unit)
{
    return unit >= u'0' && unit <= u'9';
}

class Line : public Composing<Line, QLineEdit>
{
public:
    Line(bool onlyNumbers, QWidget* parent)
        : Composing<Line, QLineEdit>(parent), numbers(onlyNumbers)
    {
        if (numbers)
            setInputMethodHints(inputMethodHints() | Qt::ImhDigitsOnly);
    }

    bool IsSecret() const { return echoMode() != QLineEdit::Normal; }
    QString Selected() const { return selectedText(); }

    void Reinsert(const QString& text)
    {
        insert(text);
        const auto length = static_cast<int>(text.size());
        setSelection(cursorPosition() - length, length);
    }

    QString Admitted(QString typed) const
    {
        if (numbers)
            typed.removeIf([](QChar unit) { return !IsDigit(unit); });
        return typed;
    }

protected:
    void contextMenuEvent(QContextMenuEvent* event) override { event->accept(); }

private:
    bool numbers;
};

class LineEdit : public EditWidget
{
public:
    LineEdit(DWORD style, bool framed, Changed changed, QWidget* parent)
        : line(new Line((style & ES_NUMBER) != 0, parent))
    {
        line->setFrame(framed);
        line->setFont(DialogFont());
        line->setDragEnabled(false);
        line->setAcceptDrops(false);
        line->setMaxLength(limit);
        line->setAlignment((style & ES_RIGHT) != 0    ? Qt::AlignRight
                           : (style & ES_CENTER) != 0 ? Qt::AlignHCenter
                                                      : Qt::AlignLeft);
        if ((style & ES_PASSWORD) != 0)
            line->setEchoMode(QLineEdit::Password);
        line->changed = std::move(changed);
        QObject::connect(line, &QLineEdit::textChanged, line, [box = line] { box->TellChange(); });
    }

    QWidget* Widget() override { return line; }
    QWidget* PointerTarget() override { return line; }
    std::u16string Text() const override { return line->text().toStdU16String(); }

    void SetText(const std::u16string& text) override
    {
        line->DropComposing();
        const QSignalBlocker quiet(line);
        const QString shown = QString::fromStdU16String(text);
        // The limit is for what is typed.
        line->setMaxLength(std::max<int>(limit, static_cast<int>(shown.size())));
        line->setText(shown);
    }

    std::pair<int, int> Selection() const override
    {
        if (!line->hasSelectedText())
            return {line->cursorPosition(), line->cursorPosition()};
        return {line->selectionStart(), line->selectionEnd()};
    }

    void Select(int anchor, int caret) override
    {
        const int length = static_cast<int>(line->text().size());
        anchor = std::clamp(anchor, 0, length);
        caret = std::clamp(caret, 0, length);
        if (anchor == caret)
            line->setCursorPosition(caret);
        else
            line->setSelection(anchor, caret - anchor);
    }

    void Replace(const std::u16string& text) override
    {
        line->DropComposing();
        line->insert(QString::fromStdU16String(text));
    }

    void SetLimit(int units) override
    {
        limit = units;
        // Setting it sets the text again, and with it the caret.
        const QSignalBlocker quiet(line);
        const auto [first, behind] = Selection();
        const bool backwards = line->cursorPosition() == first;
        line->setMaxLength(std::max<int>(limit, static_cast<int>(line->text().size())));
        Select(backwards ? behind : first, backwards ? first : behind);
    }

    void SetReadOnly(bool on) override
    {
        line->DropComposing();
        line->setReadOnly(on);
        QGuiApplication::inputMethod()->update(Qt::ImEnabled);
        line->setPalette(QPalette());
        if (!on)
            return;
        QPalette palette = line->palette();
        palette.setColor(QPalette::Base, palette.color(QPalette::Window));
        line->setPalette(palette);
    }

    int LineCount() const override { return 1; }

    bool IsComposing() const override { return line->IsComposing(); }
    void EndComposing(bool take) override { line->EndComposing(take); }

private:
    Line* line;
    int limit = 0x7FFF;
};

} // namespace

std::shared_ptr<EditWidget> MakeLineEdit(DWORD style, bool framed, EditWidget::Changed changed,
                                         QWidget* parent)
{
    return std::make_shared<LineEdit>(style, framed, std::move(changed), parent);
}

} // namespace tavrix::platform
