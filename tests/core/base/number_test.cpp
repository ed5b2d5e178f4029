#include "core/base/number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "core/base/units.h"

namespace vellumark {
namespace {

TEST(Number, FixedRoundsAsAPersonWhoSeesTheDecimalWould) {
  struct Case {
    float value;
    int decimals;
    const char* shown;
  };
  const Case cases[] = {
      {0.0005F, 3, "0.001"},
      {1.0005F, 3, "1.001"},
      {0.00049F, 3, "0.000"},
      {-0.0004F, 3, "0.000"},
      {-0.0005F, 3, "-0.001"},
      {99.9995F, 3, "100.000"},
      {999.9996F, 3, "1000.000"},
      {2.5F, 0, "3"},
      {-2.5F, 0, "-3"},
      {0.4F, 0, "0"},
      {0.0F, 3, "0.000"},
      {33.3333F, 3, "33.333"},
      {12.345F, 2, "12.35"},
      {1e9F, 2, "1000000000.00"},
      {1e-9F, 3, "0.000"},
      {0.05F, 1, "0.1"},
      {9.5F, 0, "10"},
      {0.95F, 1, "1.0"},
      {123456.7F, 3, "123456.700"},
  };
  for (const Case& c : cases) EXPECT_EQ(Fixed(c.value, c.decimals), c.shown) << c.value << " to " << c.decimals;
}

TEST(Number, ADoubleKeepsWhatASingleWouldHide) {
  // 1.0005 as a Single is 1.00049996...: seen as a double it is below the half.
  EXPECT_EQ(Fixed(static_cast<double>(1.0005F), 3), "1.000");
  EXPECT_EQ(Fixed(1.0005, 3), "1.001");
  EXPECT_EQ(Fixed(0.1 + 0.2, 15), "0.300000000000000");
}

TEST(Number, RoundedSinglesShowTheirDecimalsAgain) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> any(-100000, 100000);
  for (int i = 0; i < 20000; ++i) {
    const double value = any(random);
    const float rounded = RoundSingle(value, 3);
    EXPECT_EQ(RoundSingle(rounded, 3), rounded) << value;
    EXPECT_NEAR(rounded, value, 0.0005 + std::fabs(value) * 6e-8);
  }
}

TEST(Number, NotFiniteIsRefused) {
  EXPECT_THROW(Fixed(std::nanf(""), 3), std::domain_error);
  EXPECT_THROW(Fixed(1.0 / 0.0, 3), std::domain_error);
}

TEST(Number, ShortestTextReadsBackAsTheSameSingle) {
  EXPECT_EQ(ShortestText(0.1F), "0.1");
  EXPECT_EQ(ShortestText(100.0F), "100");
  EXPECT_EQ(ShortestText(-12.5F), "-12.5");
  EXPECT_EQ(ShortestText(0.0F), "0");
  EXPECT_EQ(ShortestText(0.00001F), "0.00001");
  EXPECT_EQ(ShortestText(1.5e10F), "15000000000");
}

TEST(Number, TypedNumbersAreReadStrictlySettingsAtTheirFront) {
  for (const char* bad : {"", " ", "abc", "1,5", "1e3", "1.2.3", "--1", "+-1", ".", "-", "0x10", "1 2", "\t"})
    EXPECT_FALSE(ParseNumber(bad)) << bad;
  EXPECT_EQ(ParseNumber(" 1.5 "), 1.5);
  EXPECT_EQ(ParseNumber("+2"), 2);
  EXPECT_EQ(ParseNumber("-.5"), -0.5);
  EXPECT_EQ(ParseNumber("5."), 5);

  EXPECT_EQ(LeadingNumber(""), 0);
  EXPECT_EQ(LeadingNumber("abc"), 0);
  EXPECT_EQ(LeadingNumber(" .5 lb"), 0.5);
  EXPECT_EQ(LeadingNumber("1,5"), 1);
  EXPECT_EQ(LeadingNumber("-1"), -1);
  EXPECT_EQ(LeadingNumber("nan"), 0);
  EXPECT_EQ(LeadingInteger("2865"), 2865);
  EXPECT_EQ(LeadingInteger("99999999999"), 2147483647);
}

TEST(Money, ConversionRoundsHalfToEvenAndShowingHalfUp) {
  EXPECT_EQ(Currency::From(0.00005).TenThousandths(), 0);
  EXPECT_EQ(Currency::From(0.00015).TenThousandths(), 2);
  EXPECT_EQ(Currency::From(0.00025).TenThousandths(), 2);
  EXPECT_EQ(Currency::From(0.000251).TenThousandths(), 3);
  EXPECT_EQ(Currency::From(-0.00015).TenThousandths(), -2);
  EXPECT_EQ(Currency::From(99999).TenThousandths(), 999990000);
  EXPECT_EQ(Currency::From(12.34565).TenThousandths(), 123456);
  EXPECT_EQ(Currency::OfTenThousandths(101250).Fixed(2), "10.13");
  EXPECT_EQ(Currency::OfTenThousandths(-101250).Fixed(2), "-10.13");
  EXPECT_EQ(Currency::OfTenThousandths(101250).Rounded(3).TenThousandths(), 101250);
  EXPECT_EQ(Currency::OfTenThousandths(49).Fixed(2), "0.00");
  EXPECT_THROW(Currency::From(1e20), std::out_of_range);
}

TEST(Units, FactorsBetweenAllPairs) {
  EXPECT_EQ(ShortestText(UnitFactor(1, 2)), "0.45359236");
  EXPECT_EQ(Fixed(UnitFactor(1, 2), 7), "0.4535924");
  EXPECT_EQ(UnitFactor(1, 4), 16.0F);
  EXPECT_EQ(Fixed(UnitFactor(2, 3), 3), "1000.000");
  EXPECT_EQ(UnitFactor(4, 1), 0.0625F);
  for (int from = 1; from <= 4; ++from)
    for (int to = 1; to <= 4; ++to)
      EXPECT_NEAR(static_cast<double>(UnitFactor(from, to)) * UnitFactor(to, from), 1.0, 1e-6) << from << to;
  EXPECT_THROW(UnitFactor(0, 1), std::out_of_range);
  EXPECT_THROW(UnitFactor(1, 5), std::out_of_range);
  EXPECT_EQ(ParseUnit("lb."), 1);
  EXPECT_EQ(ParseUnit("KG"), 2);
  EXPECT_EQ(ParseUnit("4"), 4);
  EXPECT_FALSE(ParseUnit("stone"));
}

}  // namespace
}  // namespace vellumark
