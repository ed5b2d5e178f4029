#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace vellumark {

/// A word of a PDF as another program reads it, in points from the upper left corner of the page.
struct PdfWord {
  double left;
  double top;
  double right;
  double bottom;
  std::string text;
  bool operator==(const PdfWord&) const = default;
};

/// The words of a line from left to right.
struct PdfLine {
  double bottom = 0;
  std::vector<PdfWord> words;

  std::string Text() const {
    std::string text;
    for (const PdfWord& word : words) text += (text.empty() ? "" : " ") + word.text;
    return text;
  }
};

using PdfPage = std::vector<PdfLine>;

inline std::string RunTool(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), &::pclose);
  std::string answer;
  char buffer[65536];
  for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) answer.append(buffer, n);
  return answer;
}

inline std::string Unescaped(std::string text) {
  for (const auto& [code, letter] : {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}})
    for (std::size_t at = 0; (at = text.find(code, at)) != std::string::npos; ++at)
      text.replace(at, std::strlen(code), letter);
  return text;
}

/// The pages of a PDF as pdftotext reads them: lines from top to bottom.
inline std::vector<PdfPage> ReadPdf(const std::filesystem::path& file) {
  std::istringstream all(RunTool(fmt::format("pdftotext -bbox '{}' -", file.string())));
  std::vector<std::vector<PdfWord>> words;
  for (std::string line; std::getline(all, line);) {
    if (line.find("<page ") != std::string::npos) words.emplace_back();
    PdfWord word{};
    int begins = 0;
    if (std::sscanf(line.c_str(), " <word xMin=\"%lf\" yMin=\"%lf\" xMax=\"%lf\" yMax=\"%lf\">%n", &word.left,
                    &word.top, &word.right, &word.bottom, &begins) != 4 ||
        begins == 0)
      continue;
    word.text = Unescaped(
        line.substr(static_cast<std::size_t>(begins), line.rfind("</word>") - static_cast<std::size_t>(begins)));
    words.back().push_back(word);
  }
  std::vector<PdfPage> pages;
  for (std::vector<PdfWord>& page : words) {
    std::ranges::stable_sort(page, {}, &PdfWord::bottom);
    PdfPage& lines = pages.emplace_back();
    for (const PdfWord& word : page) {
      if (lines.empty() || word.bottom - lines.back().bottom > 2.5) lines.push_back({word.bottom, {}});
      lines.back().words.push_back(word);
    }
    for (PdfLine& line : lines) std::ranges::sort(line.words, {}, &PdfWord::left);
  }
  return pages;
}

/// All lines of a page as texts.
inline std::vector<std::string> LinesOf(const PdfPage& page) {
  std::vector<std::string> texts;
  for (const PdfLine& line : page) texts.push_back(line.Text());
  return texts;
}

}  // namespace vellumark
