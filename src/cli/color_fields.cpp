#include "cli/color_fields.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/inventory/color_name.h"
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

Result<std::string> TypedColor(const Session& session, std::optional<ColorKind> kind, std::string_view typed) {
  const auto name = TypedName(session, typed);
  return name ? SpelledOnFile(session, *name, kind) : name;
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

std::optional<std::string> TakeInventory(std::vector<std::string>& pairs, bool exact) {
  constexpr std::string_view kField = "Inventory";
  std::optional<std::string> typed;
  std::erase_if(pairs, [&](const std::string& text) {
    const auto pair = SplitPair(text);
    if (!pair || !(exact ? pair->first == kField : EqualNoCase(pair->first, kField))) return false;
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

bool IsSwatchPart(std::string_view field) {
  return field == "Red" || field == "Green" || field == "Blue";
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
