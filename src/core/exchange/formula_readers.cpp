#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <unordered_set>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/datafile/schema.h"
#include "core/exchange/table_builder.h"

namespace vellumark {
namespace {

bool IsBlank(std::string_view cell) {
  return TrimView(cell).empty();
}

std::string ReadMfeRow(const RowCutter& rows, const TableBuilder& builder, SourceColor& formula,
                       std::vector<std::string_view>& amounts) {
  const std::vector<std::string>& cells = rows.Cells();
  if (std::string fault = builder.TakeName(cells[0], "the formula", formula.name); !fault.empty()) return fault;
  if (cells.size() % 2 == 0) return "an ingredient has no amount";
  if (const std::size_t count = cells.size() / 2; count > schema::kIngredientSlots)
    return fmt::format("the formula has {} ingredients, the limit is {}", count, schema::kIngredientSlots);
  for (std::size_t i = 1; i < cells.size(); i += 2) {
    if (IsBlank(cells[i]) && IsBlank(cells[i + 1])) continue;
    if (std::string fault = builder.TakePart(cells[i], cells[i + 1], formula.recipe); !fault.empty()) return fault;
    amounts.push_back(cells[i + 1]);
  }
  return {};
}

// A formula that is gathered from several rows.
struct Gathered {
  SourceColor formula;
  std::string content;  // of its first row
  std::string version;
  std::vector<int> slots;
  std::vector<std::string> amounts;
  bool bad = false;
};

// Where the cells of a row stand that holds one ingredient.
struct RowShape {
  std::size_t name;
  std::size_t code;  // kNone where there is none
  std::size_t ingredient;
  std::size_t amount;
};
constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr std::string_view kNoHeaders = "Couldn't read textfile Field Headers.";

RowShape ShapeOf(FormulaFormat format) {
  if (format == FormulaFormat::Rez) return {2, kNone, 4, 5};
  if (format == FormulaFormat::Zg) return {0, 1, 2, 3};
  return {1, 0, 4, 5};
}

/// Gathers the rows of formulas whose ingredients stand in a row each, wherever they stand in the file.
class IngredientRows {
 public:
  IngredientRows(FormulaFormat format, RowCutter& rows, TableBuilder& builder)
      : format_(format), shape_(ShapeOf(format)), rows_(rows), builder_(builder) {}

  void Take() {
    const std::vector<std::string>& cells = rows_.Cells();
    std::string name;
    std::string fault = FaultOfRow(cells);
    // Most rows go on with the formula of the row before.
    if (fault.empty() && (gathered_.empty() || Cell(shape_.name) != lastName_)) {
      fault = builder_.TakeName(Cell(shape_.name), "the formula", name);
      if (fault.empty()) Into(std::move(name));
    }
    if (!fault.empty()) return builder_.Bad(rows_.Line(), rows_.Raw(), std::move(fault));
    Gathered& into = gathered_[last_];
    fault = TakeCells(into);
    if (fault.empty()) return;
    into.bad = true;
    builder_.Bad(rows_.Line(), rows_.Raw(), std::move(fault));
  }

  void Finish() {
    for (std::size_t n = 0; n < gathered_.size(); ++n) {
      Gathered& done = gathered_[n];
      if (done.bad) continue;
      InOrderOfSlots(done);
      if (n == last_ && !rows_.Ended() && Cut(done)) {
        builder_.Bad(rows_.Line(), rows_.Raw(), std::string(kCutText));
      } else {
        builder_.TakeFormula(std::move(done.formula), done.content);
      }
    }
  }

 private:
  std::string_view Cell(std::size_t place) const {
    const std::vector<std::string>& cells = rows_.Cells();
    return place < cells.size() ? std::string_view(cells[place]) : std::string_view{};
  }

  std::string FaultOfRow(const std::vector<std::string>& cells) const {
    if (format_ == FormulaFormat::Rez && !EqualNoCase(TrimView(cells[0]), "O"))
      return fmt::format("the row begins with {}, that of an ingredient with O", Left(cells[0], 20));
    return {};
  }

  void Into(std::string name) {
    lastName_ = Cell(shape_.name);
    const auto [place, isNew] = places_.try_emplace(name, gathered_.size());
    last_ = place->second;
    if (isNew) Begin(std::move(name));
  }

  void Begin(std::string name) {
    Gathered& begun = gathered_.emplace_back();
    begun.formula.line = rows_.Line();
    begun.formula.name = std::move(name);
    begun.content = rows_.Raw();
    begun.version = Version();
  }

