#pragma once

#include <any>
#include <concepts>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "view/Color.h"
#include "view/Font.h"
#include "view/Geometry.h"
#include "view/Shape.h"

namespace valdrix::view {

class Element;
class View;

/// A type that describes a part of the interface: it has `View body() const`, or, when it keeps
/// state of its own, a default-constructible nested `State` and `View body(State&) const`.
///
/// A component's body runs again when a value that it read changes, or when its parent hands in a
/// component that differs; one that can be compared is left alone when it is equal. Its state lives
/// as long as it stays at its place in the tree.
template <class C>
concept StatelessComponent = requires(const C& component) {
  { component.body() } -> std::same_as<View>;
};
template <class C>
concept StatefulComponent = requires(const C& component, typename C::State& state) {
  { component.body(state) } -> std::same_as<View>;
};
template <class C>
concept Component = StatelessComponent<C> || StatefulComponent<C>;

/// A fixed size for a view; a missing side stays the view's own.
struct FrameSize {
  std::optional<double> width{};
  std::optional<double> height{};
  Alignment alignment = Alignment::center;
  bool operator==(const FrameSize&) const = default;
};

/// Bounds for a view's size; a missing bound leaves that side to the view.
struct FrameLimits {
  std::optional<double> minWidth{};
  std::optional<double> maxWidth{};
  std::optional<double> minHeight{};
  std::optional<double> maxHeight{};
  Alignment alignment = Alignment::center;
  bool operator==(const FrameLimits&) const = default;
};

/// A description of a part of the interface: an immutable value, cheap to copy. Modifiers return a
/// new view around this one, so their order matters as written.
class View {
 public:
  /// Shows nothing and takes no room.
  View();
  explicit View(std::shared_ptr<const Element> element) : element_(std::move(element)) {}
  template <Component C>
  View(C component);  // NOLINT(google-explicit-constructor)

  [[nodiscard]] const std::shared_ptr<const Element>& element() const { return element_; }

  [[nodiscard]] View frame(const FrameSize& size) const;
  [[nodiscard]] View frame(const FrameLimits& limits) const;
  /// Takes its ideal size in the given directions, whatever is offered.
  [[nodiscard]] View fixedSize(bool horizontal = true, bool vertical = true) const;
  [[nodiscard]] View padding(const EdgeInsets& insets) const;

  /// From 0 (invisible, and not under the pointer) to 1.
  [[nodiscard]] View opacity(double opacity) const;
  [[nodiscard]] View clipShape(Shape shape) const;
  /// `other` in front of or behind this view, offered this view's size.
  [[nodiscard]] View overlay(View other, Alignment alignment = Alignment::center) const;
  [[nodiscard]] View background(View other, Alignment alignment = Alignment::center) const;

  /// Whether the pointer can reach this view.
  [[nodiscard]] View allowsHitTesting(bool isAllowed) const;
  /// The whole rectangle counts as this view, transparent parts too.
  [[nodiscard]] View contentShape() const;
  /// Told when the pointer comes over this view and when it leaves.
  [[nodiscard]] View onHover(std::function<void(bool isInside)> action) const;
  /// Explains the view under a resting pointer; empty for nothing.
  [[nodiscard]] View help(std::string toolTip) const;

  /// Tells this view from its siblings when their order or number changes.
  [[nodiscard]] View id(std::string identity) const;
  [[nodiscard]] View onAppear(std::function<void()> action) const;
  [[nodiscard]] View onDisappear(std::function<void()> action) const;
  /// Runs `action` with the new value after `value` differs from that of the description before,
  /// and, when `isInitial`, for the first one too.
  template <std::equality_comparable T>
  [[nodiscard]] View onChange(T value, bool isInitial, std::function<void(const T&)> action) const {
    return onChangeOf(
        value,
        [](const std::any& a, const std::any& b) {
          return std::any_cast<const T&>(a) == std::any_cast<const T&>(b);
        },
        isInitial,
        [action = std::move(action)](const std::any& now) {
          action(std::any_cast<const T&>(now));
        });
  }
  /// The locale of all text inside that names none itself, such as "fr_FR".
  [[nodiscard]] View locale(std::string identifier) const;

 private:
  using AnyEqual = bool (*)(const std::any&, const std::any&);
  [[nodiscard]] View onChangeOf(std::any value, AnyEqual isEqual, bool isInitial,
                                std::function<void(const std::any&)> action) const;

  std::shared_ptr<const Element> element_;
};

struct HorizontalStackStyle {
  VerticalAlignment alignment = VerticalAlignment::center;
  double spacing = 0;
};
struct VerticalStackStyle {
  HorizontalAlignment alignment = HorizontalAlignment::center;
  double spacing = 0;
};

/// Children side by side. The least flexible are given room first, the rest share what is left.
[[nodiscard]] View hStack(HorizontalStackStyle style, std::vector<View> children);
/// Children below each other, likewise.
[[nodiscard]] View vStack(VerticalStackStyle style, std::vector<View> children);
/// Children on top of each other, the first at the bottom; as large as the largest.
[[nodiscard]] View zStack(Alignment alignment, std::vector<View> children);
/// Takes the room that is left over in the stack around it, at least `minLength` points.
[[nodiscard]] View spacer(double minLength = 0);

[[nodiscard]] View text(std::string text, TextStyle style, Color color);
/// One of our own symbols, sized by the font; a name that is not known shows nothing. A new name
/// swaps the symbols: the old one shrinks away before the new one grows.
[[nodiscard]] View symbol(std::string name, Font font, Color color);
/// A shape takes all the room that it is offered, and 10 points where nothing is.
[[nodiscard]] View fill(Shape shape, Color color);
/// The line stands centred on the outline.
[[nodiscard]] View stroke(Shape shape, Color color, double lineWidth);

/// A view that can be clicked; without any styling of its own.
[[nodiscard]] View button(std::function<void()> action, View label);
/// Builds its content again every `interval` seconds while it can be seen, and when it comes to be
/// seen after a longer time.
[[nodiscard]] View timeline(double interval, std::function<View()> content);

}  // namespace valdrix::view

#include "view/ComponentNode.h"
