#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellumark {

// The ingredients of a recipe as one search text, "<A><B>" in slot order: NameSet of core/datafile/references.h makes
// it.

/// The names between the marks. An item without its closing mark is left out.
std::vector<std::string> SplitColorSet(std::string_view colorSet);


/// True when every item of the candidate stands in the formula's set, in any case, with or without "PANTONE " on either
/// side. An empty candidate is contained in any set.
bool ColorSetContains(std::string_view formulaSet, std::string_view candidateSet);

/// The same test for one formula against a whole table of candidates: the formula's set is taken apart once. The text
/// must outlive the object.
class ColorSetTest {
 public:
  explicit ColorSetTest(std::string_view formulaSet);
  bool Contains(std::string_view candidateSet) const;

 private:
  std::vector<std::string_view> items_;
};

}  // namespace vellumark
