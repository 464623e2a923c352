// The edit control of several lines.
#include "platform/qt/Composing.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/EditWidget.h"

#include <QAbstractTextDocumentLayout>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr QChar LineEnd = QChar::ParagraphSeparator; // between the lines of a document

class TextBox : public Composing<TextBox, QPlainTextEdit>
{
public:
    using Composing<TextBox, QPlainTextEdit>::Composing;

    int limit = 0x7FFF;

    /// The document as it is, ends of lines as single units.
    QString Raw() const { return document()->toRawText(); }

    /// As much of the text as the limit leaves room for, once the selection is replaced.
    QString Fitting(const QString& text) const
    {
        const QString raw = Raw();
        const QString chosen = textCursor().selectedText();
        const qsizetype used = Units(raw) - Units(chosen);
        QString fitting = text;
        fitting.replace(QLatin1String("\r\n"), QString(LineEnd));
        fitting.replace(QLatin1Char('\n'), LineEnd);
        fitting.replace(QLatin1Char('\r'), LineEnd);
        while (!fitting.isEmpty() && used + Units(fitting) > limit)
            fitting.chop(std::max<qsizetype>(1, (used + Units(fitting) - limit) / 2));
        if (!fitting.isEmpty() && fitting.back().isHighSurrogate())
            fitting.chop(1); // half a sign is none
        return fitting;
    }

    bool IsSecret() const { return false; }
    QString Selected() const { return textCursor().selectedText(); }

    void Reinsert(const QString& text)
    {
        QTextCursor cursor = textCursor();
        const int start = cursor.position();
        cursor.insertText(text);
        cursor.setPosition(start);
        cursor.setPosition(start + static_cast<int>(text.size()), QTextCursor::KeepAnchor);
        setTextCursor(cursor);
    }

    QString Admitted(const QString& typed) const { return Fitting(typed); }

    static qsizetype Units(const QString& raw) { return raw.size() + raw.count(LineEnd); }

protected:
    void contextMenuEvent(QContextMenuEvent* event) override { event->accept(); }

    void mousePressEvent(QMouseEvent* event) override
    {
        // A press on selected text would start a drag.
        if ((event->modifiers() & Qt::ShiftModifier) == 0) {
            QTextCursor cursor = textCursor();
            cursor.clearSelection();
            setTextCursor(cursor);
        }
        QPlainTextEdit::mousePressEvent(event);
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        const bool ends = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        const QString typed = event->text();
        const bool types = ends || (!typed.isEmpty() && typed.at(0).unicode() >= ' ');
        if (types && !isReadOnly() && Fitting(ends ? QString(LineEnd) : typed).isEmpty())
            return;
        QPlainTextEdit::keyPressEvent(event);
    }

    void insertFromMimeData(const QMimeData* source) override
    {
        if (!isReadOnly() && source->hasText())
            insertPlainText(Fitting(source->text()));
    }
};

class TextEdit : public EditWidget
{
public:
    TextEdit(DWORD style, bool framed, Changed changed, QWidget* parent) : text(new TextBox(parent))
    {
        text->setFont(DialogFont());
        text->setFrameShape(framed ? QFrame::StyledPanel : QFrame::NoFrame);
        text->setAcceptDrops(false);
        text->viewport()->setAcceptDrops(false);
        text->setTabChangesFocus(false);
        text->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        if ((style & ES_AUTOHSCROLL) != 0)
            text->setLineWrapMode(QPlainTextEdit::NoWrap);
        text->setVerticalScrollBarPolicy((style & WS_VSCROLL) != 0 ? Qt::ScrollBarAlwaysOn
                                                                   : Qt::ScrollBarAlwaysOff);
        text->setHorizontalScrollBarPolicy((style & WS_HSCROLL) != 0 ? Qt::ScrollBarAlwaysOn
                                                                     : Qt::ScrollBarAlwaysOff);
        // The toolkit's own menu of a scroll bar would run a loop of its own.
        text->verticalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
        text->horizontalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
        QTextOption option = text->document()->defaultTextOption();
        option.setAlignment((style & ES_RIGHT) != 0    ? Qt::AlignRight
                            : (style & ES_CENTER) != 0 ? Qt::AlignHCenter
                                                       : Qt::AlignLeft);
        text->document()->setDefaultTextOption(option);
        text->changed = std::move(changed);
        QObject::connect(text, &QPlainTextEdit::textChanged, text,
                         [box = text] { box->TellChange(); });
    }

    QWidget* Widget() override { return text; }
    QWidget* PointerTarget() override { return text->viewport(); }

    std::u16string Text() const override
    {
        QString whole = text->Raw();
        whole.replace(LineEnd, QLatin1String("\r\n"));
        return whole.toStdU16String();
    }

    void SetText(const std::u16string& wanted) override
    {
        text->DropComposing();
        const QSignalBlocker quiet(text);
        text->setPlainText(QString::fromStdU16String(wanted));
        text->moveCursor(QTextCursor::End);
        // Who set a text wants it read from its beginning, wherever the caret is.
        text->verticalScrollBar()->setValue(0);
    }

    std::pair<int, int> Selection() const override
    {
        const QTextCursor cursor = text->textCursor();
        return {UnitOf(cursor.selectionStart()), UnitOf(cursor.selectionEnd())};
    }

    void Select(int anchor, int caret) override
    {
        QTextCursor cursor = text->textCursor();
        cursor.setPosition(PlaceOf(anchor));
        cursor.setPosition(PlaceOf(caret), QTextCursor::KeepAnchor);
        text->setTextCursor(cursor);
    }

    void Replace(const std::u16string& wanted) override
    {
        text->DropComposing();
        text->insertPlainText(text->Fitting(QString::fromStdU16String(wanted)));
        text->ensureCursorVisible();
    }

    void SetLimit(int units) override { text->limit = units; }

    void SetReadOnly(bool on) override
    {
        text->DropComposing();
        text->setReadOnly(on);
        QGuiApplication::inputMethod()->update(Qt::ImEnabled);
        // The caret shows where the keyboard is even so, and keys move it.
        if (on)
            text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        text->viewport()->setBackgroundRole(on ? QPalette::Window : QPalette::Base);
    }

    int LineCount() const override
    {
        int count = 0;
        for (QTextBlock block = text->document()->begin(); block.isValid(); block = block.next()) {
            text->document()->documentLayout()->blockBoundingRect(block); // lays it out
            count += std::max(1, block.layout()->lineCount());
        }
        return count;
    }

    bool IsComposing() const override { return text->IsComposing(); }
    void EndComposing(bool take) override { text->EndComposing(take); }

private:
    // A line's end is one place of the document and two units of the text.
    int UnitOf(int place) const { return place + text->document()->findBlock(place).blockNumber(); }

    int PlaceOf(int unit) const
    {
        int place = 0;
        int counted = 0;
        const QString raw = text->Raw();
        while (place < raw.size() && counted < unit)
            counted += raw.at(place++) == LineEnd ? 2 : 1;
        return place;
    }

    TextBox* text;
};

} // namespace

std::shared_ptr<EditWidget> MakeTextEdit(DWORD style, bool framed, EditWidget::Changed changed,
                                         QWidget* parent)
{
    return std::make_shared<TextEdit>(style, framed, std::move(changed), parent);
}

} // namespace tavrix::platform
