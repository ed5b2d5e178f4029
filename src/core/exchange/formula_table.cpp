#include "core/exchange/formula_table.h"

namespace vellumark {

const std::array<FormulaFormatRow, 10>& FormulaFormats() {
  using enum FormulaFormat;
  static constexpr std::array<FormulaFormatRow, 10> kFormats{{
      {Mfe, ".mfe (Vellumark - Text / Tab File)", ".mfe", "MM"},
      {Rez, ".rez (SC-IFS - Text File)", ".rez", "SC"},
      {Zg, ".txt (ZG - Text / Tab File)", ".txt", "ZG"},
      {Ja, ".txt (JA - S100 - Text / Tab File)", ".txt", "JA"},
      {Header2, ".txt (Basic Header Ver 2 - Text / Tab File)", ".txt", "BHeader"},
      {Header1, ".txt (Basic Header Ver 1 - Text / Tab File)", ".txt", "BHeader"},
      {Header2Xls, ".xls (Basic Header Ver 2 - MS Excel)", ".xls", "BHeader"},
      {Header1Xls, ".xls (Basic Header Ver 1 - MS Excel)", ".xls", "BHeader"},
      {Work, "", ".txt", "MM"},
      {Columns, "", ".csv", "MM"},
  }};
  return kFormats;
}

}  // namespace vellumark
