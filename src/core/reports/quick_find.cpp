#include "core/reports/quick_find.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "core/base/text.h"
#include "core/batch/open.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr int kPiece = 500;
using Kind = QuickHit::Kind;

// How good a hit is.
enum Rank { kSame, kBegins, kWordBegins, kInside };

std::vector<std::string> WordsOf(std::string_view typed) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : Upper(typed) + ' ') {
    if (c != ' ' && c != '\n' && c != '\t') {
      word += c;
    } else if (!word.empty()) {
      words.push_back(std::exchange(word, {}));
    }
  }
  return words;
}

std::string Joined(std::initializer_list<std::string_view> parts, std::string_view between) {
  std::string text;
  for (const std::string_view part : parts) {
    if (part.empty()) continue;
    if (!text.empty()) text += between;
    text += part;
  }
  return text;
}

}  // namespace

void QuickIndex::Part::Add(Entry entry, std::string_view searched) {
  starts.push_back(static_cast<std::uint32_t>(text.size()));
  for (const char c : Upper(searched)) text += c == '\n' ? ' ' : c;
  text += '\n';
  entries.push_back(std::move(entry));
}

std::string_view QuickIndex::Part::TextOf(std::size_t entry) const {
  const std::size_t end = entry + 1 < starts.size() ? starts[entry + 1] : text.size();
  return std::string_view(text).substr(starts[entry], end - starts[entry] - 1);
}

QuickIndex::QuickIndex(Session& session) : session_(session) {
  stale_.fill(true);
  stale_[Place(Kind::Command)] = false;
  subscription_ = session.changes.Subscribe([this](const std::vector<Change>& changes) { Hear(changes); });
}

void QuickIndex::SetCommands(const std::vector<std::pair<std::string, std::string>>& commands) {
  Part part;
  std::int32_t number = 0;
  for (const auto& [name, detail] : commands) part.Add({name, detail, number++, {}, {}}, fmt::format("{} {}", name, detail));
  parts_[Place(Kind::Command)] = std::move(part);
}

void QuickIndex::Hear(const std::vector<Change>& changes) {
  for (const Change& change : changes) {
    const auto stale = [this](std::initializer_list<Kind> kinds) {
      for (const Kind kind : kinds) stale_[Place(kind)] = true;
    };
    switch (change.kind) {
      case Change::Kind::Basic:
        stale({Kind::Basic, Kind::Lot});
        break;
      case Change::Kind::Mix:
        stale({Kind::Formula, Kind::Lot});
        break;
      case Change::Kind::Batch:
        stale({Kind::Batch, Kind::Lot});
        break;
      case Change::Kind::Job:
        stale({Kind::Job, Kind::Batch});
        break;
      case Change::Kind::Design:
        stale({Kind::Design});
        break;
      case Change::Kind::DatabaseList:
      case Change::Kind::Settings:
        stale({Kind::Formula, Kind::Basic, Kind::Batch, Kind::Job, Kind::Lot, Kind::Design});
        break;
      case Change::Kind::AdditiveSet:
        break;
    }
  }
}

void QuickIndex::Begin() {
  const std::string database = session_.DataFileName + "\n" + session_.CurrentDatabase;
  const bool another = database != std::exchange(database_, database);
  for (const Kind kind : {Kind::Formula, Kind::Basic, Kind::Batch, Kind::Job, Kind::Lot, Kind::Design}) {
    const std::size_t place = Place(kind);
    // What another Database had is no answer.
    if (another) parts_[place] = {};
    if (!another && !stale_[place]) continue;
    stale_[place] = false;
    next_[place] = {};
    readings_[place] = ReadingOf(kind);
  }
}

bool QuickIndex::ReadOn(std::chrono::milliseconds atMost) {
  const auto end = std::chrono::steady_clock::now() + atMost;
  for (std::size_t place = 0; place < kKinds; ++place) {
    while (readings_[place]) {
      if (!readings_[place](next_[place])) {
        readings_[place] = {};
        parts_[place] = std::exchange(next_[place], {});
      }
      if (std::chrono::steady_clock::now() >= end) return true;
    }
  }
  return false;
}

