#include "core/session/user_fields.h"

#include <fmt/format.h>

#include "core/base/text.h"

namespace vellumark {
namespace {

std::string FieldName(const char* name, int number) {
  return name + std::to_string(number);
}

// What can stand in a settings file and between the bars of a column set.
Result<void> CheckText(const char* title, std::string_view text, const std::string& field) {
  if (text.find_first_of("\"|\r\n") != std::string_view::npos)
    return Refuse(title, "The text cannot hold a double quote, a vertical bar or a line end.", field);
  if (CharCount(text) > kUserTextWidth)
    return Refuse(title, fmt::format("The text cannot be longer than {} characters.", kUserTextWidth), field);
  try {
    ToCp1252(text);
  } catch (const BadValue& bad) {
    return Refuse(title, bad.what(), field);
  }
  return {};
}

Result<void> CheckCaption(const char* title, std::string_view caption, const std::string& field) {
  if (TrimView(caption).empty()) return Refuse(title, "Enter a caption for this field.", field);
  return CheckText(title, caption, field);
}

}  // namespace

Result<void> CheckUserFields(const UserFieldOptions& options, const char* title) {
  for (int i = 0; i < kUserFields; ++i) {
    const UserTextOption& text = options.texts.at(static_cast<std::size_t>(i));
    if (auto caption = CheckCaption(title, text.caption, FieldName("txtTextCaption", i)); !caption) return caption;
    if (auto value = CheckText(title, text.value, FieldName("txtTextValue", i)); !value) return value;
  }
  for (int i = 0; i < kUserFields; ++i) {
    const UserNumberOption& number = options.numbers.at(static_cast<std::size_t>(i));
    if (auto caption = CheckCaption(title, number.caption, FieldName("txtNumberCaption", i)); !caption) return caption;
    if (number.decimals < setting::Batches_UDNum_Format.limits.least || number.decimals > kMostUserDecimals)
      return Refuse(title, "Select a number of decimals from the list.", FieldName("cmbNumberFormat", i));
  }
  return {};
}

}  // namespace vellumark
