#include "core/exchange/formula_export.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/exchange/formula_writer.h"
#include "core/exchange/text_file.h"
#include "core/session/acts.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Export Formulas";
constexpr int kSlots = static_cast<int>(schema::kIngredientSlots);
// A file with a column for each Basic Color grows by formulas times Basic Colors: so many cells are some hundred MB.
constexpr std::size_t kMostHeaderCells = 50'000'000;

struct Exported {
  std::string name;
  std::string code;
  Recipe recipe;
};

/// Reads of the formulas of a Database what goes out.
class ExportReader {
 public:
  ExportReader(const Session& session, const FormulaSelection& selection)
      : session_(session), selection_(selection), table_(session.QuotedTable(schema::Mix, selection.database)) {}

  /// The condition of the range, with its two days bound.
  Statement OfRange(std::string_view columns, std::string_view order) const {
    const std::string_view date = selection_.by == FormulaDate::Entered ? "Date_Entered" : "LastModified";
    std::string where;
    if (selection_.from) where = fmt::format(" WHERE {} >= ?1", date);
    if (selection_.to) where += fmt::format(" {} {} < ?2", where.empty() ? "WHERE" : "AND", date);
    Statement rows = session_.File().Prepare(fmt::format("SELECT {} FROM {}{} {}", columns, table_, where, order));
    if (selection_.from) rows.Bind(1, selection_.from->Midnight().ToText());
    if (selection_.to) rows.Bind(2, DateTime::FromDayNumber(selection_.to->DayNumber() + 1).ToText());
    return rows;
  }

  Statement Rows() const { return OfRange(Columns(), "ORDER BY Color_Name, RowKey"); }

  /// The formula that a person calls by this: by its name, without "PANTONE " before it, by its code.
  std::optional<Exported> Called(std::string_view typed) const {
    const std::string book = std::string(kPantonePrefix).append(typed);
    for (const auto& [field, text] :
         {std::pair{"Color_Name", std::string(typed)}, {"Color_Name", book}, {"Color_Code", std::string(typed)}}) {
      Statement row = session_.File().Prepare(
          fmt::format("SELECT {} FROM {} WHERE {} = ? ORDER BY Color_Name, RowKey LIMIT 1", Columns(), table_, field));
      row.Bind(1, text);
      Exported formula;
      if (!text.empty() && row.Step()) {
        Read(row, formula);
        return formula;
      }
    }
    return std::nullopt;
  }

  // A line that shows as nothing weighs nothing, and no file may bring it in.
  static void Read(const Statement& row, Exported& formula) {
    formula.name = row.TextView(0);
    formula.code = row.TextView(1);
    std::size_t count = 0;
    for (int n = 0; n < kSlots; ++n) {
      const std::string_view name = row.TextView(2 + 2 * n);
      if (name.empty()) break;
      const float amount = row.Single(3 + 2 * n);
      if (ShownAmount(amount) <= 0) continue;
      if (formula.recipe.size() == count) formula.recipe.emplace_back();
      formula.recipe[count].name = name;
      formula.recipe[count++].amount = double{amount};
    }
    formula.recipe.resize(count);
  }

 private:
  static const std::string& Columns() {
    static const std::string columns = [] {
      std::string text = "Color_Name, Color_Code";
      for (int n = 0; n < kSlots; ++n) text += fmt::format(", BC{0}, BQ{0}", n);
      return text;
    }();
    return columns;
  }

  const Session& session_;
  const FormulaSelection& selection_;
  std::string table_;
};

Result<void> CheckSelection(const Session& session, const FormulaSelection& selection) {
  if (!selection.database.empty() && std::ranges::none_of(session.databaseList, [&](const std::string& name) {
        return EqualNoCase(name, selection.database);
      }))
    return Refuse(std::string(kTitle), fmt::format("There is no Database {}.", selection.database), "Database");
  if (selection.from && selection.to && selection.to->DayNumber() < selection.from->DayNumber())
    return Refuse("Invalid Date", "Please enter a valid date.", "To");
  return {};
}

std::vector<SourceColor> BasicColumns(const Session& session, const std::string& database) {
  Statement rows = session.File().Prepare(fmt::format("SELECT Color_Name, Color_Code FROM {} ORDER BY Color_Name ASC",
                                                      session.QuotedTable(schema::Basic, database)));
  std::vector<SourceColor> basics;
  while (rows.Step()) {
    SourceColor& basic = basics.emplace_back();
    basic.kind = ColorKind::Basic;
    basic.name = rows.Text(0);
    basic.code = rows.Text(1);
  }
  return basics;
}

/// Writes what comes into the text of the file.
class Exporting {
 public:
  Exporting(Session& session, FormulaFormat format, const FormulaSelection& selection)
      : session_(session), format_(format), selection_(selection), reader_(session, selection) {
    const bool columns = format >= FormulaFormat::Header2;
    if (columns) basics_ = BasicColumns(session, selection.database);
    const std::string& database = selection.database.empty() ? session.CurrentDatabase : selection.database;
    text_.emplace(format, database, basics_);
    report.lost = WhatIsLost(format);
  }

  Result<void> Run() { return selection_.names.empty() ? OfRange() : ByName(); }

  const std::string& Text() const { return text_->Text(); }

  FormulaExport report;