QuickIndex::Reading QuickIndex::ReadingOf(Kind kind) const {
  const Session& session = session_;
  // By a column that is an index, from one piece to the next.
  const auto byName = [&session](const std::string& columns, const std::string& table, const std::string& name,
                                 const auto& add) -> Reading {
    const std::string query =
        fmt::format("SELECT {0} FROM {1} WHERE {2} > ?1 ORDER BY {2} LIMIT {3}", columns, table, name, kPiece);
    return [&session, query, add, after = std::string()](Part& part) mutable {
      Statement row = session.File().Prepare(query);
      row.Bind(1, after);
      int read = 0;
      for (; row.Step(); ++read) {
        after = row.Text(0);
        add(part, row);
      }
      return read == kPiece;
    };
  };
  switch (kind) {
    case Kind::Formula:
      return byName("Color_Name, Color_Code", session.QuotedTable(schema::Mix), "Color_Name",
                    [](Part& part, const Statement& row) {
                      part.Add({row.Text(0), row.Text(1), 0, ColorKind::Mix, {}}, row.Text(0) + " " + row.Text(1));
                    });
    case Kind::Basic:
      return byName("Color_Name, Color_Code, Additive", session.QuotedTable(schema::Basic), "Color_Name",
                    [](Part& part, const Statement& row) {
                      part.Add({row.Text(0), Joined({row.Bool(2) ? "Additive" : "", row.TextView(1)}, "  "), 0, {}, {}},
                               row.Text(0) + " " + row.Text(1));
                    });
    case Kind::Job:
      return byName("DISTINCT JobNumber", Quoted(schema::JobRecords.name), "JobNumber",
                    [](Part& part, const Statement& row) {
                      part.Add({row.Text(0), {}, 0, {}, {}}, row.Text(0) + " ");
                    });
    case Kind::Design:
      return byName("DesignID, Description", Quoted(schema::Designs.name), "DesignID",
                    [](Part& part, const Statement& row) {
                      part.Add({row.Text(0), row.Text(1), 0, {}, {}}, row.Text(0) + " " + row.Text(1));
                    });
    case Kind::Batch:
      return [&session, before = std::optional<BatchListRow>()](Part& part) mutable {
        std::vector<BatchListRow> batches = BatchesBefore(session, before, kPiece);
        for (const BatchListRow& batch : batches)
          part.Add({fmt::format("{:06}", batch.BatchNo),
                    Joined({batch.Color_Name, batch.JobNumber}, "  "),
                    batch.BatchNo,
                    {},
                    {}},
                   fmt::format("{} {} {}", batch.BatchNo, batch.Color_Name, batch.JobNumber));
        if (!batches.empty()) before = batches.back();
        return batches.size() == kPiece;
      };
    case Kind::Lot:
      if (session.InvLotTracking != 1) break;
      return [&session, after = std::int64_t{0},
              kinds = std::vector{ColorKind::Mix, ColorKind::Basic}](Part& part) mutable {
        const ColorKind kind = kinds.back();
        Statement row = session.File().Prepare(fmt::format(
            "SELECT RowKey, LotNumber, LotCName, LotLoc, LotContID FROM {} WHERE RowKey > ?1 ORDER BY RowKey "
            "LIMIT {}",
            session.QuotedTable(kind == ColorKind::Mix ? schema::MixLotInv : schema::BasicLotInv), kPiece));
        row.Bind(1, after);
        int read = 0;
        for (; row.Step(); ++read) {
          after = row.Whole(0);
          part.Add(
              {row.Text(1), Joined({row.TextView(2), row.TextView(3), row.TextView(4)}, "  "), 0, kind, row.Text(2)},
              fmt::format("{} {} {} {}", row.TextView(1), row.TextView(2), row.TextView(3), row.TextView(4)));
        }
        if (read == kPiece) return true;
        after = 0;
        kinds.pop_back();
        return !kinds.empty();
      };
    case Kind::Command:
      break;
  }
  return [](Part&) { return false; };
}

