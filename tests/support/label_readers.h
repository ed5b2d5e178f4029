#pragma once

#include <algorithm>
#include <map>
#include <random>
#include <sstream>

#include "paper/label_print.h"
#include "support/ink_room.h"
#include "support/pdf_text.h"

namespace vellumark::test {

/// An ink room whose default layout of labels is changed at will, and printed labels are read by two programs.
struct LabelRoom : InkRoom {
  static constexpr std::string_view kLayout = "Default Label";

  void Set(const std::string& key, const std::string& value) {
    const auto saved = SaveLabelSetting(session, LabelKind::Label, kLayout, key, value);
    ASSERT_TRUE(saved) << saved.error().text;
  }
  /// Only these items, at left and top; the others hide.
  void Show(const std::map<std::string, std::pair<int, int>>& items) {
    session.support->label.Change([](SupportRecords& file) {
      const std::vector<SupportRecord> records = file.Records();
      for (const SupportRecord& r : records)
        if (r.key.ends_with(" Visible")) file.Set(r.layout, r.key, "0");
    });
    for (const auto& [item, place] : items) {
      Set(item + " Visible", "1");
      Set(item + " Left", std::to_string(place.first));
      Set(item + " Top", std::to_string(place.second));
    }
  }
  paper::LabelJob Job(const LabelData& data, const LabelOptions& options = {}) {
    return {.paper = PaperOfLayout(session, LabelKind::Label, kLayout),
            .drawings = {DrawLabel(session, kLayout, data, options)}};
  }

  /// The texts of all codes of a PDF as a scanner of that resolution sees its pages, sorted.
  std::vector<std::string> ReadByZbar(const std::filesystem::path& pdf, int dots) {
    const std::string pages = (scans / "page").string();
    RunTool(fmt::format("rm -f '{0}'*; pdftoppm -gray -aaVector no -r {1} '{2}' '{0}'", pages, dots, pdf.string()));
    std::istringstream all(RunTool("zbarimg -q --raw -Sdisable -Scode128.enable -Scode39.enable -Sqrcode.enable '" +
                                   pages + "'* 2>/dev/null"));
    std::vector<std::string> texts;
    for (std::string line; std::getline(all, line);) texts.push_back(line);
    std::ranges::sort(texts);
    return texts;
  }

  /// Labels of eight random codes each: both readers read what the check before printing lets pass, and neither reads
  /// what it announces. How many were announced.
  int ReadRandomLabels(Symbology symbology, int dots, int labels, unsigned seed) {
    Set("Label BC Type", std::string(SymbologyName(symbology)));
    Set("Label Width", "12240");
    Set("Label Length", "7200");
    std::map<std::string, std::pair<int, int>> items;
    for (int i = 0; i < 8; ++i) items[std::string(kCodes[static_cast<std::size_t>(i)]) + " BC"] = {300, 200 + i * 850};
    Show(items);
    paper::LabelJob job = Job({});
    job.drawings.clear();
    job.count = labels;
    job.dotsPerInch = dots;
    std::vector<std::string> expected;
    std::vector<std::string> announced;
    std::mt19937 random(seed);
    for (int i = 0; i < labels; ++i) {
      LabelData data;
      for (const std::string_view field : kCodes) data[field] = RandomText(symbology, random);
      job.drawings.push_back(DrawLabel(session, kLayout, data, {.identifiers = symbology == Symbology::Code128}));
      for (const paper::CodeCheck& check : paper::CheckCodes(session, job.drawings.back(), dots))
        (check.Reads ? expected : announced).push_back(ReadBackOf(symbology, check.Text));
    }
    EXPECT_EQ(expected.size() + announced.size(), kCodes.size() * job.drawings.size());
    std::ranges::sort(expected);
    EXPECT_EQ(paper::PrintLabelsToFile(session, job, folder / "codes.pdf"), labels);
    const std::vector<std::string> read = ReadByZbar(folder / "codes.pdf", dots);
    std::vector<std::string> missed;
    std::ranges::set_difference(expected, read, std::back_inserter(missed));
    EXPECT_TRUE(missed.empty()) << SymbologyName(symbology) << " at " << dots << ": "
                                << fmt::format("{}", fmt::join(missed, " / "));
    for (const std::string& text : announced) EXPECT_FALSE(std::ranges::binary_search(read, text)) << text;
    return static_cast<int>(announced.size());
  }

  static constexpr std::array<std::string_view, 8> kCodes{"Color Name",  "Lot Number",  "Lot Location", "Job Number",
                                                          "Misc Text 1", "Misc Text 2", "Short Note",   "Color Code"};
  ScratchFolder scans;

 private:
  // Up to thirty characters; the ends are none that readers differ about.
  static std::string RandomText(Symbology symbology, std::mt19937& random) {
    std::string letters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";
    if (symbology == Symbology::Code128) {
      letters = "00112233445566778899001122334455667788990011223344556677889900112233445566778899";
      for (char c = ' '; c < 127; ++c) letters += c;
    }
    // The longest often: with its tag it is 34 characters.
    std::string text(random() % 3 == 0 ? 30 : 6 + random() % 25, ' ');
    for (char& c : text) c = letters[random() % letters.size()];
    text.front() = 'X';
    text.back() = 'Z';
    return text;
  }
};

}  // namespace vellumark::test
