#include "cli/color_fields.h"

#include <fmt/format.h>

#include <array>

#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/inventory/color_stock.h"

namespace vellumark::cli {

Result<std::string> TypedName(const Session& session, std::string_view typed, std::string field) {
  const std::string_view text = TrimView(typed);
  const std::size_t length = CharCount(text);
  if (length > static_cast<std::size_t>(session.NameLength))
    return Refuse("Invalid Name",
                  fmt::format("The name {} has {} characters, the limit is {}.", text, length, session.NameLength),
                  std::move(field));
  return ReadName(session, typed);
}

Result<std::string> NewTypedName(const Session& session, std::string_view typed, std::string field,
                                 std::string_view from) {
  if (auto valid = CheckTypedPiece(typed, field, from); !valid) return std::unexpected(valid.error());
  return TypedName(session, typed, std::move(field));
}

std::shared_ptr<RenameNames> AddRenameNames(CLI::App* verb, const std::string& newText) {
  const auto names = std::make_shared<RenameNames>();
  verb->add_option("OLD", names->oldName, "Its name")->required()->check(NotEmpty);
  verb->add_option("NEW", names->newName, newText)->required()->check(NotEmpty);
  return names;
}

Result<bool> ReadYesNo(const std::string& field, std::string_view text) {
  const std::string word = Upper(TrimView(text));
  for (const std::string_view yes : {"YES", "TRUE", "1"})
    if (word == yes) return true;
  for (const std::string_view no : {"NO", "FALSE", "0"})
    if (word == no) return false;
  return Refuse("Invalid Value", fmt::format("{} is yes or no, not \"{}\".", field, text), field);
}

std::vector<std::string> SettableFields(ColorKind kind) {
  return {"Color_Code", "Inventory", "Reorder", "PurchaseCost", kind == ColorKind::Basic ? "Additive" : "Recycle",
          "Notes",      "Inv_Note",  "VOC",     "HAP"};
}

void TakeColorField(ColorWork& work, std::string_view field, const std::string& value) {
  using Text = std::pair<std::string_view, std::string ColorWork::*>;
  static constexpr std::array kTexts{Text{"Color_Code", &ColorWork::Color_Code},
                                     Text{"Reorder", &ColorWork::Reorder},
                                     Text{"PurchaseCost", &ColorWork::PurchaseCost},
                                     Text{"Notes", &ColorWork::Notes},
                                     Text{"Inv_Note", &ColorWork::Inv_Note},
                                     Text{"VOC", &ColorWork::VOC},
                                     Text{"HAP", &ColorWork::HAP}};
  for (const auto& [name, text] : kTexts)
    if (name == field) work.*text = value;
}

std::optional<std::string> TakeInventory(std::vector<std::string>& pairs, bool exact) {
  std::optional<std::string> typed;
  std::erase_if(pairs, [&](const std::string& text) {
    const auto pair = SplitPair(text);
    if (!pair || KnownField(pair->first, {"Inventory"}, exact).empty()) return false;
    typed = pair->second;
    return true;
  });
  return typed;
}

Result<void> SaveWithInventory(Session& session, ColorKind kind, const std::string& name,
                               const std::optional<std::string>& typed,
                               const std::function<Result<void>()>& saveColor) {
  if (!typed) return saveColor();
  InventoryWork stock =
      ColorIsThere(session, kind, name) ? LoadInventory(session, kind, name) : NewInventory(session, kind, name);
  if (auto set = SetUnlotted(session, stock, *typed); !set) return set;
  return SaveWithStock(session, saveColor, &stock);
}

std::string KnownField(std::string_view typed, const std::vector<std::string>& fields, bool exact) {
  for (const std::string& field : fields)
    if (exact ? field == typed : EqualNoCase(field, typed)) return field;
  return {};
}

Result<SwatchChange> TakeSwatch(std::vector<std::string>& pairs) {
  SwatchChange change;
  Result<void> read;
  std::erase_if(pairs, [&](const std::string& text) {
    const auto pair = SplitPair(text);
    std::optional<int>* part = nullptr;
    if (pair && pair->first == "Red") part = &change.Red;
    if (pair && pair->first == "Green") part = &change.Green;
    if (pair && pair->first == "Blue") part = &change.Blue;
    if (part == nullptr) return false;
    const auto value = ReadSwatchPart(pair->first, pair->second);
    if (value) {
      *part = *value;
    } else if (read) {
      read = std::unexpected(value.error());
    }
    return true;
  });
  if (!read) return std::unexpected(read.error());
  return change;
}

Json Price(const Session& session, float price) {
  return session.Perm_Costs == 0 ? Json() : Number(price);
}

Json DateJson(const std::optional<DateTime>& date) {
  if (!date) return nullptr;
  return *date == date->Midnight() ? date->DateText() : date->ToText();
}

std::unexpected<Refusal> Declined(std::string title, std::string_view name) {
  return Refuse(std::move(title), fmt::format("{}: the question was answered with No; nothing was changed.", name));
}

}  // namespace vellumark::cli
