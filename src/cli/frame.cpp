#include "cli/frame.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark::cli {
namespace {

std::string Cell(const Json& value) {
  if (value.is_null()) return "";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_array()) {
    std::string joined;
    for (const Json& item : value) joined += (joined.empty() ? "" : ", ") + Cell(item);
    return joined;
  }
  return value.dump();
}

bool IsRows(const Json& value) {
  return value.is_array() && !value.empty() &&
         std::ranges::all_of(value, [](const Json& row) { return row.is_object(); });
}

std::string RowsText(const Json& rows) {
  std::vector<std::string> columns;
  for (const auto& [key, value] : rows.front().items()) columns.push_back(key);
  std::vector<bool> right(columns.size(), true);
  std::vector<std::vector<std::string>> cells;
  for (const Json& row : rows) {
    std::vector<std::string> line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const auto found = row.find(columns[i]);
      const bool present = found != row.end() && !found->is_null();
      if (present && !found->is_number()) right[i] = false;
      line.push_back(present ? Cell(*found) : "");
    }
    cells.push_back(std::move(line));
  }
  return TableText(columns, cells, right);
}

// "noun verb": the words behind the program's name.
std::string CommandName(const CLI::App& verb) {
  std::string name = verb.get_name();
  for (const CLI::App* noun = verb.get_parent(); noun->get_parent() != nullptr; noun = noun->get_parent())
    name = noun->get_name() + " " + name;
  return name;
}

}  // namespace

void Commands::Add(CLI::App* verb, Needs needsOfVerb, Action action) {
  const std::string command = CommandName(*verb);
  const auto known = ActOfCommand(command);
  if (!known) throw std::logic_error("the table of acts has no command " + command);
  verb->callback([this, needsOfVerb, actOfVerb = *known, action = std::move(action)] {
    needs = needsOfVerb;
    act = actOfVerb;
    chosen = action;
  });
}

CLI::App* AddNoun(CLI::App& app, const std::string& name, const std::string& description) {
  CLI::App* noun = app.add_subcommand(name, description);
  noun->require_subcommand(1);
  noun->fallthrough();
  noun->footer("Options that every command takes: vellumark-cli --help");
  return noun;
}

std::string NotEmpty(const std::string& text) {
  return text.find_first_not_of(' ') == std::string::npos ? "the text is empty" : "";
}

CLI::Option* OneEachTime(CLI::Option* option) {
  return option->take_all()->allow_extra_args(false);
}

std::optional<std::pair<std::string, std::string>> SplitPair(std::string_view text, bool atLast) {
  const std::size_t mark = atLast ? text.rfind('=') : text.find('=');
  if (mark == std::string_view::npos) return std::nullopt;
  return std::pair{Trim(text.substr(0, mark)), std::string(text.substr(mark + 1))};
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

Json FieldJson(const Field& field, const Value& value) {
  if (value.IsNull()) return nullptr;
  switch (field.type) {
    case FieldType::Single:
      return Number(value.Single());
    case FieldType::Boolean:
      return value.Bool();
    case FieldType::Date: {
      const auto date = value.Date();
      if (!date) return value.Text();
      return *date == date->Midnight() ? date->DateText() : date->ToText();
    }
    case FieldType::Text:
    case FieldType::Memo:
      return value.Text();
    default:
      return value.Whole();
  }
}

std::string TableText(const std::vector<std::string>& columns, const std::vector<std::vector<std::string>>& rows,
                      const std::vector<bool>& rightAligned) {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::size_t width = CharCount(columns[i]);
    for (const auto& row : rows) width = std::max(width, CharCount(row[i]));
    widths.push_back(width);
  }
  std::string text;
  const auto add = [&](const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string padding(widths[i] - CharCount(cells[i]), ' ');
      if (i > 0) line += "  ";
      line += rightAligned[i] ? padding + cells[i] : cells[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  };
  add(columns);
  std::vector<std::string> rules;
  for (const std::size_t width : widths) rules.emplace_back(width, '-');
  add(rules);
  for (const auto& row : rows) add(row);
  return text;
}

std::string ReadableText(const Json& answer) {
  if (answer.is_null()) return "";
  if (IsRows(answer)) return RowsText(answer);
  if (answer.is_array()) {
    std::string text;
    for (const Json& item : answer) text += Cell(item) + "\n";
    return text;
  }
  if (!answer.is_object()) return Cell(answer) + "\n";
  std::size_t width = 0;
  for (const auto& [key, value] : answer.items()) width = std::max(width, CharCount(key));
  std::string text;
  std::string tables;
  for (const auto& [key, value] : answer.items()) {
    if (IsRows(value)) {
      tables += "\n" + key + "\n" + RowsText(value);
      continue;
    }
    text += key + std::string(width - CharCount(key) + 2, ' ') + Cell(value) + "\n";
  }
  return text + tables;
}

}  // namespace vellumark::cli
