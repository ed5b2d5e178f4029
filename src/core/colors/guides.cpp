#include "core/colors/guides.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/colors/guide_database.h"
#include "core/colors/names.h"
#include "core/datafile/databases.h"

namespace vellumark {
namespace {

struct TemplateHit {
  std::string name;
  BookData book;
};

std::optional<TemplateHit> FindInTemplate(const Session& session, const std::array<std::string_view, 5>& tables,
                                          std::string_view name, std::string_view database) {
  if (TrimView(name).empty()) return std::nullopt;
  const TemplateOf guides(session, database);
  if (!guides) return std::nullopt;
  for (const std::string_view table : tables) {
    if (!guides->TableExists(table)) continue;
    Statement row =
        guides->Prepare(fmt::format("SELECT Color_Name, {} FROM {} WHERE Color_Name = ?1 OR Color_Name = ?2 LIMIT 1",
                                    BookFields().Columns(), Quoted(table)));
    row.Bind(1, name).Bind(2, std::string(kPantonePrefix).append(name));
    if (!row.Step()) continue;
    TemplateHit hit{row.Text(0), {}};
    BookFields().Read(row, 1, hit.book);
    return hit;
  }
  return std::nullopt;
}

std::string NameOf(const std::optional<TemplateHit>& hit) {
  return hit ? hit->name : std::string();
}

BookData BookOf(const std::optional<TemplateHit>& hit) {
  return hit ? hit->book : BookData{};
}

const std::array<std::string_view, 5>& TablesOf(ColorKind kind) {
  return kind == ColorKind::Basic ? kGuideBasicTables : kGuideMixTables;
}

bool IsOnFile(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  const std::string table = session.QuotedTable(ColorTable(kind), database);
  return !session.File().Scalar("SELECT 1 FROM " + table + " WHERE Color_Name = ? LIMIT 1", {name}).IsNull();
}

bool IsCurrent(const Session& session, std::string_view database) {
  return database.empty() || EqualNoCase(database, session.CurrentDatabase);
}

}  // namespace

bool MadeFromGuides(const Session& session, std::string_view database) {
  if (IsCurrent(session, database)) return !session.TemplateFile.empty();
  return !ReadDatabaseInfo(session.File(), database).templateFile.empty();
}

TemplateOf::TemplateOf(const Session& session, std::string_view database) {
  if (!MadeFromGuides(session, database)) return;
  file_ = session.templateDB.get();
  if (file_ != nullptr || IsCurrent(session, database)) return;
  const std::filesystem::path path = TemplatePath(session);
  if (path.empty()) return;
  own_ = Database::Open(path, OpenMode::ReadOnly);
  file_ = own_.get();
}

const FieldMap<BookData>& BookFields() {
  static const FieldMap<BookData> fields = FieldMap<BookData>()
                                               .Add("Color_Guide", &BookData::Color_Guide)
                                               .Add("Page", &BookData::Page, {.nullKeeps = true})
                                               .Add("Row", &BookData::Row)
                                               .Add("Red", &BookData::Red)
                                               .Add("Green", &BookData::Green)
                                               .Add("Blue", &BookData::Blue);
  return fields;
}

std::string GetTemplateBasicName(const Session& session, std::string_view name, std::string_view database) {
  return NameOf(FindInTemplate(session, kGuideBasicTables, name, database));
}

std::string GetTemplateMixName(const Session& session, std::string_view name, std::string_view database) {
  return NameOf(FindInTemplate(session, kGuideMixTables, name, database));
}

bool IsPantoneBookBasic(const Session& session, std::string_view name, std::string_view database) {
  return FindInTemplate(session, kGuideBasicTables, name, database).has_value();
}

bool IsPantoneBookMix(const Session& session, std::string_view name, std::string_view database) {
  return FindInTemplate(session, kGuideMixTables, name, database).has_value();
}

std::string StoredName(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  if (IsOnFile(session, kind, name, database) || !MadeFromGuides(session, database)) return std::string(name);
  std::string published = NameOf(FindInTemplate(session, TablesOf(kind), name, database));
  if (!published.empty()) return published;
  std::string prefixed = std::string(kPantonePrefix).append(name);
  return IsOnFile(session, kind, prefixed, database) ? prefixed : std::string(name);
}

BookData BookDataOfBasic(const Session& session, std::string_view name, std::string_view database) {
  return BookOf(FindInTemplate(session, kGuideBasicTables, name, database));
}

BookData BookDataOfMix(const Session& session, std::string_view name, std::string_view database) {
  return BookOf(FindInTemplate(session, kGuideMixTables, name, database));
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