 private:
  Result<void> ByName() {
    if (auto fits = CheckCells(selection_.names.size()); !fits) return fits;
    ProgressRun progress(session_.progress, "Exporting Formulas ...");
    for (std::size_t n = 0; n < selection_.names.size(); ++n) {
      const std::string& name = selection_.names[n];
      const auto formula = reader_.Called(name);
      if (!formula)
        return Refuse("Color Not Found",
                      fmt::format("The Master Formula {} was not found in the {} database.", name,
                                  selection_.database.empty() ? session_.CurrentDatabase : selection_.database),
                      "Color_Name");
      if (auto taken = Take(*formula); !taken) return taken;
      if (auto going = GoOn(progress, n + 1, selection_.names.size()); !going) return going;
    }
    return Finish();
  }

  Result<void> OfRange() {
    ProgressRun progress(session_.progress, "Exporting Formulas ...");
    std::size_t all = 0;
    {
      Statement count = reader_.OfRange("COUNT(*)", "");
      if (count.Step()) all = static_cast<std::size_t>(count.Whole(0));
    }
    if (auto fits = CheckCells(all); !fits) return fits;
    Statement rows = reader_.Rows();
    Exported formula;
    for (std::size_t done = 1; rows.Step(); ++done) {
      ExportReader::Read(rows, formula);
      if (auto taken = Take(formula); !taken) return taken;
      if (auto going = GoOn(progress, done, all); !going) return going;
    }
    return Finish();
  }

  Result<void> GoOn(ProgressRun& progress, std::size_t done, std::size_t all) {
    if (done % 256 != 0) return {};
    progress.Step(done, all);
    if (session_.progress.Cancelled())
      return Refuse(std::string(kTitle), "The export was cancelled. No file was written.");
    return {};
  }

  Result<void> CheckCells(std::size_t formulas) const {
    const std::size_t cells = (formulas + 2) * (basics_.size() + 2);
    if (basics_.empty() || cells <= kMostHeaderCells) return {};
    return Refuse(std::string(kTitle),
                  fmt::format("{} formulas by {} Basic Colors would make a file of {} cells; it may have {}.\n\nChoose "
                              "fewer formulas, or a format that has no column for each Basic Color.",
                              formulas, basics_.size(), cells, kMostHeaderCells),
                  "Format");
  }

  Result<void> Take(const Exported& formula) {
    if (formula.recipe.empty()) return {};
    bool holds = CanHoldName(format_, formula.name);
    for (const Ingredient& line : formula.recipe) holds &= CanHoldName(format_, line.name);
    if (!holds) {
      unheld_.push_back(formula.name);
      return {};
    }
    std::string why = text_->Add(formula.name, formula.code, formula.recipe);
    if (!why.empty()) {
      report.left.emplace_back(formula.name, std::move(why));
    } else {
      ++report.formulas;
    }
    return {};
  }

  Result<void> Finish() {
    if (!unheld_.empty())
      return Refuse(std::string(kTitle),
                    "A .rez file parts its fields by the # character, so that no name in it may hold one. Rename these "
                    "formulas or their ingredients, or choose another format:\n\n" +
                        NameLines(unheld_),
                    "Format");
    if (report.formulas > 0) return {};
    if (!report.left.empty())
      return Refuse(std::string(kTitle), fmt::format("{}: {}", report.left[0].first, report.left[0].second), "Format");
    return Refuse("No Formulas Selected", "No Master Formulas selected for export.");
  }

  Session& session_;
  FormulaFormat format_;
  const FormulaSelection& selection_;
  ExportReader reader_;
  std::vector<SourceColor> basics_;
  std::optional<FormulaFileText> text_;
  std::vector<std::string> unheld_;
};

}  // namespace

Result<std::vector<std::string>> FormulasOfRange(const Session& session, const FormulaSelection& selection) {
  if (auto good = CheckSelection(session, selection); !good) return std::unexpected(good.error());
  std::vector<std::string> names;
  Statement rows = ExportReader(session, selection).OfRange("Color_Name", "ORDER BY Color_Name, RowKey");
  while (rows.Step()) names.push_back(rows.Text(0));
  return names;
}

Result<FormulaExport> ExportFormulas(Session& session, FormulaFormat format, const FormulaSelection& selection,
                                     const std::filesystem::path& path) {
  if (auto allowed = RequireAct(session, Act::ExportFormulas); !allowed) return std::unexpected(allowed.error());
  if (static_cast<int>(format) >= kWrittenFormats) throw std::logic_error("a format that is only read");
  if (auto good = CheckSelection(session, selection); !good) return std::unexpected(good.error());
  Exporting exporting(session, format, selection);
  if (auto done = exporting.Run(); !done) return std::unexpected(done.error());
  WriteTextFile(path, exporting.Text());
  return std::move(exporting.report);
}

std::string ExportCompleteText(const FormulaExport& report, const std::filesystem::path& path) {
  std::string text = fmt::format("Formulas have been exported to the file:\n\n{}", path.string());
  if (report.left.empty()) return text;
  text += "\n\nThese formulas are not in it:";
  constexpr std::size_t kShown = 20;
  for (std::size_t n = 0; n < std::min(kShown, report.left.size()); ++n)
    text += fmt::format("\n{}: {}", report.left[n].first, report.left[n].second);
  if (report.left.size() > kShown) text += fmt::format("\nand {} more", report.left.size() - kShown);
  return text;
}

}  // namespace vellumark
