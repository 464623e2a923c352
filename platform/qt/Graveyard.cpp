#include "platform/qt/Graveyard.h"

#include "platform/qt/Window.h"

#include <QPointer>
#include <QWidget>

#include <vector>

namespace tavrix::platform
{
namespace
{

struct Graves {
    // A widget may go with its parent before its own turn comes.
    std::vector<QPointer<QWidget>> widgets;
    std::vector<std::unique_ptr<Window>> records;
};

// Never destroyed: the toolkit lives as long as the process.
Graves& TheGraves()
{
    static Graves& graves = *new Graves;
    return graves;
}

} // namespace

void BuryWidget(QWidget* widget)
{
    if (widget != nullptr)
        TheGraves().widgets.emplace_back(widget);
}

void BuryRecord(std::unique_ptr<Window> window)
{
    TheGraves().records.push_back(std::move(window));
}

void EmptyGraveyard()
{
    Graves& graves = TheGraves();
    if (graves.widgets.empty() && graves.records.empty())
        return;
    // Widgets first: their going may still look at a record.
    const auto widgets = std::move(graves.widgets);
    graves.widgets.clear();
    for (const QPointer<QWidget>& widget : widgets)
        delete widget.data();
    graves.records.clear();
}

} // namespace tavrix::platform