  std::string Version() const { return format_ == FormulaFormat::Rez ? Trim(Cell(3)) : std::string(); }

  std::string TakeCells(Gathered& into) {
    if (Version() != into.version)
      return fmt::format("the formula {} stands in line {} already, with the version {}", into.formula.name,
                         into.formula.line, into.version);
    if (shape_.code != kNone) {
      std::optional<std::string> code;
      if (std::string fault = builder_.TakeCode(Cell(shape_.code), code); !fault.empty()) return fault;
      if (into.formula.code && *into.formula.code != *code)
        return fmt::format("the formula {} stands in line {} already, with the code {}", into.formula.name,
                           into.formula.line, *into.formula.code);
      into.formula.code = std::move(code);
    }
    if (format_ == FormulaFormat::Rez) into.slots.push_back(LeadingInteger(Cell(1)));
    into.amounts.emplace_back(Cell(shape_.amount));
    return builder_.TakePart(Cell(shape_.ingredient), Cell(shape_.amount), into.formula.recipe);
  }

  // Rows that were sorted by something else come back into the order of the recipe.
  static void InOrderOfSlots(Gathered& done) {
    std::vector<int>& slots = done.slots;
    if (slots.empty() || std::ranges::is_sorted(slots)) return;
    std::vector<std::size_t> order(slots.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, {}, [&](std::size_t n) { return slots[n]; });
    Recipe sorted;
    for (const std::size_t n : order) sorted.push_back(std::move(done.formula.recipe[n]));
    done.formula.recipe = std::move(sorted);
  }

  bool Cut(const Gathered& done) const {
    const bool rez = format_ == FormulaFormat::Rez;
    if (rez && rows_.Raw().ends_with('#')) return false;
    const std::vector<std::string_view> amounts(done.amounts.begin(), done.amounts.end());
    return LooksCut(builder_.Table(), done.formula.recipe, amounts, rez ? 5 : 3);
  }

  FormulaFormat format_;
  RowShape shape_;
  RowCutter& rows_;
  TableBuilder& builder_;
  std::vector<Gathered> gathered_;
  std::unordered_map<std::string, std::size_t> places_;
  std::size_t last_ = 0;
  std::string lastName_;  // the cell that led to it
};

// The columns behind those of the format are somebody's own.
bool BeginsWith(const std::vector<std::string>& cells, const std::vector<std::string_view>& names) {
  if (cells.size() < names.size()) return false;
  for (std::size_t n = 0; n < names.size(); ++n)
    if (!EqualNoCase(TrimView(cells[n]), names[n])) return false;
  return true;
}

/// Formulas as rows over columns of Basic Colors.
class HeaderRows {
 public:
  HeaderRows(RowCutter& rows, TableBuilder& builder) : rows_(rows), builder_(builder) {}

  FormatFault TakeHeading() {
    constexpr std::string_view kText = "Line 1: Couldn't read Basic Color Names";
    if (!rows_.Next()) return {std::string(kText), "the file is empty"};
    const std::vector<std::string>& cells = rows_.Cells();
    if (cells.size() < 3 || !BeginsWith(cells, HeadingOf(FormulaFormat::Header1)))
      return {std::string(kText), "the row is not Code, Description and the names of Basic Colors"};
    for (std::size_t n = 2; n < cells.size(); ++n) {
      SourceColor basic;
      basic.line = rows_.Line();
      basic.kind = ColorKind::Basic;
      if (std::string fault = builder_.TakeName(cells[n], "a Basic Color", basic.name); !fault.empty())
        return {std::string(kText), std::move(fault)};
      if (!names_.insert(basic.name).second)
        return {std::string(kText), fmt::format("the Basic Color {} stands in it twice", basic.name)};
      basics_.push_back(std::move(basic));
    }
    return {};
  }

  FormatFault TakeRows() {
    constexpr std::string_view kText = "Line 2: Couldn't read data";
    if (!rows_.Next()) return {std::string(kText), "the file ends behind its heading"};
    if (IsCodeRow()) {
      for (std::size_t n = 2; n < rows_.Cells().size(); ++n) {
        if (n - 2 >= basics_.size()) return {std::string(kText), "the row has more codes than there are Basic Colors"};
        if (std::string fault = builder_.TakeCode(rows_.Cells()[n], basics_[n - 2].code); !fault.empty())
          return {std::string(kText), std::move(fault)};
      }
      if (builder_.Table().format == FormulaFormat::Header1) builder_.Table().format = FormulaFormat::Header2;
      if (builder_.Table().format == FormulaFormat::Header1Xls) builder_.Table().format = FormulaFormat::Header2Xls;
      if (!rows_.Next()) return {};
    }
    do {
      TakeRow();
    } while (rows_.Next());
    return {};
  }

