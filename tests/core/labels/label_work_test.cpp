#include "core/labels/label_work.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/base/files.h"
#include "core/settings/label_defaults.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

const std::string kDefault = "Default Label";

struct LabelWorkTest : testing::Test, InkRoom {
  LabelWorkTest() { work.Open(session, kDefault); }
  void Set(const std::string& key, const std::string& value, const std::string& gesture = {}) {
    const auto set = work.Set(key, value, gesture);
    ASSERT_TRUE(set) << set.error().text;
  }
  std::string OnFile(const std::string& key) { return LabelSetting(session, LabelKind::Label, kDefault, key); }
  LabelWork work{LabelKind::Label};
};

TEST(LabelItems, EachHasItsKeysInANewLayoutAndNoneIsLeftOut) {
  for (const LabelKind kind : {LabelKind::Label, LabelKind::Hazard, LabelKind::Formula}) {
    const LabelDesign design = NewLabelDesign(kind);
    std::size_t places = 0;
    for (const SupportRecord& record : design.Records()) places += record.key.ends_with(" Left") ? 1 : 0;
    EXPECT_EQ(ItemsOfDesign(kind).size(), places);
    for (const DesignItem& item : ItemsOfDesign(kind))
      for (const std::string& key : {item.shown, item.Key("Top"), item.Key("Left")})
        EXPECT_FALSE(design.Text(key).empty()) << key;
  }
}

TEST_F(LabelWorkTest, TakesStepsBackAndWritesNothingBeforeItIsSaved) {
  const std::string before = ReadFileBytes(session.support->label.Path());
  for (int i = 1; i <= 3; ++i) work.Place({{"Date", 100.0 * i, 10, 1, 1}}, "drag");
  work.EndGesture();
  work.Place({{"Date", 700, 10, 1, 1}, {"Color Name", -50, 1e9, 1, 1}}, "drag");
  EXPECT_EQ(work.Design().Number("Color Name Left"), 0);
  EXPECT_EQ(work.Design().Number("Color Name Top"), 288000);
  EXPECT_FALSE(work.Set("Label Width", "0"));
  EXPECT_FALSE(work.Set("Misc Text 1 Text", "a\"b"));
  EXPECT_FALSE(work.Set("Misc Text 1 Text", "Ω and more"));
  Set("Label Width", "12240");  // as it is: no step
  work.Undo();
  EXPECT_EQ(work.Design().Number("Date Left"), 300);
  work.Undo();
  EXPECT_FALSE(work.CanUndo() || work.IsChanged());
  work.Redo();
  work.Redo();
  EXPECT_EQ(work.Design().Number("Date Left"), 700);
  EXPECT_EQ(ReadFileBytes(session.support->label.Path()), before);

  prompt.Expect("Overwrite Label Layout?", Answer::No);
  EXPECT_FALSE(work.Save(session));
  EXPECT_TRUE(work.IsChanged());
  bool told = false;
  const auto hears = session.changes.Subscribe([&](const auto&) { told = true; });
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  ASSERT_TRUE(work.Save(session));
  EXPECT_TRUE(told);
  EXPECT_FALSE(work.IsChanged());
  EXPECT_EQ(OnFile("Date Left"), "700");
}

TEST_F(LabelWorkTest, KeepsPicturesUnderNamesOfTheirOwn) {
  const auto picture = [&](const std::string& folderName, const std::string& bytes,
                           const std::string& name = "logo.jpg") {
    std::filesystem::create_directories(folder / folderName);
    ReplaceFile(folder / folderName / name, bytes);
    return (folder / folderName / name).string();
  };
  const auto saved = [&](const std::string& location) {
    Set("Picture Image Location", location);
    prompt.Expect("Overwrite Label Layout?", Answer::Yes);
    const auto result = work.Save(session);
    return result ? OnFile("Picture Image Location") : result.error().text;
  };
  EXPECT_EQ(saved(picture("A", "one")), "logo.jpg");
  EXPECT_EQ(saved(picture("B", "two")), "logo 2.jpg");
  EXPECT_EQ(saved(picture("C", "one")), "logo.jpg") << "the same picture once";
  EXPECT_EQ(saved((PicturesOfLabels(session) / "logo 2.jpg").string()), "logo 2.jpg");
  EXPECT_EQ(saved(picture("D", "three", "Ω \".bmp")), "Ω \".bmp");
  EXPECT_EQ(ReadFileBytes(PicturesOfLabels(session) / "logo 2.jpg"), "two");
  ASSERT_TRUE(SaveLabelSetting(session, LabelKind::Label, kDefault, "Picture Image Location", picture("F", "six")));
  EXPECT_EQ(OnFile("Picture Image Location"), "logo 3.jpg") << "one key alone too";

  // All or nothing: a picture that has gone, and a file of layouts that cannot be written.
  Set("Date Left", "777");
  EXPECT_EQ(saved((folder / "gone.jpg").string()), (folder / "gone.jpg").string() + " is no longer there.");
  EXPECT_NE(OnFile("Date Left"), "777");
  const std::filesystem::path file = session.support->label.Path();
  std::filesystem::rename(file, folder / "aside");
  std::filesystem::create_directory(file);
  Set("Picture Image Location", picture("E", "four"));
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  EXPECT_THROW(static_cast<void>(SaveLabelLayout(session, LabelKind::Label, kDefault, work.Design().Records())),
               Failure);
  EXPECT_FALSE(std::filesystem::exists(PicturesOfLabels(session) / "logo 4.jpg"));
  std::filesystem::remove(file);
  std::filesystem::rename(folder / "aside", file);
  EXPECT_TRUE(work.IsChanged());
}

