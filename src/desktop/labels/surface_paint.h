#pragma once

namespace vellumark::desktop::surface {

// Distances of the design surface, in pixels.
inline constexpr int kRuler = 24;
inline constexpr int kAround = 24;  ///< beside the label

}  // namespace vellumark::desktop::surface
