#include "core/datafile/jet/jet_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <system_error>
#include <utility>

#include "core/base/counted.h"
#include "core/base/files.h"
#include "core/base/helper_program.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/jet/jet_format.h"
#include "core/datafile/jet/jet_stream.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using jet::StreamReader;
using jet::Tells;

constexpr std::size_t kPage = 4096;  // 2048 in version 3
constexpr std::size_t kDamageKept = 1000;
constexpr int kMostDeaths = 100;              // of the reader over one table
constexpr std::chrono::seconds kSilence{30};  // while it waits for a disk; it gives itself less for work
constexpr std::uint32_t kSystemObject = 0x80000002;
constexpr int kTableObject = 1;

fs::path ReaderProgram() {
  const fs::path here = platform::ExecutablePath().parent_path();
  const fs::path beside = here / jet::kReaderProgram;
  std::error_code error;
  return fs::exists(beside, error) ? beside : here.parent_path() / "libexec" / "vellumark" / jet::kReaderProgram;
}

/// Where a reading stands.
struct Position {
  std::uint32_t page = 0;
  int row = 0;
  bool operator==(const Position&) const = default;
};

/// One run of the program that reads.
class Run {
 public:
  explicit Run(const std::vector<std::string>& arguments)
      : program_(ReaderProgram()),
        helper_(program_, arguments, failed_),
        stream_([this](char* buffer, std::size_t size) {
          std::error_code error;
          return helper_.Read(buffer, size, kSilence, error);
        }) {
    if (failed_)
      throw Failure(program_.string(), "the program that reads Jet files cannot be started: " + failed_.message());
  }
  StreamReader& Stream() { return stream_; }

 private:
  fs::path program_;
  std::error_code failed_;
  platform::HelperProgram helper_;
  StreamReader stream_;
};

/// Reads the rows of one table, from run to run where one dies of what it reads.
class TableReading {
 public:
  TableReading(const fs::path& path, const JetTable& table, const std::function<bool(const JetRow&)>& take)
      : path_(path), table_(table), take_(take) {
    row_.values.resize(table.columns.size());
  }

  JetReading All() {
    Walk("listed");
    if (!reading_.stopped && reading_.rows + lost_ < table_.rows) {
      const std::int64_t before = reading_.rows;
      Walk("stray");
      if (reading_.rows > before)
        Tell({{}, {}, {}, {}, Counted(reading_.rows - before, "row") + " came from pages that the table had lost"});
    }
    if (!reading_.stopped && reading_.rows < table_.rows)
      Tell({{},
            {},
            {},
            {},
            fmt::format("says that it has {}, of which {} could be read", Counted(table_.rows, "row"), reading_.rows)});
    return std::move(reading_);
  }

 private:
  // The rows of one kind of pages, those that the table lists or those that only name the table.
  void Walk(std::string_view pages) {
    Position from;
    bool careful = false;
    for (int deaths = 0; !reading_.stopped; ++deaths) {
      if (deaths == kMostDeaths) {
        Tell({{}, from.page, {}, {}, "too much is damaged here; the rest of the table was not read"});
        return;
      }
      const std::optional<Position> died = Follow(from, careful, pages);
      if (!died) return;
      if (!careful || died->page != from.page) {
        from = {died->page, std::max(0, died->row)};
      } else if (died->page == 0) {
        Tell({{}, table_.page, {}, {}, "the reader cannot get past the definition of the table"});
        return;
      } else if (died->row < 0) {
        Lost({{}, died->page, {}, {}, "the reader cannot get past this page"});
        from = {died->page + 1, 0};
      } else {
        Lost({{}, died->page, died->row, {}, "the reader cannot get past this row"});
        from = {died->page, died->row + 1};
      }
      careful = true;
    }
  }

  // Where it died, or nothing when it got through.
  std::optional<Position> Follow(Position from, bool careful, std::string_view pages) {
    Position at = from;
    Run run({"rows", path_.string(), std::to_string(table_.page), std::to_string(from.page), std::to_string(from.row),
             careful ? "careful" : "quick", std::string(pages)});
    StreamReader& stream = run.Stream();
    for (;;) {
      try {
        switch (stream.Next()) {
          case Tells::At:
            stream.At(at.page, at.row);
            continue;
          case Tells::Damage:
            Lost(stream.Damage());
            continue;
          case Tells::Row:
            stream.Row(row_);
            at = {row_.page, row_.row + 1};
            break;
          case Tells::End:
            return std::nullopt;
          default:
            return at;
        }
      } catch (const jet::BrokenStream&) {
        return at;
      }
      ++reading_.rows;
      if (!take_(row_)) {
        reading_.stopped = true;
        return std::nullopt;
      }
    }
  }

