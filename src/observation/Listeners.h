#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "observation/Token.h"

namespace valdrix {

/// Blocks that want to be called when something happens. Tokens may outlive the list, and a block
/// may end any registration, its own included, or add new ones, which are not called in the same
/// round. Main thread only.
template <class... Args>
class Listeners {
 public:
  using Block = std::function<void(Args...)>;

  /// Calls `block` with every `notify` until the token ends.
  [[nodiscard]] Token add(Block block) {
    const auto id = entries_->nextId++;
    entries_->list.push_back({id, std::make_shared<Block>(std::move(block))});
    return Token([entries = std::weak_ptr<Entries>(entries_), id] {
      if (const auto alive = entries.lock())
        std::erase_if(alive->list, [id](const Entry& entry) { return entry.id == id; });
    });
  }

  /// Calls all blocks in the order of their registration.
  void notify(Args... args) const {
    const auto entries = entries_;
    for (const auto& called : std::vector<Entry>(entries->list)) {
      const bool isStillThere =
          std::any_of(entries->list.begin(), entries->list.end(),
                      [&](const Entry& entry) { return entry.id == called.id; });
      if (isStillThere) (*called.block)(args...);
    }
  }

  [[nodiscard]] bool isEmpty() const { return entries_->list.empty(); }

 private:
  struct Entry {
    std::uint64_t id;
    std::shared_ptr<Block> block;
  };
  struct Entries {
    std::uint64_t nextId = 1;
    std::vector<Entry> list;
  };
  std::shared_ptr<Entries> entries_ = std::make_shared<Entries>();
};

}  // namespace valdrix
