#include "core/colors/stored_names.h"

#include <fmt/format.h>

#include "core/colors/names.h"

namespace vellumark {

StoredNames::StoredNames(const Session& session, ColorKind kind, std::string_view database)
    : madeFromGuides_(MadeFromGuides(session, database)) {
  Statement row = session.File().Prepare(fmt::format("SELECT Color_Name, RowKey FROM {} WHERE Color_Name IS NOT NULL",
                                                     session.QuotedTable(ColorTable(kind), database)));
  while (row.Step()) rows_.emplace(row.TextView(0), row.Whole(1));
  const TemplateOf guides(session, database);
  if (!guides) return;
  const auto& tables = kind == ColorKind::Mix ? kGuideMixTables : kGuideBasicTables;
  for (std::size_t n = 0; n < tables.size(); ++n) {
    if (!guides->TableExists(tables[n])) continue;
    Statement published = guides->Prepare(
        fmt::format("SELECT Color_Name, {} FROM {} ORDER BY RowKey", BookFields().Columns(), Quoted(tables[n])));
    while (published.Step()) {
      Published entry{n, published.Text(0), {}};
      BookFields().Read(published, 1, entry.book);
      published_.try_emplace(entry.name, entry);
    }
  }
}

std::int64_t StoredNames::KeyOf(std::string_view name) const {
  const auto found = rows_.find(name);
  return found == rows_.end() ? 0 : found->second;
}

const StoredNames::Published* StoredNames::FindPublished(std::string_view name) const {
  if (published_.empty() || name.empty()) return nullptr;
  const auto asItStands = published_.find(name);
  const auto prefixed = published_.find(std::string(kPantonePrefix).append(name));
  if (asItStands == published_.end()) return prefixed == published_.end() ? nullptr : &prefixed->second;
  if (prefixed == published_.end() || asItStands->second.guide <= prefixed->second.guide) return &asItStands->second;
  return &prefixed->second;
}

std::string StoredNames::Of(std::string_view name) const {
  if (!madeFromGuides_ || KeyOf(name) != 0) return std::string(name);
  if (const Published* published = FindPublished(name)) return published->name;
  std::string prefixed = std::string(kPantonePrefix).append(name);
  return KeyOf(prefixed) != 0 ? prefixed : std::string(name);
}

BookData StoredNames::BookOf(std::string_view name) const {
  const Published* published = FindPublished(name);
  return published == nullptr ? BookData{} : published->book;
}

}  // namespace vellumark
