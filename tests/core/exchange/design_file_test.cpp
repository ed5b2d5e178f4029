#include "core/exchange/design_file.h"

#include <gtest/gtest.h>

#include "core/base/files.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

// Takes every file for a picture but one that says that it is none.
struct AnyPicture final : PhotoMaker {
  Result<std::string> Jpeg(const std::string& bytes, const std::string& name) const override {
    if (bytes == "no picture") return Refuse("Design Photo", name);
    return bytes;
  }
};

// Two shops with a folder of photos each.
struct DesignFileTest : testing::Test {
  DesignFileTest() {
    from.Basic("RED");
    to.Basic("RED");
    fs::create_directories(from.folder / "out");
    file = from.folder / "out/designs.txt";
  }

  void Make(InkRoom& room, const std::string& id, const std::vector<PickedPhoto>& photos,
            const std::string& notes = "") {
    auto work = BeginDesign(room.session, id);
    ASSERT_TRUE(PutDesignColor(room.session, *work, {"RED", "", {}, "2.5", "30", {}}));
    for (const auto& [field, value] : std::vector<std::pair<std::string, std::string>>{{"Description", "a\\new box"},
                                                                                       {"Notes", notes},
                                                                                       {"Impressions", "5000"},
                                                                                       {"Length", "12.25"},
                                                                                       {"Width", "8"}})
      ASSERT_TRUE(EnterDesignField(*work, field, value));
    for (const PickedPhoto& photo : photos) ASSERT_TRUE(UsePhoto(room.session, *work, photo));
    ASSERT_TRUE(SaveDesign(room.session, *work));
  }
  void Export() {
    const auto written = ExportDesigns(from.session, {}, file);
    ASSERT_TRUE(written) << written.error().text;
  }
  auto Import(const std::vector<std::string>& ids = {}) { return ImportDesigns(to.session, pictures, file, ids); }
  std::string Library(const std::string& name) {
    const auto photo = PhotoFile(to.session, name);
    return photo ? ReadFileBytes(*photo) : "(none)";
  }

  InkRoom from;
  InkRoom to;
  AnyPicture pictures;
  fs::path file;
};

TEST_F(DesignFileTest, ComesBackTheSameWithItsPhotos) {
  Make(from, "BOX", {{"front", "one"}, {"back", "two"}}, "first\n\tsecond\\t");
  Make(from, "BAG", {{"front", "one"}});
  Export();
  const std::string bytes = ReadFileBytes(file);
  EXPECT_TRUE(
      bytes.starts_with("DesignID\tDescription\tCreated\tLastModified\tLastUsed\tImpressions\tLength\tWidth\t"));
  EXPECT_NE(bytes.find("first\\n\\tsecond\\\\t"), std::string::npos);
  to.Setting("UMI", "2");
  const auto report = Import();
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_EQ(report->added, 2);
  EXPECT_EQ(report->photos, 2);
  EXPECT_EQ(PhotoImportText(*report), "");
  Design sent = *ReadDesign(from.session, "BOX");
  const Design back = *ReadDesign(to.session, "BOX");
  EXPECT_FLOAT_EQ(back.slots[0].IngQty, 1.13398093F);
  sent.slots[0].IngQty = back.slots[0].IngQty;
  EXPECT_EQ(DesignFields().Cells(sent, kNewRowUses), DesignFields().Cells(back, kNewRowUses));
  EXPECT_EQ(sent.PhotoSet + sent.IngSet, back.PhotoSet + back.IngSet);
  EXPECT_EQ(Library("front.jpg") + Library("back.jpg"), "onetwo");
  // A second time nothing is new.
  to.Setting("UMI", "1");
  from.prompt.Expect("Overwrite File", Answer::Yes, "OK to overwrite existing file?");
  Export();
}

TEST_F(DesignFileTest, NoStrangersPictureShowsAndNothingIsOverwritten) {
  Make(from, "BOX", {{"same", "one"}, {"other", "two"}, {"lost", "three"}});
  Export();
  fs::remove(from.folder / "out/DesignPhotos/lost.jpg");
  Make(to, "HERE", {{"Same", "one"}, {"other", "mine"}});
  Make(to, "BOX", {{"own", "own"}});
  to.prompt.Expect("Updating Database with Designs", Answer::Ok,
                   "This update could change existing Designs found in the database.\n\nClick OK to continue.");
  const auto report = Import();
  ASSERT_TRUE(report) << report.error().text;
  EXPECT_EQ(ReadDesign(to.session, "BOX")->PhotoSet, "<own.jpg><same.jpg>");
  EXPECT_EQ(Library("other.jpg") + Library("lost.jpg"), "mine(none)");
  EXPECT_EQ(
      PhotoImportText(*report),
      "1 Photos for import matched names in the Design Photos library.\nThese photos were not imported to protect "
      "the photos already in use.\n\n1 Photos for import are missing from the import folder.\n\n1 Photos associated "
      "with the import weren't in the selected file.\n\nOpen the Job Designs window, select an imported "
      "design\nand manually add photos if necessary.");
  // Nor does an export put its photo over another one.
  ReplaceFile(from.folder / "out/DesignPhotos/other.jpg", "strange");
  from.prompt.Expect("Overwrite File", Answer::Yes);
  EXPECT_EQ(ExportDesigns(from.session, {}, file).error().title, "Export Designs");
}

TEST_F(DesignFileTest, RefusesAsAWholeWhatIsNoFileOfDesigns) {
  Make(from, "BOX", {});
  Make(from, "BAG", {{"a", "no picture"}});
  Export();
  const std::string good = ReadFileBytes(file);
  const auto with = [&](const std::string& part, const std::string& other) {
    std::string bytes = good;
    bytes.replace(bytes.find(part), part.size(), other);
    return bytes;
  };
  const std::string row = good.substr(good.rfind("BOX\t"));
  for (const auto& [bytes, why] : std::vector<std::pair<std::string, std::string>>{
           {"", "not compatible"},
           {"INK\r\nPINK\tRED\t100.000\r\n", "not compatible"},
           {good.substr(0, good.size() - 20), "Line 3"},
           {good.substr(0, good.rfind("BOX\t")).append(row).append(row), "stands in the file twice"},
           {with("\t5000\t", "\tmany\t"), "Line 2: many of Impressions"},
           {with("\tINK\t", "\tA DATABASE TOO LONG\t"), "IngDB0"},
           {with("BOX\t", "- split -\t"), "several jobs"},
           {with("<a.jpg>", "<a/b.jpg>"), "name of a photo"},
           {with("in.\tlb.", "ells\tlb."), "unit of length"},
           {good, "a.jpg"}}) {
    ReplaceFile(file, bytes);
    const auto made = Import();
    ASSERT_FALSE(made) << why;
    EXPECT_NE(made.error().text.find(why), std::string::npos) << made.error().text;
    EXPECT_TRUE(DesignIDs(to.session).empty());
  }
  EXPECT_EQ(Import({"NONE"}).error().field, "DesignID");
  ASSERT_TRUE(Import({"box"}));
  EXPECT_EQ(DesignIDs(to.session), std::vector<std::string>{"BOX"});
  ReplaceFile(file, with("in.\tlb.", "mm.\tkg."));
  const auto read = ReadDesignFile(to.session, file);
  EXPECT_FLOAT_EQ((*read)[0].design.Length, 12.25F / 25.4F);
  EXPECT_EQ((*read)[1].mod, IncomingDesign::Mod::Same);
}

}  // namespace
}  // namespace vellumark::test
