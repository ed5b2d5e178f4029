#include "core/colors/guides.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/datafile/databases.h"

namespace vellumark {
namespace {

struct TemplateHit {
  std::string name;
  BookData book;
};

std::optional<TemplateHit> FindInTemplate(const Session& session, const std::array<std::string_view, 5>& tables,
                                          std::string_view name) {
  if (!session.templateDB || TrimView(name).empty()) return std::nullopt;
  for (const std::string_view table : tables) {
    if (!session.templateDB->TableExists(table)) continue;
    Statement row = session.templateDB->Prepare(fmt::format(
        "SELECT Color_Name, {} FROM {} WHERE Color_Name = ?1 OR Color_Name = ?2 LIMIT 1", kBookFields, Quoted(table)));
    row.Bind(1, name).Bind(2, std::string(kPantonePrefix).append(name));
    if (row.Step()) return TemplateHit{row.Text(0), ReadBookData(row, 1)};
  }
  return std::nullopt;
}

bool MadeFromGuides(const Session& session, std::string_view database) {
  if (database.empty() || EqualNoCase(database, session.CurrentDatabase)) return !session.TemplateFile.empty();
  return !ReadDatabaseInfo(session.File(), database).templateFile.empty();
}

BookData BookDataOf(const Session& session, const std::array<std::string_view, 5>& tables, std::string_view name,
                    std::string_view database) {
  if (!MadeFromGuides(session, database)) return {};
  const auto hit = FindInTemplate(session, tables, name);
  return hit ? hit->book : BookData{};
}

}  // namespace

BookData ReadBookData(const Statement& row, int column) {
  BookData book;
  book.Color_Guide = row.Text(column);
  if (!row.IsNull(column + 1)) book.Page = row.Text(column + 1);
  book.Row = static_cast<int>(row.Whole(column + 2));
  book.Red = static_cast<int>(row.Whole(column + 3));
  book.Green = static_cast<int>(row.Whole(column + 4));
  book.Blue = static_cast<int>(row.Whole(column + 5));
  return book;
}

std::string GetTemplateBasicName(const Session& session, std::string_view name) {
  const auto hit = FindInTemplate(session, kGuideBasicTables, name);
  return hit ? hit->name : std::string();
}

std::string GetTemplateMixName(const Session& session, std::string_view name) {
  const auto hit = FindInTemplate(session, kGuideMixTables, name);
  return hit ? hit->name : std::string();
}

bool IsPantoneBookBasic(const Session& session, std::string_view name, std::string_view database) {
  return MadeFromGuides(session, database) && FindInTemplate(session, kGuideBasicTables, name).has_value();
}

bool IsPantoneBookMix(const Session& session, std::string_view name, std::string_view database) {
  return MadeFromGuides(session, database) && FindInTemplate(session, kGuideMixTables, name).has_value();
}

BookData BookDataOfBasic(const Session& session, std::string_view name, std::string_view database) {
  return BookDataOf(session, kGuideBasicTables, name, database);
}

BookData BookDataOfMix(const Session& session, std::string_view name, std::string_view database) {
  return BookDataOf(session, kGuideMixTables, name, database);
}

std::string GuideCaption(std::string_view colorName, const BookData& book) {
  if (FindNoCase(colorName, "PANTONE") == std::string_view::npos || book.Page == "0") return {};
  const std::string_view guide = book.Color_Guide;
  if (FindNoCase(guide, "GoeGuide") != std::string_view::npos) return std::string(guide) + "(TM)";
  constexpr std::string_view kPastels = "PASTELS";
  if (const std::size_t at = FindNoCase(guide, kPastels); at != std::string_view::npos) {
    const std::size_t cut = at + kPastels.size();
    return Trim(guide.substr(0, cut)) + " && " + Trim(guide.substr(cut));
  }
  return std::string(guide);
}

}  // namespace vellumark
