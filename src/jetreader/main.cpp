// vellumark-jet-reader: reads Jet files for the other programs, which start it; see core/datafile/jet/jet_stream.h.

#include <charconv>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/helper_program.h"
#include "core/datafile/jet/jet_stream.h"
#include "jetreader/source.h"
#include "jetreader/table_source.h"

namespace vellumark::jet {
namespace {

constexpr std::chrono::seconds kForOnePage{3};
constexpr std::chrono::seconds kForWholeFile{120};  // where the rows of a table are sought in all of it
constexpr std::uint64_t kMemory = std::uint64_t{1} << 30;

template <class T>
T NumberOf(std::string_view text) {
  T number{};
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

void TellDefinitions(StreamWriter& out, const std::vector<std::string>& words) {
  Source source(words.at(1));
  for (std::size_t i = 2; i < words.size(); ++i) {
    const auto page = NumberOf<std::uint32_t>(words[i]);
    platform::MustGetOnWithin(kForOnePage);
    out.At(page, -1);
    try {
      out.Table(TableSource(source, page).Table());
    } catch (const Unreadable& e) {
      out.Damage({{}, page, {}, {}, e.what()});
    }
  }
}

void TellRows(StreamWriter& out, const std::vector<std::string>& words) {
  Source source(words.at(1));
  const auto fromPage = NumberOf<std::uint32_t>(words.at(3));
  const auto fromRow = NumberOf<int>(words.at(4));
  const bool careful = words.at(5) == "careful";
  platform::MustGetOnWithin(kForWholeFile);
  TableSource table(source, NumberOf<std::uint32_t>(words.at(2)));
  JetDamage fault;
  std::vector<std::uint32_t> pages = table.ListedPages(fault);
  if (words.at(6) == "stray")
    pages = table.StrayPages(pages);
  else if (fromPage == 0 && !fault.what.empty())
    out.Damage(fault);
  for (const std::uint32_t page : pages) {
    if (page < fromPage) continue;
    platform::MustGetOnWithin(kForOnePage);
    out.At(page, -1);
    const bool here = page == fromPage;
    table.TellRows(out, page, here ? fromRow : 0, careful && here);
  }
}

int Answer(const std::vector<std::string>& words) {
  StreamWriter out(stdout);
  try {
    (words.at(0) == "rows" ? TellRows : TellDefinitions)(out, words);
    out.End();
    return 0;
  } catch (const std::exception& e) {
    // Without its End the answer is broken off, which is all that whoever asked has to know.
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
}

}  // namespace
}  // namespace vellumark::jet

int main(int argc, char** argv) {
#ifndef __SANITIZE_ADDRESS__
  vellumark::platform::LimitMemory(vellumark::jet::kMemory);
#endif
  vellumark::platform::MustGetOnWithin(vellumark::jet::kForOnePage);
  return vellumark::jet::Answer({argv + 1, argv + argc});
}
