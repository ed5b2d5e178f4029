#include "core/exchange/formula_writer.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/exchange/formula_columns.h"
#include "core/exchange/table_builder.h"

namespace vellumark {
namespace {

using enum FormulaFormat;

constexpr std::string_view kLineEnd = "\r\n";

bool IsHeader(FormulaFormat format) {
  return format >= Header2 && format <= Header1Xls;
}

std::string LowerKey(std::string_view name) {
  std::string key(name);
  for (char& c : key)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return key;
}

bool NeedsCare(std::string_view text) {
  return text.starts_with('"') || text.find_first_of("\t\r\n\\") != std::string_view::npos;
}

float AsSingle(double amount) {
  return static_cast<float>(amount);
}

}  // namespace

FormulaFileText::FormulaFileText(FormulaFormat format, std::string_view database,
                                 const std::vector<SourceColor>& basics)
    : format_(format) {
  if (format == Mfe) text_.append(database).append(kLineEnd);
  const std::vector<std::string_view>& heading = HeadingOf(format);
  if (heading.empty()) return;
  text_ += fmt::format("{}", fmt::join(heading, "\t"));
  if (IsHeader(format)) {
    for (const SourceColor& basic : basics) {
      columns_.emplace(LowerKey(basic.name), columns_.size());
      text_ += '\t';
      Cell(basic.name);
    }
    amounts_.resize(columns_.size());
    if (format == Header2 || format == Header2Xls) {
      text_.append(kLineEnd).append("\t");
      for (const SourceColor& basic : basics) {
        text_ += '\t';
        Cell(basic.code.value_or(""));
      }
    }
  }
  text_ += kLineEnd;
}

void FormulaFileText::Cell(std::string_view text) {
  if (NeedsCare(text)) {
    text_ += WrittenCell(text);
  } else {
    text_ += text;
  }
}

std::string FormulaFileText::Add(std::string_view name, std::string_view code, const Recipe& recipe) {
  switch (format_) {
    case Mfe:
      AddMfe(name, recipe);
      return {};
    case Rez:
      AddRez(name, recipe);
      return {};
    case Zg:
      AddIngredients(name, code, "\t", recipe);
      return {};
    case Ja:
      AddIngredients(code, name, "\t\t\t", recipe);
      return {};
    default:
      return AddHeader(name, code, recipe);
  }
}

void FormulaFileText::AddMfe(std::string_view name, const Recipe& recipe) {
  Cell(name);
  for (const Ingredient& line : recipe) {
    text_ += '\t';
    Cell(line.name);
    text_.append("\t").append(Fixed(AsSingle(line.amount), 3));
  }
  text_ += kLineEnd;
}

void FormulaFileText::AddRez(std::string_view name, const Recipe& recipe) {
  // Formulas here have no versions; each is the first of its own.
  constexpr std::string_view kVersion = "1";
  for (std::size_t slot = 0; slot < recipe.size(); ++slot) {
    text_.append("O#").append(std::to_string(slot)).append("#");
    Cell(name);
    text_.append("#").append(kVersion).append("#");
    Cell(recipe[slot].name);
    text_.append("#").append(Fixed(AsSingle(recipe[slot].amount), 5)).append("#").append(kLineEnd);
  }
}

void FormulaFileText::AddIngredients(std::string_view first, std::string_view second, std::string_view between,
                                     const Recipe& recipe) {
  for (const Ingredient& line : recipe) {
    Cell(first);
    text_ += '\t';
    Cell(second);
    text_ += between;
    Cell(line.name);
    text_.append("\t").append(Fixed(AsSingle(line.amount), 3)).append(kLineEnd);
  }
}

std::string FormulaFileText::AddHeader(std::string_view name, std::string_view code, const Recipe& recipe) {
  std::ranges::fill(amounts_, 0.0F);
  for (const Ingredient& line : recipe) {
    const auto column = columns_.find(LowerKey(line.name));
    if (column == columns_.end())
      return fmt::format("its ingredient {} is no Basic Color of the Database, and so has no column", line.name);
    amounts_[column->second] = AsSingle(line.amount);
  }
  Cell(name);
  text_ += '\t';
  Cell(code);
  for (const float amount : amounts_) {
    text_ += '\t';
    if (amount == 0) {
      text_ += '0';
    } else {
      text_ += Fixed(amount, 3);
    }
  }
  text_ += kLineEnd;
  return {};
}

bool CanHoldName(FormulaFormat format, std::string_view name) {
  return format != Rez || name.find('#') == std::string_view::npos;
}

std::vector<std::string> WhatIsLost(FormulaFormat format) {
  std::vector<std::string> lost;
  if (format == Mfe || format == Rez) lost.emplace_back("The file holds no codes.");
  if (IsHeader(format))
    lost.emplace_back("The file does not hold the order of the ingredients: it has a column for each Basic Color.");
  lost.emplace_back("The file holds no notes, costs, emissions, stock and Additive Sets.");
  return lost;
}

}  // namespace vellumark
