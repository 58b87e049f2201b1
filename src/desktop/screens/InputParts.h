#pragma once

#include <optional>

#include <QList>
#include <QRect>

namespace valdrix::desktop {

/// The rectangles that take the pointer, in pixels: `rectangle`, but for one pixel, the exception,
/// that is otherwise than the rest. One inside is left out, one outside is added; that is how what
/// changes under a resting pointer waits for its next motion.
[[nodiscard]] QList<QRect> inputParts(const QRect& rectangle, std::optional<QPoint> exception);

}  // namespace valdrix::desktop
