#pragma once

#include <vector>

namespace valdrix::bench {

/// Measurements of one thing.
class Samples {
 public:
  void add(double value) { values_.push_back(value); }
  [[nodiscard]] std::size_t count() const { return values_.size(); }
  /// The value that `share` (0 to 1) of the samples do not exceed; 0 without samples.
  [[nodiscard]] double quantile(double share) const;
  [[nodiscard]] double median() const { return quantile(0.5); }

 private:
  std::vector<double> values_;
};

}  // namespace valdrix::bench
