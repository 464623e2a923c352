// The file tree of this process, and its end.

#include "platform/core/FileTree.h"

#include <atomic>
#include <unistd.h>

namespace tavrix::platform
{

namespace
{

struct Current {
    std::mutex lock;
    std::shared_ptr<FileTree> tree;
    std::atomic<pid_t> maker{0}; // the process that made the tree
};

Current& TheCurrent()
{
    static Current& current = *new Current;
    return current;
}

/// Runs when the process ends, behind the destructors of every static object of the program, which
/// may still delete their files in \\Temp.
[[gnu::destructor]] void LeaveAtEnd()
{
    Current& current = TheCurrent();
    // A forked child leaves its parent's folders alone, and may have inherited the lock in use.
    if (current.maker != getpid())
        return;
    const std::lock_guard guard(current.lock);
    current.tree->Leave();
}

} // namespace

std::shared_ptr<FileTree> CurrentTree()
{
    Current& current = TheCurrent();
    const std::lock_guard guard(current.lock);
    if (current.tree == nullptr) {
        current.tree = std::make_shared<FileTree>(ReadSurroundings());
        current.maker = getpid();
    }
    return current.tree;
}

void ReplaceTree(const Surroundings& surroundings)
{
    Current& current = TheCurrent();
    auto tree = std::make_shared<FileTree>(surroundings);
    const std::lock_guard guard(current.lock);
    current.tree.swap(tree);
    current.maker = getpid();
}

} // namespace tavrix::platform
