#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "core/colors/formulas.h"

namespace vellumark {

/// Rolls up many recipes against one Database's Basic Colors, each of which is read once. It holds what it read: make a
/// new one after a change of costs or emissions.
class FigureBook {
 public:
  explicit FigureBook(const Session& session, std::string_view database = {});
  /// Figures of parts of 100; an ingredient without a row adds nothing. A figure that cannot be read is a Failure that
  /// tells which of the three could not be calculated.
  RolledUp RollUp(const Recipe& recipe);
  /// The same before it is rounded.
  RolledUp Sum(const Recipe& recipe);

 private:
  struct Figures {
    float cost = 0;
    float voc = 0;
    float hap = 0;
  };
  const Figures& Of(const std::string& name);

  const Session& session_;
  std::string sql_;
  std::unordered_map<std::string, Figures> read_;
};

}  // namespace vellumark
