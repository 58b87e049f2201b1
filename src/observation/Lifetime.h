#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace valdrix {

/// Makes blocks that hold their owner weakly. An object keeps a `Lifetime` as its last member and
/// wraps whatever it hands to the platform in `weak`; once the object is gone the block does
/// nothing and answers with a default value. Main thread only.
class Lifetime {
 public:
  Lifetime() = default;
  Lifetime(const Lifetime&) = delete;
  Lifetime& operator=(const Lifetime&) = delete;

  /// `block`, guarded by this lifetime.
  template <class F>
  [[nodiscard]] auto weak(F block) const {
    return [alive = std::weak_ptr<const char>(alive_), block = std::move(block)](auto&&... args) {
      using Result = std::invoke_result_t<const F&, decltype(args)...>;
      if (const auto guard = alive.lock()) return block(std::forward<decltype(args)>(args)...);
      return Result();
    };
  }

 private:
  std::shared_ptr<const char> alive_ = std::make_shared<const char>('\0');
};

}  // namespace valdrix
