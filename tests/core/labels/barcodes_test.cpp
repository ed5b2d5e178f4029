#include "core/labels/barcodes.h"

#include <gtest/gtest.h>

#include <random>

namespace vellumark::test {
namespace {

// Characters of the font written out: what is printable as it stands, others as numbers.
FontString Font(std::initializer_list<int> characters) {
  return characters;
}

TEST(Code39Test, FramesTextsAndAddsTheCheck) {
  EXPECT_EQ(Code39("AB-1", false), Font({'*', 'A', 'B', '-', '1', '*'}));
  // 10 + 11 + 36 + 1 = 58, 15 over 43: F. 42 alone is "%", 43 of it comes round to 0.
  EXPECT_EQ(Code39("AB-1", true), Font({'*', 'A', 'B', '-', '1', 'F', '*'}));
  EXPECT_EQ(Code39("%1", true), Font({'*', '%', '1', '0', '*'}));
  EXPECT_EQ(Code39("", true), FontString());
  struct {
    std::string_view text;
    std::string_view character;
  } const refused[] = {{"ABc", "c"}, {"<CN>RED", "<"}, {"A*B", "*"}, {"A\tB", "\t"}, {"ÄB", "Ä"}, {"1\x7F", "\x7F"}};
  for (const auto& [text, character] : refused) {
    const auto coded = Code39(text, false);
    ASSERT_FALSE(coded) << text;
    EXPECT_EQ(coded.error().title, "Bad Barcode Character");
    EXPECT_EQ(coded.error().text, "The character \"" + std::string(character) +
                                      "\" cannot be used in this barcode. \nPlease re-enter data not using this "
                                      "character.");
  }
}

TEST(Code128Test, ChoosesItsSetsAndWeighsTheCheck) {
  struct {
    const char* what;
    std::string text;
    FontString font;
  } const cases[] = {
      // 105 + 12 + 2 * 34 + 3 * 100 + 4 * 21 = 569, 54 over 103.
      {"five digits", "12345", {205, 44, 66, 200, '5', 54 + 32, 206}},
      // 104 + 33 + 2 * 34 + 3 * 99 + 4 * 12 + 5 * 34 = 720, 102 over 103: behind the gap of the font.
      {"letters before digits", "AB1234", {204, 'A', 'B', 199, 44, 66, 202, 206}},
      // 104 + 17 + 36 + 57 = 214, 8 over 103.
      {"three digits", "123", {204, '1', '2', '3', 8 + 32, 206}},
      // 105 + 95 + 2 * 99 = 398, 89 over 103.
      {"pairs above 94", "9599", {205, 195, 199, 89 + 32, 206}},
      // 105 + 12 + 2 * 34 + 3 * 100 + 4 * 33 = 617, 102 over 103.
      {"digits before a letter", "1234A", {205, 44, 66, 200, 'A', 202, 206}},
      // 103 + (9 - 32) + 2 * 100 + 3 * 33 = 379, 70 over 103.
      {"a control character", "\tA", {203, 9, 200, 'A', 70 + 32, 206}},
      // A deletion has no value and no weight: 104 + 33 + 2 * 34 = 205, 102 over 103.
      {"a deletion",
       "A\x7F"
       "B",
       {204, 'A', 'B', 202, 206}},
      {"nothing", "", {}},
  };
  for (const auto& [what, text, font] : cases) EXPECT_EQ(Code128(text), font) << what;
  for (const std::string text : {"RED®", "\xC3\x83"}) EXPECT_FALSE(Code128(text)) << text;
  // On job sheets 200 stands for 2 - 100: 104 - 98 = 6; the é is dropped, and A weighs 2: 72.
  EXPECT_EQ(ReportCode128("\xC3\x88\xC3\xA9"
                          "A"),
            Font({204, 200, 'A', 72 + 32, 206}));
}

TEST(Code128Test, TellsOfACheckThatWrapped) {
  // 104 + 90 * (1 + ... + 26) = 31694 and with the 27th 34124, which 16 bits hold as -31412: -100 over 103.
  const std::string text(27, 'z');
  const auto font = Code128(text);
  ASSERT_TRUE(font);
  EXPECT_EQ((*font)[font->size() - 2], -100 + 32);
  EXPECT_EQ(BarsOf(Symbology::Code128, *font), std::nullopt);
  EXPECT_NE(BarsOf(Symbology::Code128, *Code128(std::string(26, 'z'))), std::nullopt);
  EXPECT_EQ(BarsOf(Symbology::Code128, *Code128("\tA")), std::nullopt);
}

TEST(BarsTest, HaveTheWidthOfTheirSymbols) {
  // Eleven modules a character and thirteen of the stop; fifteen a character and one between two.
  const auto code128 = BarsOf(Symbology::Code128, *Code128("<CN>RED"));
  ASSERT_TRUE(code128);
  EXPECT_EQ(code128->modules, 9 * 11 + 13);
  const auto code39 = BarsOf(Symbology::Code39Check, *Code39("RED", true));
  ASSERT_TRUE(code39);
  EXPECT_EQ(code39->modules, 6 * 15 + 5);
  EXPECT_EQ(ReadBackOf(Symbology::Code39Check, "AB-1"), "AB-1F");
}

}  // namespace
}  // namespace vellumark::test
