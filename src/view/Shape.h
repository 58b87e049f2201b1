#pragma once

#include <algorithm>
#include <concepts>
#include <functional>
#include <memory>
#include <utility>

#include "view/Geometry.h"
#include "view/Path.h"

namespace valdrix::view {

/// What a shape is: a value that gives an outline for a rectangle.
template <class S>
concept ShapeValue = std::copy_constructible<S> && std::equality_comparable<S> &&
    requires(const S& shape, const Rect& rect) {
  { shape.path(rect) } -> std::same_as<Path>;
};

/// Any shape. One whose type has `animatableData()` and `setAnimatableData(double)` morphs between
/// two of its values; a twentieth of its unit must be too little to be seen.
class Shape {
 public:
  // A shape itself is ruled out first, lest asking whether it can be copied asks this constructor.
  template <class S>
  requires(!std::same_as<S, Shape>) && ShapeValue<S> Shape(S shape)
      : model_(std::make_shared<Model<S>>(std::move(shape))) {}  // NOLINT

  [[nodiscard]] Path path(const Rect& rect) const { return model_->path(rect, nullptr); }
  /// The outline with other animatable data.
  [[nodiscard]] Path path(const Rect& rect, double animatableData) const {
    return model_->path(rect, &animatableData);
  }
  /// What is animated; 0 for a shape that has nothing to animate.
  [[nodiscard]] double animatableData() const { return model_->animatableData(); }

 private:
  struct Concept {
    virtual ~Concept() = default;
    [[nodiscard]] virtual Path path(const Rect& rect, const double* data) const = 0;
    [[nodiscard]] virtual double animatableData() const = 0;
  };
  template <class S>
  struct Model final : Concept {
    static constexpr bool isAnimatable = requires(S shape) {
      { shape.animatableData() } -> std::convertible_to<double>;
      shape.setAnimatableData(0.0);
    };
    explicit Model(S value) : shape(std::move(value)) {}
    [[nodiscard]] Path path(const Rect& rect, const double* data) const override {
      if constexpr (isAnimatable) {
        if (data) {
          S moved = shape;
          moved.setAnimatableData(*data);
          return moved.path(rect);
        }
      }
      return shape.path(rect);
    }
    [[nodiscard]] double animatableData() const override {
      if constexpr (isAnimatable) return shape.animatableData();
      return 0;
    }
    S shape;
  };
  std::shared_ptr<const Concept> model_;
};

/// The whole rectangle.
struct Rectangle {
  [[nodiscard]] Path path(const Rect& rect) const { return Path::rectangle(rect); }
  bool operator==(const Rectangle&) const = default;
};

/// A rectangle with rounded corners. Lengths in points.
struct RoundedRectangle {
  double cornerRadius = 0;
  bool isContinuous = false;
  /// How far inside the rectangle the outline runs, at the same distance all around: half a line's
  /// width for a border that must not reach out.
  double inset = 0;
  [[nodiscard]] Path path(const Rect& rect) const {
    return Path::roundedRectangle(rect.outset(-inset), cornerRadius - inset, isContinuous);
  }
  bool operator==(const RoundedRectangle&) const = default;
};

/// A rectangle whose shorter sides are half circles.
struct Capsule {
  bool isContinuous = false;
  [[nodiscard]] Path path(const Rect& rect) const {
    return Path::roundedRectangle(rect, std::min(rect.width, rect.height) / 2, isContinuous);
  }
  bool operator==(const Capsule&) const = default;
};

/// The largest circle in the middle of the rectangle.
struct Circle {
  [[nodiscard]] Path path(const Rect& rect) const {
    const double side = std::min(rect.width, rect.height);
    return Path::ellipse({rect.midX() - side / 2, rect.midY() - side / 2, side, side});
  }
  bool operator==(const Circle&) const = default;
};

}  // namespace valdrix::view