  void Lost(JetDamage damage) {
    if (damage.row && damage.field.empty()) ++lost_;
    Tell(std::move(damage));
  }

  void Tell(JetDamage damage) {
    damage.table = table_.name;
    ++reading_.faults;
    if (reading_.damage.size() < kDamageKept) reading_.damage.push_back(std::move(damage));
  }

  const fs::path& path_;
  const JetTable& table_;
  const std::function<bool(const JetRow&)>& take_;
  JetRow row_;
  JetReading reading_;
  std::int64_t lost_ = 0;
};

/// Reads definitions of tables, in one run as long as none dies of one.
class Definitions {
 public:
  Definitions(const fs::path& path, std::vector<JetDamage>& damage) : path_(path), damage_(damage) {}

  /// Of tables that have their names and pages already; those that cannot be read are left out.
  std::vector<JetTable> Read(const std::vector<JetTable>& named) {
    std::vector<JetTable> read;
    for (std::size_t next = 0; next < named.size();) next = Follow(named, next, read);
    return read;
  }

 private:
  std::size_t Follow(const std::vector<JetTable>& named, std::size_t next, std::vector<JetTable>& read) {
    constexpr std::size_t kInOneRun = 500;
    const std::size_t end = std::min(named.size(), next + kInOneRun);
    std::vector<std::string> arguments{"definitions", path_.string()};
    for (std::size_t i = next; i < end; ++i) arguments.push_back(std::to_string(named[i].page));
    Run run(arguments);
    StreamReader& stream = run.Stream();
    try {
      for (std::size_t i = next;;) {
        switch (stream.Next()) {
          case Tells::At: {
            Position ignored;
            stream.At(ignored.page, ignored.row);
            next = i;
            continue;
          }
          case Tells::Table:
            read.push_back(stream.Table());
            read.back().name = named.at(i++).name;
            continue;
          case Tells::Damage:
            damage_.push_back(stream.Damage());
            damage_.back().table = named.at(i++).name;
            continue;
          case Tells::End:
            return end;
          default:
            throw jet::BrokenStream("no answer");
        }
      }
    } catch (const jet::BrokenStream&) {
      damage_.push_back(
          {named[next].name, named[next].page, {}, {}, "the reader cannot get past the definition of the table"});
      return next + 1;
    }
  }

  const fs::path& path_;
  std::vector<JetDamage>& damage_;
};

bool IsProtected(std::string_view page, int version) {
  constexpr std::size_t kOldPassword = 20;
  constexpr std::size_t kPassword = 40;
  if (version == 3)
    return page.substr(jet::kPasswordAt, kOldPassword).find_first_not_of('\0') != std::string_view::npos;
  // An empty password is the day on which the file was made, over and over.
  const double created = jet::Read<double>(page, jet::kCreatedAt);
  const double day = std::trunc(created);
  const auto mask = std::abs(day) < 1e6 ? static_cast<std::int32_t>(day) : 0;
  for (std::size_t at = 0; at < kPassword; at += sizeof mask)
    if (jet::Read<std::int32_t>(page, jet::kPasswordAt + at) != mask) return true;
  return false;
}

// 3 or 4.
int CheckHeader(const fs::path& path) {
  std::string page = ReadFileBytes(path, kPage);
  const auto fail = [&](const char* cause) { throw Failure(path.string(), cause); };
  const std::string_view signature =
      std::string_view(page).substr(std::min(page.size(), jet::kSignatureAt), jet::kSignature.size());
  if (signature == jet::kLaterSignature)
    fail("is of a later format of its program (.accdb); save it there in the format .mdb of 2000 to 2003");
  if (signature != jet::kSignature) fail("is no Jet file");
  const auto size = fs::file_size(path);
  if (page.size() < kPage || size < kPage * 3) fail("is cut short: nothing of its tables is there");
  const auto format = jet::Read<std::uint32_t>(page, jet::kVersionAt);
  if (format > 1) fail("is of a later format of its program; save it there in the format .mdb of 2000 to 2003");
  const int version = format == 0 ? 3 : 4;
  jet::MaskHeader(page);
  if (jet::Read<std::uint32_t>(page, jet::kKeyAt) != 0)
    fail("is encrypted; it has to be decrypted by the program that made it");
  if (IsProtected(page, version))
    fail("is protected by a password, which has to be taken off by the program that made it");
  return version;
}

}  // namespace

