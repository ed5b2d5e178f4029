#include "cli/frame.h"

#include <algorithm>
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

// Rows whose columns are the keys of the first one.
std::string RowsText(const Json& rows) {
  TableOf<Json> table;
  for (const auto& [key, value] : rows.front().items()) {
    const auto cell = [key](const Json& row) { return row.value(key, Json()); };
    const bool numbers =
        std::ranges::all_of(rows, [&](const Json& row) { return cell(row).is_null() || cell(row).is_number(); });
    table.Add(
        key, [cell](const Json& row) { return Cell(cell(row)); }, "", numbers ? Format::Whole : Format::Text);
  }
  return TableText(table.Of(std::vector<Json>(rows.begin(), rows.end())));
}

// "noun verb": the words behind the program's name.
std::string CommandName(const CLI::App& verb) {
  std::string name = verb.get_name();
  for (const CLI::App* noun = verb.get_parent(); noun->get_parent() != nullptr; noun = noun->get_parent())
    name.insert(0, noun->get_name() + " ");
  return name;
}

std::string IsPdfName(const std::string& name) {
  return name.size() > 4 && EqualNoCase(std::string_view(name).substr(name.size() - 4), ".pdf")
             ? ""
             : name + " does not end with .pdf";
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

CLI::Option* Commands::AddPrinting(CLI::App* verb) {
  auto* out = verb->add_option("--out", print.out, "Print it into this PDF")->type_name("FILE.pdf")->check(IsPdfName);
  AddPaper(verb, out, print);
  return out;
}

void AddPaper(CLI::App* verb, CLI::Option* out, PrintWish& print) {
  verb->add_option("--paper", print.paper.paper, "A4 or Letter")
      ->check(CLI::IsMember({"A4", "Letter"}, CLI::ignore_case))
      ->needs(out);
  verb->add_flag("--landscape", print.paper.landscape, "The long side across")->needs(out);
  verb->add_option("--font", print.paper.fontPercent, "Size of its text in percent, 60 to 100")
      ->check(CLI::Range(60, 100))
      ->needs(out);
}

void Commands::AddList(CLI::App* verb, Needs needsOfVerb, std::string title, Action action) {
  auto* sort = verb->add_option("--sort", wish.sort, "Sorted by this column")->type_name("CAPTION")->check(NotEmpty);
  verb->add_option("--then", wish.then, "By this one where the first is equal")
      ->type_name("CAPTION")
      ->check(NotEmpty)
      ->needs(sort);
  verb->add_flag("--desc", wish.descending, "The largest first")->needs(sort);
  verb->add_option("--filter", wish.filter, "Only rows in which each of these words stands")->check(NotEmpty);
  verb->add_option("--limit", wish.limit, "Only so many rows")->check(CLI::NonNegativeNumber);
  AddPrinting(verb);
  Add(verb, needsOfVerb, [title = std::move(title), action = std::move(action)](Context& context) {
    context.title = title;
    return action(context);
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
