#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "view/Geometry.h"

namespace valdrix::sim {

/// The words of one line of a scenario, taken from the left. Words are separated by spaces; one in
/// double quotes may contain them. A word that starts with # begins a comment. All operations throw
/// a `ScenarioError` without a line when the words are not what was asked for.
class ScenarioWords {
 public:
  explicit ScenarioWords(std::string_view line);

  [[nodiscard]] bool isEmpty() const { return next_ == words_.size(); }
  /// The next word; `what` says what it should have been when there is none.
  std::string take(std::string_view what);
  /// Takes the next word if it is `word`.
  bool takeIf(std::string_view word);
  /// One of `choices`, by its index.
  std::size_t takeChoice(std::initializer_list<std::string_view> choices);
  /// A finite decimal number.
  double takeNumber(std::string_view what);
  /// A number from `least` to `most`.
  double takeNumber(std::string_view what, double least, double most);
  unsigned takeInteger(std::string_view what, unsigned least, unsigned most);
  /// A level from 0 to 1.
  float takeLevel();
  view::Point takePoint();
  /// Left, bottom, width and height.
  view::Rect takeRect();
  /// To be called when everything that is understood has been taken.
  void expectEnd() const;

 private:
  std::vector<std::string> words_;
  std::size_t next_ = 0;
};

}  // namespace valdrix::sim
