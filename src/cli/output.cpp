#include "cli/output.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <functional>

#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/base/text.h"

namespace vellumark::cli {
namespace {

Json CellJson(const TableColumn& column, const TableValue& value) {
  if (std::holds_alternative<std::monostate>(value)) return nullptr;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  if (const auto* single = std::get_if<float>(&value)) return Number(*single);
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* names = std::get_if<std::vector<std::string>>(&value)) return *names;
  const auto* rows = std::get_if<std::shared_ptr<const ListTable>>(&value);
  if (rows == nullptr) return CellText(column, value);
  return RowsJson(**rows);
}

// Most cells are short texts and zeros: they are written without a Json of their own.
void AppendCell(std::string& text, const TableColumn& column, const TableValue& value) {
  const auto isPlain = [](unsigned char c) { return c >= 0x20 && c < 0x7f && c != '"' && c != '\\'; };
  if (const auto* plain = std::get_if<std::string>(&value); plain && std::ranges::all_of(*plain, isPlain)) {
    text.append(1, '"').append(*plain).append(1, '"');
  } else if (const auto* single = std::get_if<float>(&value); single && *single == 0) {
    text += '0';
  } else {
    for (const char c : JsonText(CellJson(column, value))) text.append(c == '\n' ? "\n    " : std::string(1, c));
  }
}

constexpr std::size_t kHeldRows = 10000;

using Put = std::function<void(std::string_view)>;

void PutText(const ListTable& table, const Put& put) {
  const std::vector<std::size_t> shown = table.Shown();
  std::vector<std::size_t> widths;
  for (const std::size_t column : shown) widths.push_back(CharCount(table.columns[column].Caption()));
  const auto cellsOf = [&](const TableRow& row) {
    std::vector<std::string> cells;
    for (const std::size_t column : shown) cells.push_back(CellText(table.columns[column], row.Cell(column)));
    return cells;
  };
  const auto widen = [&](const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], CharCount(cells[i]));
  };
  const auto line = [&](const std::vector<std::string>& cells) {
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string padding(widths[i] - CharCount(cells[i]), ' ');
      if (i > 0) text += "  ";
      text += table.columns[shown[i]].RightAligned() ? padding + cells[i] : cells[i] + padding;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    put(text + "\n");
    return true;
  };
  TableTotals totals(table);
  std::vector<std::vector<std::string>> held;
  bool holdsAll = true;
  table.read([&](const TableRow& row) {
    totals.Add(row);
    std::vector<std::string> cells = cellsOf(row);
    widen(cells);
    holdsAll = held.size() < kHeldRows;
    if (holdsAll) held.push_back(std::move(cells));
    return true;
  });
  if (!table.totals.empty()) widen(totals.Texts());
  std::vector<std::string> captions;
  std::vector<std::string> rules;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    captions.push_back(table.columns[shown[i]].Caption());
    rules.emplace_back(widths[i], '-');
  }
  line(captions);
  line(rules);
  if (holdsAll) {
    for (const std::vector<std::string>& cells : held) line(cells);
  } else {
    held = {};
    table.read([&](const TableRow& row) { return line(cellsOf(row)); });
  }
  if (!table.totals.empty()) line(totals.Texts());
}

}  // namespace

void Output::Write(std::string_view text) {
  held_ += text;
  if (held_.size() >= kPiece) Finish();
}

void Output::Finish() {
  if (held_.empty()) return;
  begun_ = true;
  const bool written = std::fwrite(held_.data(), 1, held_.size(), stdout) == held_.size() && std::fflush(stdout) == 0;
  held_.clear();
  if (!written) throw Failure("standard output", "cannot be written");
}

bool Output::Drop() {
  held_.clear();
  return !begun_;
}

std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

Json Number(float single) {
  const std::string text = ShortestText(single);
  if (text.find('.') == std::string::npos) {
    std::int64_t whole = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), whole);
    if (error == std::errc{}) return whole;
  }
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

Json RowsJson(const ListTable& table) {
  Json array = Json::array();
  table.read([&](const TableRow& row) {
    array.push_back(RowJson(table, row));
    return true;
  });
  return array;
}

Json RowJson(const ListTable& table, const TableRow& row) {
  Json object = Json::object();
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    if (const TableColumn& column = table.columns[i]; !column.key.empty())
      object[column.key] = CellJson(column, row.Cell(i));
  return object;
}

Json RowJson(const ListTable& table) {
  Json object;
  table.read([&](const TableRow& row) {
    object = RowJson(table, row);
    return false;
  });
  return object;
}

void WriteJson(const ListTable& table, Output& output) {
  std::vector<std::string> keys;
  for (const TableColumn& column : table.columns) keys.push_back("\n    " + JsonText(column.key) + ": ");
  std::string text = "[";
  const char* before = "\n  {";
  table.read([&](const TableRow& row) {
    text += std::exchange(before, ",\n  {");
    bool first = true;
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (table.columns[i].key.empty()) continue;
      if (!std::exchange(first, false)) text += ',';
      text += keys[i];
      AppendCell(text, table.columns[i], row.Cell(i));
    }
    text += "\n  }";
    output.Write(text);
    text.clear();
    return true;
  });
  output.Write(text + (text == "[" ? "]\n" : "\n]\n"));
}

void WriteText(const ListTable& table, Output& output) {
  PutText(table, [&](std::string_view text) { output.Write(text); });
}

std::string TableText(const ListTable& table) {
  std::string text;
  PutText(table, [&](std::string_view part) { text += part; });
  return text;
}

}  // namespace vellumark::cli
