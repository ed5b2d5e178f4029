#include "core/colors/formula_notes.h"

#include <fmt/format.h>

#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr std::size_t kHyphens = 60;

}  // namespace

std::string IngredientNotes(const Session& session, const std::vector<std::string>& ingredients) {
  std::string text;
  for (const std::string& name : ingredients) {
    const auto basic = ReadBasic(session, name);
    if (!basic) continue;
    const std::string notes = TrimmedNotes(basic->Notes);
    if (notes.empty()) continue;
    text +=
        fmt::format("{}{}\n{}\n{}", text.empty() ? "" : "\n\n", basic->Color_Name, std::string(kHyphens, '-'), notes);
  }
  return text;
}

std::string BatchNote::Number() const {
  return fmt::format("{:06}", BatchNo);
}

std::vector<BatchNote> BatchNotes(const Session& session, std::string_view colorName) {
  Statement batch = session.File().Prepare(
      fmt::format("SELECT BatchNo, Date_Entered, Notes FROM {} WHERE Color_Name = ? ORDER BY Date_Entered, BatchNo",
                  session.QuotedTable(schema::Batch)));
  batch.Bind(1, colorName);
  std::vector<BatchNote> noted;
  while (batch.Step())
    if (std::string notes = TrimmedNotes(batch.Text(2)); !notes.empty())
      noted.push_back({static_cast<std::int32_t>(batch.Whole(0)), batch.Date(1), std::move(notes)});
  return noted;
}

}  // namespace vellumark