  void Finish() {
    for (SourceColor& basic : basics_) builder_.TakeBasic(std::move(basic), {});
  }

 private:
  bool IsCodeRow() const {
    const std::vector<std::string>& cells = rows_.Cells();
    return cells.size() > 2 && IsBlank(cells[0]) && IsBlank(cells[1]);
  }

  void TakeRow() {
    SourceColor formula;
    formula.line = rows_.Line();
    if (std::string fault = FaultOfRow(formula); !fault.empty()) {
      builder_.Bad(rows_.Line(), rows_.Raw(), std::move(fault));
    } else {
      builder_.TakeFormula(std::move(formula), rows_.Raw());
    }
  }

  std::string FaultOfRow(SourceColor& formula) {
    const std::vector<std::string>& cells = rows_.Cells();
    if (std::string fault = builder_.TakeName(cells[0], "the formula", formula.name); !fault.empty()) return fault;
    if (std::string fault = builder_.TakeCode(cells.size() > 1 ? cells[1] : std::string(), formula.code);
        !fault.empty())
      return fault;
    if (cells.size() > basics_.size() + 2) return "the row has more cells than the heading";
    std::vector<std::string_view> amounts;
    for (std::size_t n = 2; n < cells.size(); ++n) {
      if (cells[n] == "0" || IsBlank(cells[n])) continue;
      std::string fault;
      const auto amount = builder_.TakeAmount(cells[n], basics_[n - 2].name, fault);
      if (!fault.empty()) return fault;
      if (amount == 0) continue;
      formula.recipe.push_back({basics_[n - 2].name, amount});
      amounts.push_back(cells[n]);
    }
    if (!rows_.Ended() && !amounts.empty() && LooksCut(builder_.Table(), formula.recipe, amounts))
      return std::string(kCutText);
    return {};
  }

  RowCutter& rows_;
  TableBuilder& builder_;
  std::vector<SourceColor> basics_;
  std::unordered_set<std::string> names_;
};

}  // namespace

FormatFault ReadMfeRows(RowCutter& rows, TableBuilder& builder) {
  if (!rows.Next()) return {std::string(kCorruptMfe), "the file is empty"};
  builder.Table().database = Upper(TrimView(rows.Cells()[0]));
  if (rows.Cells().size() > 1) builder.Bad(rows.Line(), rows.Raw(), "the first row is the name of the Database alone");
  std::vector<std::string_view> amounts;
  while (rows.Next()) {
    SourceColor formula;
    formula.line = rows.Line();
    amounts.clear();
    std::string fault = ReadMfeRow(rows, builder, formula, amounts);
    if (fault.empty() && !rows.Ended() && !amounts.empty() && LooksCut(builder.Table(), formula.recipe, amounts))
      fault = kCutText;
    if (fault.empty()) {
      builder.TakeFormula(std::move(formula), rows.Raw());
    } else {
      builder.Bad(rows.Line(), rows.Raw(), std::move(fault));
    }
  }
  return {};
}

FormatFault ReadIngredientRows(FormulaFormat format, RowCutter& rows, TableBuilder& builder) {
  if (format != FormulaFormat::Rez) {
    if (!rows.Next()) return {std::string(kNoHeaders), "the file is empty"};
    const std::vector<std::string_view>& heading = HeadingOf(format);
    if (!BeginsWith(rows.Cells(), heading))
      return {std::string(kNoHeaders), fmt::format("the first row is not {}", fmt::join(heading, ", "))};
  }
  IngredientRows gathering(format, rows, builder);
  while (rows.Next()) gathering.Take();
  gathering.Finish();
  return {};
}

FormatFault ReadHeaderRows(RowCutter& rows, TableBuilder& builder) {
  builder.Table().ordered = false;
  HeaderRows reading(rows, builder);
  if (FormatFault fault = reading.TakeHeading(); !fault.text.empty()) return fault;
  if (FormatFault fault = reading.TakeRows(); !fault.text.empty()) return fault;
  reading.Finish();
  return {};
}

}  // namespace vellumark
