#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace valdrix {

/// A reader of observed values that is told when one of them changes.
///
/// `track` runs a block and registers the observer with every `Observed` value that the block
/// reads, in place of those of the run before. From then on each change of one of them calls
/// `didChange`, until `stop` or the observer's end. Main thread only.
class Observer {
 public:
  explicit Observer(std::function<void()> didChange);
  ~Observer();
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  /// Runs `block`, watching what it reads, and returns its result.
  template <class F>
  decltype(auto) track(F&& block) {
    const Scope scope(*this);
    return std::forward<F>(block)();
  }

  /// Forgets everything that was read: no further calls until the next `track`.
  void stop();

 private:
  friend class ObserverList;
  struct State {
    std::function<void()> didChange;
    std::uint64_t generation = 0;
  };
  /// The observer that is tracking now, or none.
  static std::shared_ptr<State>& tracking();

  class Scope {
   public:
    explicit Scope(Observer& observer);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    std::shared_ptr<State> outer_;
  };

  std::shared_ptr<State> state_;
};

/// The readers of one observed value. A detail of `Observed`.
class ObserverList {
 public:
  ObserverList() = default;
  ObserverList(const ObserverList&) = delete;
  ObserverList& operator=(const ObserverList&) = delete;

  /// Registers the observer that is tracking now, if there is one.
  void registerReader() const;

  /// Calls each registered observer once. The list may be gone when this returns: an observer may
  /// end the object that holds the value.
  void tell();

 private:
  struct Entry {
    std::weak_ptr<Observer::State> state;
    std::uint64_t generation;
  };

  void dropStaleEntries() const;

  mutable std::vector<Entry> entries_;
};

}  // namespace valdrix
