#include <gtest/gtest.h>

#include "support/label_readers.h"

namespace vellumark::test {
namespace {

struct LabelReadersTest : testing::TestWithParam<std::tuple<Symbology, int>> {};

// Two thousand codes of each symbology at the resolutions of the usual label printers.
TEST_P(LabelReadersTest, AgreeOnTwoThousandTexts) {
  const auto [symbology, dots] = GetParam();
  LabelRoom room;
  int announced = 0;
  for (unsigned part = 0; part < 10; ++part) announced += room.ReadRandomLabels(symbology, dots, 25, part);
  RecordProperty("announced", announced);
  EXPECT_LT(announced, 1000);
}

std::string NameOf(const testing::TestParamInfo<std::tuple<Symbology, int>>& named) {
  std::string name;
  for (const char c : SymbologyName(std::get<0>(named.param)))
    if (c != ' ') name += c;
  return fmt::format("{}_{}", name, std::get<1>(named.param));
}

INSTANTIATE_TEST_SUITE_P(Printers, LabelReadersTest,
                         testing::Combine(testing::Values(Symbology::Code128, Symbology::Code39, Symbology::Code39Check),
                                          testing::Values(203, 300, 600)),
                         NameOf);

}  // namespace
}  // namespace vellumark::test
