// A queue from one thread to another.
#ifndef QV_TOOLS_QVTOOL_CHANNEL_H
#define QV_TOOLS_QVTOOL_CHANNEL_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace qvtool {

template <class Item>
class Channel {
 public:
  // Holds so many items at most.
  explicit Channel(std::size_t room) : room_(room) {}

  // Waits for room. False when nobody takes items any more.
  bool Push(Item item) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return items_.size() < room_ || isClosed_; });
    if (isClosed_) return false;
    items_.push_back(std::move(item));
    changed_.notify_all();
    return true;
  }

  // Waits for an item. None when no more will come.
  std::optional<Item> Pop() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !items_.empty() || hasEnded_; });
    if (items_.empty()) return {};
    std::optional<Item> item(std::move(items_.front()));
    items_.pop_front();
    changed_.notify_all();
    return item;
  }

  // Of the side that pushes: no more items will come.
  void End() {
    const std::lock_guard lock(mutex_);
    hasEnded_ = true;
    changed_.notify_all();
  }

  // Of the side that pops: no more items are taken.
  void Close() {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> items_;
  std::size_t room_;
  bool hasEnded_ = false, isClosed_ = false;
};

}  // namespace qvtool

#endif