namespace jet {

void MaskHeader(std::string& page) {
  constexpr std::array<std::uint8_t, 4> kKey{0xC7, 0xDA, 0x39, 0x6B};
  std::array<std::uint8_t, 256> state{};
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  std::uint8_t j = 0;
  for (std::size_t i = 0; i < state.size(); ++i) {
    j = static_cast<std::uint8_t>(j + state[i] + kKey[i % kKey.size()]);
    std::swap(state[i], state[j]);
  }
  std::uint8_t i = 0;
  j = 0;
  for (std::size_t at = kMaskAt; at < kMaskAt + kMaskBytes; ++at) {
    j = static_cast<std::uint8_t>(j + state[++i]);
    std::swap(state[i], state[j]);
    page[at] = static_cast<char>(page[at] ^ state[static_cast<std::uint8_t>(state[i] + state[j])]);
  }
}

}  // namespace jet

std::optional<std::size_t> JetTable::Find(std::string_view column) const {
  const auto found = std::ranges::find_if(columns, [&](const JetColumn& c) { return EqualNoCase(c.name, column); });
  if (found == columns.end()) return std::nullopt;
  return static_cast<std::size_t>(found - columns.begin());
}

std::string JetDamage::Text() const {
  std::string text = table.empty() ? "The file" : "Table " + table;
  if (page) text += fmt::format(", page {}", *page);
  if (row) text += fmt::format(", row {}", *row);
  if (!field.empty()) text += ", field " + field;
  return text + ": " + what;
}

bool JetFile::IsJetFile(const fs::path& path) {
  const std::string start = ReadFileBytes(path, jet::kSignatureAt + jet::kSignature.size());
  return start.ends_with(jet::kSignature) || start.ends_with(jet::kLaterSignature);
}

JetFile JetFile::Open(const fs::path& path) {
  JetFile file;
  file.path_ = path;
  file.version_ = CheckHeader(path);
  const auto size = fs::file_size(path);
  if (size % (file.version_ == 3 ? kPage / 2 : kPage) != 0)
    file.damage_.push_back({{}, {}, {}, {}, "is cut: its last page is not whole"});
  Definitions definitions(path, file.damage_);

  const std::vector<JetTable> catalog = definitions.Read({{"MSysObjects", {}, 0, jet::kCatalogPage}});
  const auto place = [&](std::string_view name) {
    const auto found = catalog.empty() ? std::nullopt : catalog.front().Find(name);
    if (!found) throw Failure(path.string(), "is damaged: its list of tables cannot be read");
    return *found;
  };
  const std::size_t id = place("Id"), name = place("Name"), type = place("Type"), flags = place("Flags");
  std::vector<JetTable> named;
  JetReading reading =
      TableReading(path, catalog.front(), [&](const JetRow& row) {
        const auto& values = row.values;
        if (values[type].Whole() == kTableObject &&
            (static_cast<std::uint32_t>(values[flags].Whole()) & kSystemObject) == 0)
          named.push_back({values[name].Text(), {}, 0, static_cast<std::uint32_t>(values[id].Whole()) & 0xFFFFFF});
        return true;
      }).All();
  std::ranges::move(reading.damage, std::back_inserter(file.damage_));
  if (reading.rows == 0) throw Failure(path.string(), "is damaged: its list of tables cannot be read");
  file.tables_ = definitions.Read(named);
  return file;
}

const JetTable* JetFile::Find(std::string_view table) const {
  const auto found = std::ranges::find_if(tables_, [&](const JetTable& t) { return EqualNoCase(t.name, table); });
  return found == tables_.end() ? nullptr : &*found;
}

JetReading JetFile::Read(const JetTable& table, const std::function<bool(const JetRow&)>& take) const {
  return TableReading(path_, table, take).All();
}

std::optional<DateTime> JetDate(double days) {
  constexpr double kSecondsOfDay = 86400;
  constexpr double kFirst = -657434;   // 0100-01-01
  constexpr double kBehind = 2958466;  // 10000-01-01
  if (!(days > kFirst - 1 && days < kBehind)) return std::nullopt;
  const double whole = std::trunc(days);
  auto day = static_cast<std::int64_t>(whole);
  auto seconds = static_cast<std::int64_t>(std::round(std::abs(days - whole) * kSecondsOfDay));
  if (seconds == static_cast<std::int64_t>(kSecondsOfDay)) {
    seconds = 0;
    ++day;
  }
  if (day < static_cast<std::int64_t>(kFirst) || day >= static_cast<std::int64_t>(kBehind)) return std::nullopt;
  DateTime date = DateTime::FromDayNumber(day - jet::kDayOfEpoch);
  date.hour = static_cast<int>(seconds / 3600);
  date.minute = static_cast<int>(seconds / 60 % 60);
  date.second = static_cast<int>(seconds % 60);
  return date;
}

double JetDays(const DateTime& date) {
  const auto day = static_cast<double>(date.DayNumber() + jet::kDayOfEpoch);
  const double time = (date.hour * 3600 + date.minute * 60 + date.second) / 86400.0;
  return day < 0 ? day - time : day + time;
}

}  // namespace vellumark
