#include "core/colors/ink.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/colors/formulas.h"
#include "core/datafile/engine.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

// No print is blacker: a reflectance of nothing would hide all other inks.
constexpr double kBlackest = 0.03;

// Of a part of an sRGB colour the light that comes back, and the other way round.
double Reflectance(int part) {
  const double value = part / 255.0;
  const double light = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  return std::clamp(light, kBlackest, 1.0);
}
int PartOf(double light) {
  const double value = light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
  return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

double Absorption(double reflectance) {
  return (1 - reflectance) * (1 - reflectance) / (2 * reflectance);
}
double ReflectanceOf(double absorption) {
  return 1 + absorption - std::sqrt(absorption * absorption + 2 * absorption);
}

// Read of a row: the guide decides whether zeros are black.
std::optional<Ink> Swatch(const Session& session, ColorKind kind, std::string_view name, const std::string& database,
                          bool& isThere) {
  Statement row = session.File().Prepare(
      fmt::format("SELECT Color_Guide, Red, Green, Blue FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                  session.QuotedTable(ColorTable(kind), database)));
  row.Bind(1, name);
  isThere = row.Step();
  if (!isThere) return std::nullopt;
  const auto part = [&](int column) { return static_cast<int>(row.Whole(column)); };
  return InkOf(
      BookData{.Color_Guide = std::string(row.TextView(0)), .Red = part(1), .Green = part(2), .Blue = part(3)});
}

}  // namespace

std::optional<Ink> InkOf(const BookData& book) {
  if (!book.HasSwatch()) return std::nullopt;
  return Ink{book.Red, book.Green, book.Blue};
}

std::optional<Ink> InkOf(const Session& session, ColorKind kind, std::string_view name, const std::string& database) {
  // A list that is painted once more while its file closes.
  if (!session.DataFileDB || (database.empty() && session.CurrentDatabase.empty())) return std::nullopt;
  bool isThere = false;
  const auto own = Swatch(session, kind, name, database, isThere);
  if (own || !isThere || kind == ColorKind::Basic) return own;
  const auto mix = ReadMix(session, name, database);
  return mix ? EstimateInk(session, mix->Ingredients(), database) : std::nullopt;
}

std::optional<Ink> EstimateInk(const Session& session, const Recipe& recipe, const std::string& database) {
  std::vector<InkPart> parts;
  for (const Ingredient& line : recipe)
    parts.push_back({InkOf(session, ColorKind::Basic, line.name, database), line.amount});
  return EstimateInk(parts);
}

std::optional<Ink> EstimateInk(std::span<const InkPart> parts) {
  double all = 0, known = 0, red = 0, green = 0, blue = 0;
  for (const InkPart& part : parts) {
    if (!(part.amount > 0)) continue;
    all += part.amount;
    if (!part.ink) continue;
    known += part.amount;
    red += part.amount * Absorption(Reflectance(part.ink->Red));
    green += part.amount * Absorption(Reflectance(part.ink->Green));
    blue += part.amount * Absorption(Reflectance(part.ink->Blue));
  }
  if (known <= 0 || known * 2 < all) return std::nullopt;
  const auto channel = [known](double absorbed) { return PartOf(ReflectanceOf(absorbed / known)); };
  return Ink{channel(red), channel(green), channel(blue), true};
}

}  // namespace vellumark
