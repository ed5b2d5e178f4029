#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/colors/guides.h"
#include "core/colors/normalise.h"
#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// How a colour looks on a screen, each part 0 to 255.
struct Ink {
  int Red = 0;
  int Green = 0;
  int Blue = 0;
  bool estimated = false;  ///< worked out of the inks that it is mixed of
  bool operator==(const Ink&) const = default;
};

/// The swatch that a guide or a person gave to a colour. Zeros outside a guide are none: a person's black is stored as
/// 1, 1, 1.
std::optional<Ink> InkOf(const BookData& book);

/// The ink of a colour of a Database, of the current one when it is empty: its swatch, or for a formula without one
/// what its ingredients come to. Nothing for a colour that is not there and one of which too little is known.
std::optional<Ink> InkOf(const Session& session, ColorKind kind, std::string_view name,
                         const std::string& database = {});

/// One ingredient of a mix: how much of it, and its ink where it is known.
struct InkPart {
  std::optional<Ink> ink;
  double amount = 0;
};
/// What a mix looks like, marked as estimated: absorption and scattering of its inks added up, channel by channel
/// (Kubelka and Munk). What has no ink counts as clear; nothing when that is more than half.
std::optional<Ink> EstimateInk(std::span<const InkPart> parts);
/// That of a recipe of a Database's Basic Colors.
std::optional<Ink> EstimateInk(const Session& session, const Recipe& recipe, const std::string& database = {});

}  // namespace vellumark
