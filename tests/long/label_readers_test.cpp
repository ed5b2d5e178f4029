#include <gtest/gtest.h>

#include "support/label_readers.h"

namespace vellumark::test {
namespace {

// Two thousand codes of each symbology at the resolutions of the usual label printers.
TEST(LabelReadersTest, AgreeOnTwoThousandTexts) {
  for (const Symbology symbology : {Symbology::Code128, Symbology::Code39, Symbology::Code39Check})
    for (const int dots : {203, 300, 600}) {
      LabelRoom room;
      int announced = 0;
      for (unsigned part = 0; part < 10; ++part) announced += room.ReadRandomLabels(symbology, dots, 25, part);
      RecordProperty(fmt::format("announced_{}_{}", static_cast<int>(symbology), dots), announced);
      EXPECT_LT(announced, 1000) << SymbologyName(symbology) << " at " << dots;
    }
}

}  // namespace
}  // namespace vellumark::test