TEST_F(LabelWorkTest, ReadsLengthsInItsUnit) {
  LabelUnit unit = UnitOfDesign(work.Design());
  EXPECT_EQ(LengthText(unit, 2160), "1.500");
  EXPECT_EQ(ReadLength(unit, "1.5"), 2160);
  EXPECT_FALSE(ReadLength(unit, "wide"));
  EXPECT_FALSE(ReadLength(unit, "1e300"));
  Set("Label_UOM", " mm.");
  unit = UnitOfDesign(work.Design());
  EXPECT_EQ(ReadLength(unit, "25.4"), 1440);
  // Every place that a file can hold is shown and read as itself, near enough that typing it over moves nothing by 0.1
  // mm.
  for (int twips = 0; twips < 5000; ++twips) EXPECT_NEAR(*ReadLength(unit, LengthText(unit, twips)), twips, 1);
  for (const char* text : {"in.", " mm."}) {
    Set("Label_UOM", text);
    unit = UnitOfDesign(work.Design());
    double at = 1441;
    for (int i = 0; i < 50; ++i) at = Nudged(unit, at, 1);
    // Fifty lines on, though each place was rounded to whole twips.
    EXPECT_NEAR(at / unit.nudge, std::floor(1441 / unit.nudge) + 50, 0.04) << text;
    for (int i = 0; i < 50; ++i) at = Nudged(unit, at, -1);
    EXPECT_NEAR(at / unit.nudge, std::floor(1441 / unit.nudge), 0.04) << text;
  }
}

TEST(LabelArrange, AlignsDistributesAndKeepsInside) {
  const std::vector<PlacedItem> items{{"a", 100, 0, 300, 50}, {"b", 700, 400, 100, 50}, {"c", 250, 90, 50, 200}};
  const auto lefts = [](const std::vector<PlacedItem>& placed) {
    return std::vector<double>{placed[0].left, placed[1].left, placed[2].left};
  };
  using List = std::vector<double>;
  EXPECT_EQ(lefts(Arranged(items, Arrange::Left)), (List{100, 100, 100}));
  EXPECT_EQ(lefts(Arranged(items, Arrange::Right)), (List{500, 700, 750}));
  EXPECT_EQ(lefts(Arranged(items, Arrange::Center)), (List{300, 400, 425}));
  // From 100 to 800 there are 700 for 450 of boxes: two gaps of 125.
  EXPECT_EQ(lefts(Arranged(items, Arrange::AcrossEvenly)), (List{100, 700, 525}));
  EXPECT_EQ(Arranged(items, Arrange::Middle)[0].top, 200);
  EXPECT_EQ(Arranged(items, Arrange::DownEvenly)[2].top, 125);

  const LabelMove kept = KeptInside({.across = -500, .down = 500}, items, 1000, 600);
  EXPECT_EQ(kept.across, -100);
  EXPECT_EQ(kept.down, 150);
  const std::vector<PlacedItem> outside{{"o", 1100, 0, 100, 10}};
  EXPECT_EQ(KeptInside({.across = 40}, outside, 1000, 600).across, 0);
  EXPECT_EQ(KeptInside({.across = -40}, outside, 1000, 600).across, -40);

  // The right edge of a at 393 is near the left edge of b; its top meets nothing but the grid.
  const LabelMove snapped = Snapped({.across = 293, .down = 30}, items[0], {{items[1]}}, 1000, 600, 90, 20);
  EXPECT_EQ(snapped.across, 300);
  EXPECT_EQ(snapped.acrossLines, (List{700}));
  EXPECT_EQ(snapped.down, 0);
}

TEST_F(LabelWorkTest, ShowsTheDataOfAColor) {
  Basic("RED", {{"Color_Code", "R1"}});
  Mix("PINK", {{"RED", 100.0F}}, {{"Color_Code", "P7"}});
  session.CurrentUser = "ANN";
  Set("Misc Text 2 Text", "own");
  auto data = DataOfColor(session, work.Design(), "pink");
  ASSERT_TRUE(data);
  EXPECT_EQ((*data)["Color Name"], "PINK");
  EXPECT_EQ((*data)["Color Code"], "P7");
  EXPECT_EQ((*data)["Database"], "INK");
  EXPECT_EQ((*data)["Misc Text 2"], "own");
  EXPECT_EQ((*DataOfColor(session, work.Design(), "RED"))["Color Code"], "R1");
  EXPECT_FALSE(DataOfColor(session, work.Design(), "NONE"));
}

}  // namespace
}  // namespace vellumark::test
