#include "core/cloud/remote_listing.h"

#include <array>
#include <charconv>

#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::array<std::string_view, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

template <class Number>
std::optional<Number> NumberOf(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<DateTime> Checked(const DateTime& time) {
  return ParseDateTime(time.ToText());
}

std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines = Split(text, '\n');
  for (std::string_view& line : lines)
    if (line.ends_with('\r')) line.remove_suffix(1);
  std::erase_if(lines, [](std::string_view line) { return line.empty(); });
  return lines;
}

std::optional<DateTime> MachineTime(std::string_view text) {
  if (text.size() < 14) return std::nullopt;
  const auto part = [&](std::size_t at, std::size_t size) { return NumberOf<int>(text.substr(at, size)).value_or(-1); };
  return Checked({part(0, 4), part(4, 2), part(6, 2), part(8, 2), part(10, 2), part(12, 2)});
}

// A line's words, each with the place at which it ends.
struct Word {
  std::string_view text;
  std::size_t end = 0;
};
std::vector<Word> WordsOf(std::string_view line) {
  std::vector<Word> words;
  for (std::size_t at = 0; at < line.size();) {
    const std::size_t from = line.find_first_not_of(' ', at);
    if (from == std::string_view::npos) break;
    const std::size_t to = std::min(line.find(' ', from), line.size());
    words.push_back({line.substr(from, to - from), to});
    at = to;
  }
  return words;
}

int MonthOf(std::string_view word) {
  for (std::size_t i = 0; i < kMonths.size(); ++i)
    if (EqualNoCase(word, kMonths[i])) return static_cast<int>(i) + 1;
  return 0;
}

// "09:00" of the last twelve months, or "2024".
std::optional<DateTime> UnixTime(int month, std::string_view dayWord, std::string_view word, const DateTime& now) {
  const std::optional<int> day = NumberOf<int>(dayWord);
  if (!day) return std::nullopt;
  const std::size_t colon = word.find(':');
  if (colon == std::string_view::npos) {
    const std::optional<int> year = NumberOf<int>(word);
    return year ? Checked({*year, month, *day, 0, 0, 0}) : std::nullopt;
  }
  const std::optional<int> hour = NumberOf<int>(word.substr(0, colon));
  const std::optional<int> minute = NumberOf<int>(word.substr(colon + 1));
  if (!hour || !minute) return std::nullopt;
  DateTime time{now.year, month, *day, *hour, *minute, 0};
  if (time.DayNumber() > now.DayNumber() + 1) --time.year;
  return Checked(time);
}

std::optional<RemoteFile> UnixEntry(std::string_view line, const DateTime& now) {
  const std::vector<Word> words = WordsOf(line);
  if (words.size() < 7 || (line.front() != '-' && line.front() != 'd')) return std::nullopt;
  for (std::size_t i = 3; i + 3 < words.size() && i < 7; ++i) {
    const int month = MonthOf(words[i].text);
    const std::optional<std::int64_t> size = NumberOf<std::int64_t>(words[i - 1].text);
    if (month == 0 || !size) continue;
    RemoteFile file;
    file.folder = line.front() == 'd';
    file.size = *size;
    file.date = UnixTime(month, words[i + 1].text, words[i + 2].text, now);
    if (!file.date) continue;
    file.name = line.substr(words[i + 2].end + 1);
    return file;
  }
  return std::nullopt;
}

// "03-10-26  09:00AM       <DIR>          name"
std::optional<RemoteFile> WindowsEntry(std::string_view line) {
  const std::vector<Word> words = WordsOf(line);
  if (words.size() < 4 || words[0].text.size() < 8 || words[1].text.size() < 7) return std::nullopt;
  const auto day = Split(words[0].text, '-');
  const std::string_view time = words[1].text;
  const std::string_view half = time.substr(time.size() - 2);
  const std::size_t colon = time.find(':');
  if (day.size() != 3 || colon == std::string_view::npos || (half != "AM" && half != "PM")) return std::nullopt;
  const auto number = [](std::string_view text) { return NumberOf<int>(text).value_or(-1); };
  int year = number(day[2]);
  if (year >= 0 && year < 100) year += year < 80 ? 2000 : 1900;
  const int hour = number(time.substr(0, colon)) % 12 + (half == "PM" ? 12 : 0);
  RemoteFile file;
  file.date = Checked({year, number(day[0]), number(day[1]), hour, number(time.substr(colon + 1, 2)), 0});
  file.folder = words[2].text == "<DIR>";
  const std::optional<std::int64_t> size = NumberOf<std::int64_t>(words[2].text);
  if (!file.date || (!file.folder && !size)) return std::nullopt;
  file.size = size.value_or(0);
  const std::size_t from = line.find_first_not_of(' ', words[2].end);
  file.name = line.substr(from);
  return file;
}

}  // namespace

std::vector<RemoteFile> ReadMachineListing(std::string_view text) {
  std::vector<RemoteFile> files;
  for (const std::string_view line : LinesOf(text)) {
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) continue;
    RemoteFile file;
    file.name = line.substr(blank + 1);
    bool listed = true;
    for (const std::string_view fact : Split(line.substr(0, blank), ';')) {
      const std::size_t equals = fact.find('=');
      if (equals == std::string_view::npos) continue;
      const std::string_view name = fact.substr(0, equals);
      const std::string_view value = fact.substr(equals + 1);
      if (EqualNoCase(name, "size")) file.size = NumberOf<std::int64_t>(value).value_or(0);
      if (EqualNoCase(name, "modify")) file.date = MachineTime(value);
      if (EqualNoCase(name, "type")) {
        file.folder = EqualNoCase(value, "dir");
        listed = file.folder || EqualNoCase(value, "file");
      }
    }
    if (listed) files.push_back(std::move(file));
  }
  return files;
}

std::vector<RemoteFile> ReadListing(std::string_view text, const DateTime& now) {
  std::vector<RemoteFile> files;
  for (const std::string_view line : LinesOf(text)) {
    std::optional<RemoteFile> file = UnixEntry(line, now);
    if (!file) file = WindowsEntry(line);
    if (file && file->name != "." && file->name != "..") files.push_back(std::move(*file));
  }
  return files;
}

}  // namespace vellumark
