#include "platform/qt/ListControl.h"

#include <algorithm>

namespace tavrix::platform
{
namespace
{

struct Entry {
    LPARAM tag;
    int row;
};

/// Whether the program left the control and its rows alone.
class Watch
{
public:
    Watch(HWND handle, size_t seen) : list(handle), generation(seen) {}
    bool Holds() const
    {
        Window* window = FindWindowRecord(list);
        return window != nullptr && ListStateOf(*window).model.Generation() == generation;
    }

private:
    HWND list;
    size_t generation;
};

/// Merges the sorted runs of `length` in pairs. False when the program interfered. Written out here
/// since the library's sort may leave its bounds when a compare function contradicts itself.
bool MergeRuns(const std::vector<Entry>& from, std::vector<Entry>& to, size_t length,
               PFNLVCOMPARE compare, LPARAM parameter, const Watch& watch)
{
    const size_t count = from.size();
    for (size_t start = 0; start < count; start += 2 * length) {
        size_t left = start;
        size_t right = std::min(start + length, count);
        const size_t leftEnd = right;
        const size_t rightEnd = std::min(start + 2 * length, count);
        for (size_t out = start; out < rightEnd; ++out) {
            bool takeRight = left == leftEnd;
            if (!takeRight && right < rightEnd) {
                takeRight = compare(from[left].tag, from[right].tag, parameter) > 0;
                if (!watch.Holds())
                    return false;
            }
            to[out] = from[takeRight ? right++ : left++];
        }
    }
    return true;
}

} // namespace

LRESULT SortList(HWND list, WPARAM parameter, PFNLVCOMPARE compare)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr || compare == nullptr)
        return FALSE;
    ListModel& model = ListStateOf(*window).model;
    std::vector<Entry> entries;
    for (int row = 0; row < model.RowCount(); ++row)
        entries.push_back({model.Tag(row), row});
    std::vector<Entry> other(entries.size());

    model.IndexTags(true);
    const Watch watch(list, model.Generation());
    for (size_t length = 1; length < entries.size(); length *= 2) {
        if (!MergeRuns(entries, other, length, compare, static_cast<LPARAM>(parameter), watch))
            return FALSE;
        entries.swap(other);
    }
    std::vector<int> order;
    for (const Entry& entry : entries)
        order.push_back(entry.row);
    window = FindWindowRecord(list);
    ListState& state = ListStateOf(*window);
    const auto anchor = std::find(order.begin(), order.end(), state.anchor);
    state.anchor = anchor != order.end() ? static_cast<int>(anchor - order.begin()) : -1;
    state.model.Reorder(order);
    ListWidgetOf(*window).Renew();
    return TRUE;
}

} // namespace tavrix::platform
