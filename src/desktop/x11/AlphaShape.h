#pragma once

#include <vector>

#include <QImage>
#include <QRect>

namespace valdrix::desktop {

/// The outline of what a picture shows, as rectangles: for a window that must be cut out because
/// nothing blends its transparent pixels with what lies below. Remembers the rows, so that a small
/// change of the picture costs little.
class AlphaShape {
 public:
  /// Reads the rows of `image` (32 bits a pixel, alpha in the highest byte) from `top` to `bottom`,
  /// the latter not included, again. Whether the outline is different now.
  bool update(const QImage& image, int top, int bottom);

  /// Sorted by y and then x, without overlaps.
  [[nodiscard]] std::vector<QRect> rectangles() const;

 private:
  struct Span {
    int left;
    int right;  ///< not included
    bool operator==(const Span&) const = default;
  };
  using Row = std::vector<Span>;
  [[nodiscard]] static Row read(const QImage& image, int y);

  std::vector<Row> rows_;
};

}  // namespace valdrix::desktop