void QuickIndex::FindIn(Kind kind, const std::vector<std::string>& words, std::size_t most,
                        std::vector<std::pair<int, QuickHit>>& hits) const {
  const std::size_t place = Place(kind);
  const Part& part = parts_[place].entries.empty() ? next_[place] : parts_[place];
  std::vector<std::string> wanted = words;
  // A Batch is called "42" as well as "000042".
  if (kind == Kind::Batch)
    for (std::string& word : wanted)
      if (word.size() == 6 && word.find_first_not_of("0123456789") == std::string::npos)
        word.erase(0, std::min(word.find_first_not_of('0'), word.size() - 1));
  std::string whole;
  for (const std::string& word : wanted) whole += (whole.empty() ? "" : " ") + word;

  const auto rankOf = [&](std::size_t entry, bool begins) {
    const std::string_view text = part.TextOf(entry);
    if (!begins) return text.find(' ' + wanted.front()) != text.npos ? kWordBegins : kInside;
    const bool number = kind == Kind::Batch && text.starts_with(whole + ' ');
    return number || (part.entries[entry].name.size() == whole.size() && text.starts_with(whole)) ? kSame : kBegins;
  };
  std::array<std::vector<std::size_t>, 4> found;
  // From one line to the next in which it stands, until `enough`.
  const auto look = [&](const std::string& needle, const auto& enough) {
    const std::size_t skip = needle.front() == '\n' ? 1 : 0;
    for (std::size_t at = part.text.find(needle, 1 - skip); at != std::string::npos;) {
      const auto next = std::ranges::upper_bound(part.starts, at + skip);
      const auto entry = static_cast<std::size_t>(next - part.starts.begin()) - 1;
      const std::string_view text = part.TextOf(entry);
      if (std::ranges::all_of(wanted, [&](const std::string& word) { return text.find(word) != text.npos; })) {
        std::vector<std::size_t>& those = found[rankOf(entry, at + skip == part.starts[entry])];
        if (those.size() < most && std::ranges::find(those, entry) == those.end()) those.push_back(entry);
        if (enough()) return;
      }
      at = next == part.starts.end() ? std::string::npos : part.text.find(needle, *next - skip);
    }
  };
  // Numbers of Batches and lots stand in another order than that of their texts.
  if (kind == Kind::Batch || kind == Kind::Lot)
    look('\n' + whole + ' ', [&] { return found[kSame].size() + found[kBegins].size() >= most; });
  look('\n' + wanted.front(), [&] { return found[kSame].size() + found[kBegins].size() >= most; });
  if (found[kSame].size() + found[kBegins].size() < most)
    look(wanted.front(),
         [&] { return found[kSame].size() + found[kBegins].size() + found[kWordBegins].size() >= most; });
  std::size_t taken = 0;
  for (const Rank rank : {kSame, kBegins, kWordBegins, kInside})
    for (const std::size_t entry : found[rank]) {
      if (taken++ >= most) return;
      const Entry& it = part.entries[entry];
      hits.emplace_back(rank, QuickHit{kind, it.name, it.detail, it.number, it.color, it.owner});
    }
}

std::vector<QuickHit> QuickIndex::Find(std::string_view typed, std::size_t most) const {
  const std::vector<std::string> words = WordsOf(typed);
  std::vector<QuickHit> answer;
  if (words.empty()) return answer;
  std::vector<std::pair<int, QuickHit>> hits;
  for (const Kind kind : {Kind::Command, Kind::Formula, Kind::Basic, Kind::Batch, Kind::Job, Kind::Lot, Kind::Design})
    FindIn(kind, words, most, hits);
  std::ranges::stable_sort(hits, {}, &std::pair<int, QuickHit>::first);
  for (auto& [rank, hit] : hits) answer.push_back(std::move(hit));
  return answer;
}

std::size_t QuickIndex::Size() const {
  std::size_t size = 0;
  for (const Part& part : parts_) size += part.entries.size();
  return size;
}

}  // namespace vellumark
