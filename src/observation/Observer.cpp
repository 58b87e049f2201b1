#include "observation/Observer.h"

#include <algorithm>

namespace valdrix {

std::shared_ptr<Observer::State>& Observer::tracking() {
  thread_local std::shared_ptr<State> state;
  return state;
}

Observer::Observer(std::function<void()> didChange) : state_(std::make_shared<State>()) {
  state_->didChange = std::move(didChange);
}

Observer::~Observer() { stop(); }

void Observer::stop() { ++state_->generation; }

Observer::Scope::Scope(Observer& observer) : outer_(std::exchange(tracking(), observer.state_)) {
  ++observer.state_->generation;
}

Observer::Scope::~Scope() { tracking() = std::move(outer_); }

void ObserverList::dropStaleEntries() const {
  std::erase_if(entries_, [](const Entry& entry) {
    const auto state = entry.state.lock();
    return !state || state->generation != entry.generation;
  });
}

void ObserverList::registerReader() const {
  const auto& reader = Observer::tracking();
  if (!reader) return;
  const auto known = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.state.lock() == reader; });
  if (known != entries_.end()) {
    known->generation = reader->generation;
    return;
  }
  // Dropping here keeps the list as long as it has readers, also for a value that never changes.
  dropStaleEntries();
  entries_.push_back({reader, reader->generation});
}

void ObserverList::tell() {
  dropStaleEntries();
  // A copy: callbacks read values, which registers readers here, and may end observers.
  const auto readers = entries_;
  for (const auto& entry : readers) {
    const auto state = entry.state.lock();
    if (state && state->generation == entry.generation) state->didChange();
  }
}

}  // namespace valdrix
