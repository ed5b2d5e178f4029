#pragma once

#include <span>
#include <string>
#include <vector>

namespace vellumark {

// Moving and arranging what stands on a label. All lengths are twips from the label's upper left corner.

struct PlacedItem {
  std::string name;
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;

  double Right() const { return left + width; }
  double Bottom() const { return top + height; }
};

enum class Arrange { Left, Center, Right, Top, Middle, Bottom, AcrossEvenly, DownEvenly };
/// Aligned with the edge or the middle of all of them together; evenly: the outer two stay, and the gaps between become
/// equal.
std::vector<PlacedItem> Arranged(std::vector<PlacedItem> items, Arrange how);

/// A move of several items at once.
struct LabelMove {
  double across = 0;
  double down = 0;
  /// Lines that the move has snapped to, for the eye: places across, and down.
  std::vector<double> acrossLines{};
  std::vector<double> downLines{};
};
/// The move cut where it would carry an item over an edge of the label; one that is out already may come nearer.
LabelMove KeptInside(LabelMove move, std::span<const PlacedItem> items, double width, double length);
/// The move of `held` changed by up to `near`, so that an edge of it meets an edge of one of the others or of the
/// label, or else its upper left corner the grid.
LabelMove Snapped(LabelMove move, const PlacedItem& held, std::span<const PlacedItem> others, double width,
                  double length, double grid, double near);
std::vector<PlacedItem> Moved(std::vector<PlacedItem> items, const LabelMove& move);

}  // namespace vellumark
