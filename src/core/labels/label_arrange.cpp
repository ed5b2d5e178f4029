#include "core/labels/label_arrange.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace vellumark {
namespace {

// The same rule across and down, by the members of an item that it is about.
struct Axis {
  double PlacedItem::*at;
  double PlacedItem::*size;

  double End(const PlacedItem& item) const { return item.*at + item.*size; }
};
constexpr Axis kAcross{&PlacedItem::left, &PlacedItem::width};
constexpr Axis kDown{&PlacedItem::top, &PlacedItem::height};

double Least(std::span<const PlacedItem> items, const Axis& axis) {
  return (*std::ranges::min_element(items, {}, axis.at)).*axis.at;
}

double Most(std::span<const PlacedItem> items, const Axis& axis) {
  double most = axis.End(items.front());
  for (const PlacedItem& item : items) most = std::max(most, axis.End(item));
  return most;
}

enum class Edge { First, Middle, Last };

void Align(std::vector<PlacedItem>& items, const Axis& axis, Edge edge) {
  const double least = Least(items, axis);
  const double most = Most(items, axis);
  for (PlacedItem& item : items) {
    const double room = most - least - item.*axis.size;
    item.*axis.at = least + (edge == Edge::First ? 0 : edge == Edge::Middle ? room / 2 : room);
  }
}

void Distribute(std::vector<PlacedItem>& items, const Axis& axis) {
  if (items.size() < 3) return;
  std::vector<PlacedItem*> order;
  for (PlacedItem& item : items) order.push_back(&item);
  std::ranges::stable_sort(order, {}, [&](const PlacedItem* item) { return item->*axis.at + item->*axis.size / 2; });
  double between = order.back()->*axis.at - axis.End(*order.front());
  for (std::size_t i = 1; i + 1 < order.size(); ++i) between -= order[i]->*axis.size;
  const double gap = between / static_cast<double>(order.size() - 1);
  for (std::size_t i = 1; i + 1 < order.size(); ++i) order[i]->*axis.at = axis.End(*order[i - 1]) + gap;
}

double Kept(double move, std::span<const PlacedItem> items, const Axis& axis, double room) {
  const double back = std::max(0.0, Least(items, axis));
  const double on = std::max(0.0, room - Most(items, axis));
  return std::clamp(move, -back, on);
}

// What is to be added to the move, and the line that is met.
struct Pull {
  double by = 0;
  std::optional<double> line;
};

Pull PullOf(double move, const PlacedItem& held, std::span<const PlacedItem> others, const Axis& axis, double room,
            double grid, double near) {
  Pull best;
  double nearest = near;
  const auto meet = [&](double edge, double line) {
    const double distance = std::abs(line - edge);
    if (distance > nearest || (best.line && distance == nearest)) return;
    nearest = distance;
    best = {line - edge, line};
  };
  const double first = held.*axis.at + move;
  const double last = axis.End(held) + move;
  for (const double edge : {first, last}) {
    meet(edge, 0);
    meet(edge, room);
    for (const PlacedItem& other : others) {
      meet(edge, other.*axis.at);
      meet(edge, axis.End(other));
    }
  }
  if (best.line || grid <= 0) return best;
  const double line = std::round(first / grid) * grid;
  return {line - first, std::nullopt};
}

}  // namespace

std::vector<PlacedItem> Arranged(std::vector<PlacedItem> items, Arrange how) {
  if (items.size() < 2) return items;
  switch (how) {
    case Arrange::Left:
      Align(items, kAcross, Edge::First);
      break;
    case Arrange::Center:
      Align(items, kAcross, Edge::Middle);
      break;
    case Arrange::Right:
      Align(items, kAcross, Edge::Last);
      break;
    case Arrange::Top:
      Align(items, kDown, Edge::First);
      break;
    case Arrange::Middle:
      Align(items, kDown, Edge::Middle);
      break;
    case Arrange::Bottom:
      Align(items, kDown, Edge::Last);
      break;
    case Arrange::AcrossEvenly:
      Distribute(items, kAcross);
      break;
    case Arrange::DownEvenly:
      Distribute(items, kDown);
      break;
  }
  return items;
}

LabelMove KeptInside(LabelMove move, std::span<const PlacedItem> items, double width, double length) {
  if (items.empty()) return {};
  move.across = Kept(move.across, items, kAcross, width);
  move.down = Kept(move.down, items, kDown, length);
  return move;
}

LabelMove Snapped(LabelMove move, const PlacedItem& held, std::span<const PlacedItem> others, double width,
                  double length, double grid, double near) {
  const Pull across = PullOf(move.across, held, others, kAcross, width, grid, near);
  const Pull down = PullOf(move.down, held, others, kDown, length, grid, near);
  move.across += across.by;
  move.down += down.by;
  if (across.line) move.acrossLines.push_back(*across.line);
  if (down.line) move.downLines.push_back(*down.line);
  return move;
}

std::vector<PlacedItem> Moved(std::vector<PlacedItem> items, const LabelMove& move) {
  for (PlacedItem& item : items) {
    item.left += move.across;
    item.top += move.down;
  }
  return items;
}

}  // namespace vellumark
