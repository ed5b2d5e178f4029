#include <fmt/format.h>

#include "cli/frame.h"
#include "core/base/text.h"
#include "core/shell/archiving.h"

namespace vellumark::cli {
namespace {

constexpr std::size_t kWidth = 16;  // a Database's name fits

Json CountsJson(const MovingCount& count) {
  return {{"Batches", count.batches}, {"LotLines", count.lotLines}, {"Weighings", count.weighings}, {"JobRecords", count.jobs}};
}

Json DatabasesJson(const std::vector<MovingCount>& counts) {
  Json databases = Json::array();
  for (const MovingCount& count : counts) {
    if (databases.empty() || !EqualNoCase(databases.back()["Database"].get<std::string>(), count.database))
      databases.push_back({{"Database", count.database}, {"Years", Json::array()}});
    Json year{{"Year", count.year}};
    year.update(CountsJson(count));
    databases.back()["Years"].push_back(std::move(year));
  }
  return databases;
}

Json PreviewJson(const Session& session, const ArchivePreview& preview) {
  return Json{{"DataFileName", session.DataFileName},
              {"Archive", preview.archive.string()},
              {"Cutoff", preview.cutoff.DateText()},
              {"OldestBatch", preview.oldest ? Json(preview.oldest->DateText()) : Json()},
              {"Records", preview.Records()},
              {"Databases", DatabasesJson(preview.counts)}};
}

std::string PreviewText(const ArchivePreview& preview, std::string_view what) {
  std::string text = fmt::format("{} Batch & Job Records dated {} or before {} {}\n", preview.Records(),
                                 preview.cutoff.DateText(), what, preview.archive.string());
  if (preview.counts.empty()) return text;
  const ListTable table = MovingColumns().Of(preview.counts);
  for (const TableColumn& column : table.columns) text += fmt::format("{:>{}}", column.Caption(), kWidth);
  text += "\n";
  table.read([&](const TableRow& row) {
    for (std::size_t i = 0; i < table.columns.size(); ++i)
      text += fmt::format("{:>{}}", CellText(table.columns[i], row.Cell(i)), kWidth);
    text += "\n";
    return true;
  });
  return text;
}

Result<Json> Preview(Context& context) {
  const ArchivePreview preview = PreviewArchive(context.session);
  Json answer = PreviewJson(context.session, preview);
  answer["Offered"] = DueArchive(context.session).has_value();
  context.text = PreviewText(preview, "would move to");
  return answer;
}

Result<Json> Run(Context& context) {
  const auto moved = ArchiveDataFile(context.session);
  if (!moved) return std::unexpected(moved.error());
  Json answer = PreviewJson(context.session, *moved);
  answer["Verified"] = true;
  context.text = PreviewText(*moved, "have moved to");
  return answer;
}

}  // namespace

void AddArchiveCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "archive", "Old Batches and Job Records in a file of their own: preview, run");

  auto* preview = noun->add_subcommand("preview", "What would move, by Database and year; nothing is changed");
  preview->footer("Batches and Job Records move by their own dates, those of five years ago and earlier.");
  commands.Add(preview, Needs::File, Preview);

  auto* run = noun->add_subcommand("run", "Move it into an archive beside the Data File, and prove it");
  run->footer("The archive is proven to hold what moves before it leaves the Data File. Formulas and stock stay.");
  commands.Add(run, Needs::Writable, Run);
}

}  // namespace vellumark::cli
