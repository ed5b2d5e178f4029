#include "core/colors/names.h"

#include <gtest/gtest.h>

#include "core/colors/additive_sets.h"
#include "core/colors/color_set.h"
#include "core/datafile/references.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

TEST(Names, KeysOfANameField) {
  for (const char32_t key : U"abcXYZ019 ./-") {
    if (key == 0) continue;
    EXPECT_TRUE(NameKey(key, NameKeys::Plain)) << static_cast<int>(key);
  }
  EXPECT_EQ(NameKey(U'q', NameKeys::Plain), 'Q');
  for (const char32_t key : U"<>!") {
    if (key == 0) continue;
    EXPECT_FALSE(NameKey(key, NameKeys::Plain));
    EXPECT_TRUE(NameKey(key, NameKeys::Scanned));
  }
  for (const char32_t key : U"'\"[]*|%_é\t\x7f€") {
    if (key == 0) continue;
    EXPECT_FALSE(NameKey(key, NameKeys::Scanned)) << static_cast<int>(key);
  }
}

TEST(Names, ReadFromAField) {
  test::InkRoom room;
  room.session.NameLength = 12;
  const struct {
    const char* typed;
    const char* name;
  } cases[] = {
      {"  harbour  ", "HARBOUR"},         {"<cn>red", "RED"}, {"<CN> RED", "RED"}, {"<XX>RED", "XXRED"},
      {"abcdefghijklmn", "ABCDEFGHIJKL"}, {"a<b>c", "ABC"},   {"   ", ""},         {"<CN>", ""},
      {"ABCDEFGHIJK   Z", "ABCDEFGHIJK"},
  };
  for (const auto& c : cases) EXPECT_EQ(ReadName(room.session, c.typed), c.name) << c.typed;
  // A cut leaves no blank at the end, of whichever name.
  EXPECT_EQ(ReadNewName(room.session, " abcdefghijk   z"), "ABCDEFGHIJK");
  EXPECT_EQ(ReadSetName(std::string(29, 'a') + " b"), std::string(29, 'A'));
}

TEST(Names, ConfiguredLength) {
  test::InkRoom room;
  room.session.support->settings.AppendSupportValue("UDCNameCCodeLen", "30");
  for (const auto& [value, length] : {std::pair{"9", 30}, {"10", 10}, {"30", 30}, {"31", 30}, {"X", 30}, {"", 30}}) {
    room.Setting("UDCNameCCodeLen", value);
    EXPECT_EQ(ReadName(room.session, std::string(31, 'A')).size(), static_cast<std::size_t>(length)) << value;
  }
}

TEST(Names, WhatPeopleAndFilesMayBring) {
  const auto typed = [](const char* name, const char* from = "") {
    return CheckNewName(name, NameSource::Typed, 30, "BC3", from);
  };
  EXPECT_TRUE(typed("BLUE 072/A-1.5"));
  for (const char* name : {"O'NEILL", "A_B", "A%", "[RED]", "RED*", "CAF\xC3\x89", "A\nB", "\xFF"})
    EXPECT_FALSE(typed(name)) << name;
  // What stands in a name on file may stay in the next.
  EXPECT_TRUE(typed("CAF\xC3\x89 2%", "Caf\xC3\xA9 1%"));
  EXPECT_FALSE(typed("CAF\xC3\x88 2", "CAF\xC3\x89"));
  EXPECT_FALSE(CheckNewName("ELEVEN CHAR", NameSource::Typed, 10));

  const auto ofFile = [](std::string_view name) { return CheckNewName(name, NameSource::File, 30, "BC3"); };
  EXPECT_TRUE(ofFile("CAF\xC3\x89 50% (MATT), #2"));
  EXPECT_FALSE(ofFile(std::string(31, 'A')));
  // The last cannot stand in a file of formulas.
  for (const char* name : {"A<B", "A>B", "A\"B", "A'B", "A[B", "A]B", "A|B", "A*B", "A\tB", "\xFF", "\xCE\xA9"}) {
    const auto checked = ofFile(name);
    ASSERT_FALSE(checked) << name;
    EXPECT_EQ(checked.error().field, "BC3");
  }
}

TEST(ColorSets, BuiltAndTakenApart) {
  EXPECT_EQ(NameSet({"BLUE", "", "YELLOW"}), "<BLUE><YELLOW>");
  EXPECT_EQ(SplitColorSet("<BLUE><YELLOW>"), (std::vector<std::string>{"BLUE", "YELLOW"}));
  EXPECT_EQ(SplitColorSet("<BLUE><YELL"), (std::vector<std::string>{"BLUE"}));
}

TEST(ColorSets, OneContainsTheOther) {
  const struct {
    const char* formula;
    const char* candidate;
    bool contained;
  } cases[] = {
      {"<A><B>", "", true},
      {"", "", true},
      {"", "<A>", false},
      {"<A><B><C>", "<C><A>", true},
      {"<a><b>", "<B>", true},
      {"<AB>", "<A>", false},
      {"<PANTONE BLUE>", "<BLUE>", true},
      {"<BLUE>", "<pantone BLUE>", true},
      {"<PANTONEBLUE>", "<BLUE>", false},
      {"<A>", "<A><B>", false},
      {"<A>", "<A", false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ColorSetContains(c.formula, c.candidate), c.contained) << c.formula << " / " << c.candidate;
}

}  // namespace
}  // namespace vellumark
