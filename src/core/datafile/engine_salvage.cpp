#include "core/datafile/engine_salvage.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine.h"
#include "core/datafile/engine_pages.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr std::int64_t kFirstKey = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLastKey = std::numeric_limits<std::int64_t>::max();
constexpr int kDeepest = 32;  // a tree of pages is flat
constexpr std::size_t kMostNames = 200;

// A line of the file's own list of tables and indexes.
struct Listed {
  bool index = false;
  std::string name;
  std::string of;  // the table of an index
  std::string layout;
  std::uint32_t root = 0;
};

// The keys of rows that stand below a page that cannot be read.
struct Hole {
  std::int64_t low = kFirstKey;
  std::int64_t high = kLastKey;
  bool Takes(std::int64_t key) const { return key > low && key <= high; }
};

// A table on its way into the new file.
struct Target {
  SalvagedTable told;
  const Table* layout = nullptr;  // null for one that this program does not know
  std::uint32_t root = 0;
  std::vector<int> places;  // of each value of a row, among the parameters; -1 for the row's own number
  std::size_t fields = 0;   // without the row's own number
  std::string insert;       // with the row's number as the last parameter
  std::string insertUnnumbered;
  std::vector<Hole> holes;
  bool adopted = false;  // rows that stood below a page that cannot be read
};

std::string_view Unquoted(std::string_view text, std::string_view before) {
  const std::size_t at = FindNoCase(text, before);
  if (at == std::string_view::npos) return {};
  std::string_view rest = text.substr(at + before.size());
  if (!rest.starts_with('"')) return rest.substr(0, rest.find_first_of(" ("));
  rest.remove_prefix(1);
  return rest.substr(0, rest.find('"'));
}

// The list tells a table's name three times; two that agree are believed.
std::string NameOf(const std::string& name, const std::string& of, std::string_view layout) {
  const std::string_view told = Unquoted(layout, "CREATE TABLE ");
  return name != of && of == told ? of : name;
}

std::optional<Listed> ListedIn(const PageRow& row) {
  if (row.cells.size() != 5 || !row.cells[1].IsText() || !row.cells[2].IsText() || !row.cells[4].IsText())
    return std::nullopt;
  Listed listed;
  listed.layout = row.cells[4].Text();
  listed.index =
      FindNoCase(listed.layout, " INDEX ") != std::string::npos && FindNoCase(listed.layout, "CREATE TABLE ") != 0;
  if (!listed.index && FindNoCase(listed.layout, "(") == std::string::npos) return std::nullopt;
  listed.name = listed.index ? row.cells[1].Text() : NameOf(row.cells[1].Text(), row.cells[2].Text(), listed.layout);
  listed.of = row.cells[2].Text();
  listed.root = static_cast<std::uint32_t>(row.cells[3].Whole());
  return listed;
}

// The columns between the outer brackets, by name; without the rest of what stands there.
std::vector<std::string> ColumnsOf(std::string_view layout) {
  std::vector<std::string> columns;
  const std::size_t open = layout.find('(');
  std::string_view rest = open == std::string_view::npos ? std::string_view{} : layout.substr(open + 1);
  while (!rest.empty()) {
    const std::size_t comma = rest.find(',');
    std::string_view column = TrimView(rest.substr(0, comma));
    if (column.starts_with('"')) {
      column.remove_prefix(1);
      column = column.substr(0, column.find('"'));
    } else {
      column = column.substr(0, column.find(' '));
    }
    columns.emplace_back(column);
    rest = comma == std::string_view::npos ? std::string_view{} : rest.substr(comma + 1);
  }
  return columns;
}

class Salvager {
 public:
  Salvager(const std::filesystem::path& damaged, Database& fresh)
      : pages_(damaged), fresh_(fresh), used_(std::size_t{pages_.Count()} + 1), child_(used_.size()) {}

  Salvage Run() {
    for (const std::uint32_t page : pages_.FreePages())
      if (page < used_.size()) used_[page] = true;
    for (std::uint32_t page = 1; page <= pages_.Count(); ++page)
      if (!used_[page])
        for (const std::uint32_t child : ChildrenOf(pages_, page))
          if (child < child_.size()) child_[child] = true;
    ReadList();
    MakeTargets();
    for (Target& target : targets_) ReadTable(target);
    AdoptStrays();
    for (Target& target : targets_) NameLost(target);
    MakeOtherIndexes();
    std::erase_if(targets_, [](const Target& target) { return target.layout == nullptr && target.told.rows == 0; });
    Salvage salvage;
    salvage.strayPages = strayPages_;
    const auto known = [](const Target& target) { return target.layout != nullptr && target.told.rows > 0; };
    if (std::ranges::none_of(targets_, known)) return salvage;
    for (Target& target : targets_) salvage.tables.push_back(std::move(target.told));
    return salvage;
  }

 private:
  // ---- The list of tables

  void ReadList() {
    Hole all;
    std::vector<Hole> holes;
    std::int64_t lost = 0;
    Walk(
        1, all, kDeepest, [&](const PageRow& row) { List(row); }, holes, lost);
    if (holes.empty() && lost == 0 && !listed_.empty()) return;
    for (std::uint32_t page = 2; page <= pages_.Count(); ++page) {
      if (used_[page]) continue;
      const auto tree = ReadTreePage(pages_, page);
      if (!tree || !tree->leaf || tree->rows.empty()) continue;
      if (!std::ranges::all_of(tree->rows, [](const PageRow& row) { return ListedIn(row).has_value(); })) continue;
      used_[page] = true;
      for (const PageRow& row : tree->rows) List(row);
    }
  }

  void List(const PageRow& row) {
    auto listed = ListedIn(row);
    if (!listed) return;
    const bool twice = std::ranges::any_of(listed_, [&](const Listed& other) {
      return other.index == listed->index && EqualNoCase(other.name, listed->name);
    });
    if (!twice && !StartsWithNoCase(listed->name, "sqlite_")) listed_.push_back(*std::move(listed));
  }

  // ---- The tables of the new file

  void MakeTargets() {
    std::set<std::string> prefixes;
    for (const Listed& listed : listed_) {
      if (listed.index) continue;
      const Table* layout = KnownLayout(listed.name);
      if (layout != nullptr && layout->name.starts_with('_'))
        prefixes.insert(listed.name.substr(0, listed.name.size() - layout->name.size()));
      if (auto target = TargetFor(listed.name, layout, listed.layout)) {
        target->root = listed.root;
        targets_.push_back(*std::move(target));
      }
    }
    // What the list lost of itself may still be there.
    if (listed_.empty()) return;
    const auto add = [&](const std::string& name, const Table* layout) {
      const auto is = [&](const Target& target) { return EqualNoCase(target.told.name, name); };
      if (std::ranges::any_of(targets_, is)) return;
      possible_.emplace_back(name, layout);
    };
    for (const Table* table : schema::Global()) add(table->name, table);
    add(schema::Users.name, &schema::Users);
    for (const std::string& prefix : prefixes)
      for (const Table* table : schema::PerDatabase()) add(TableName(prefix, *table), table);
  }

  // Made in the new file. Nothing for a table of which the layout cannot be read.
  std::optional<Target> TargetFor(const std::string& name, const Table* layout, std::string_view stored) {
    Target target;
    target.told.name = name;
    target.layout = layout;
    std::vector<std::string> columns = ColumnsOf(stored);
    const std::string rowKey = layout != nullptr ? layout->rowKey : std::string(kRowKey);
    if (layout != nullptr) {
      fresh_.CreateTable(name, *layout);
      columns = MendedColumns(columns, *layout);
    } else if (!MakeUnknown(stored)) {
      return std::nullopt;
    }
    std::string names;
    std::string marks;
    for (const std::string& column : columns) {
      if (EqualNoCase(column, rowKey)) {
        target.places.push_back(-1);
        continue;
      }
      const bool known = layout == nullptr || layout->Find(column) >= 0;
      target.places.push_back(known ? static_cast<int>(++target.fields) : 0);
      if (!known) continue;
      names += Quoted(column) + ", ";
      marks += fmt::format("?{}, ", target.fields);
    }
    const bool numbered = std::ranges::find(target.places, -1) != target.places.end() || layout != nullptr;
    target.insert = fmt::format("INSERT OR IGNORE INTO {} ({}{}) VALUES ({}?{})", Quoted(name), names,
                                numbered ? Quoted(rowKey) : "rowid", marks, target.fields + 1);
    if (names.empty()) return std::nullopt;
    target.insertUnnumbered = fmt::format("INSERT OR IGNORE INTO {} ({}) VALUES ({})", Quoted(name),
                                          names.substr(0, names.size() - 2), marks.substr(0, marks.size() - 2));
    return target;
  }

  bool MakeUnknown(std::string_view stored) {
    if (!stored.starts_with("CREATE TABLE ")) return false;
    try {
      fresh_.Execute(stored);
      return true;
    } catch (const Failure&) {
      return false;  // nobody could read it, nor say what its rows mean
    }
  }

  // A name that the layout does not know stands for the one that is missing, when there is only one of each; a list
  // that makes no sense is taken for that of the layout.
  static std::vector<std::string> MendedColumns(std::vector<std::string> columns, const Table& layout) {
    std::vector<std::string> ordered;
    for (const Field& field : layout.fields) ordered.push_back(field.name);
    ordered.push_back(layout.rowKey);
    std::vector<std::size_t> strange;
    for (std::size_t i = 0; i < columns.size(); ++i)
      if (layout.Find(columns[i]) < 0 && !EqualNoCase(columns[i], layout.rowKey)) strange.push_back(i);
    std::vector<std::string> missing;
    for (const std::string& name : ordered)
      if (std::ranges::none_of(columns, [&](const std::string& column) { return EqualNoCase(column, name); }))
        missing.push_back(name);
    if (strange.size() == 1 && missing.size() == 1) {
      columns[strange.front()] = missing.front();
      return columns;
    }
    return columns.size() < 2 || (strange.size() > 1 && columns.size() == ordered.size()) ? ordered : columns;
  }

  // Those of the layout came with their tables.
  void MakeOtherIndexes() {
    std::vector<std::string> there = fresh_.StoredIndexes();
    for (const Listed& listed : listed_) {
      const auto is = [&](const std::string& name) { return EqualNoCase(name, listed.name); };
      if (!listed.index || !listed.layout.starts_with("CREATE INDEX ") || std::ranges::any_of(there, is)) continue;
      if (!fresh_.TableExists(listed.of)) continue;
      try {
        fresh_.Execute(listed.layout);
      } catch (const Failure&) {
        continue;  // of a damaged text; an index holds nothing that its table does not
      }
    }
  }

  // ---- Rows

  void Put(Target& target, const PageRow& row) {
    Statement insert = fresh_.Prepare(target.insert);
    Bind(target, row, insert);
    if (insert.Bind(static_cast<int>(target.fields) + 1, row.key).Run() == 0) {
      // Another row bears the number already: one of them lost its own.
      Statement unnumbered = fresh_.Prepare(target.insertUnnumbered);
      Bind(target, row, unnumbered);
      unnumbered.Run();
    }
    ++target.told.rows;
    target.told.cutRows += row.cut;
  }

  static void Bind(const Target& target, const PageRow& row, Statement& insert) {
    for (std::size_t i = 0; i < target.places.size(); ++i)
      if (target.places[i] > 0) insert.Bind(target.places[i], i < row.cells.size() ? row.cells[i] : Value());
  }

  // A row may lack fields that came later; none has more than its table.
  static bool CanBeOf(const Target& target, const PageRow& row) { return row.cells.size() <= target.places.size(); }

  void ReadTable(Target& target) {
    if (target.root < 2 || target.root >= used_.size() || child_[target.root] || !LooksLike(target)) {
      target.holes.emplace_back();
      return;
    }
    Walk(
        target.root, Hole{}, kDeepest,
        [&](const PageRow& row) {
          CanBeOf(target, row) ? Put(target, row) : static_cast<void>(++target.told.lostRows);
        },
        target.holes, target.told.lostRows);
  }

  // Whether the first rows below the page that the list names could be those of the table.
  bool LooksLike(const Target& target) {
    std::uint32_t page = target.root;
    for (int deep = kDeepest; target.layout != nullptr && deep > 0; --deep) {
      const auto tree = ReadTreePage(pages_, page);
      if (!tree || (!tree->leaf && tree->children.empty())) return false;
      if (!tree->leaf) {
        page = tree->children.front().page;
        continue;
      }
      const auto fitting = std::ranges::count_if(
          tree->rows, [&](const PageRow& row) { return CanBeOf(target, row) && FitsRow(*target.layout, row); });
      return 2 * fitting >= std::ssize(tree->rows);
    }
    return true;
  }

  // The rows below a page, in order; what cannot be read is a hole.
  template <class Take>
  void Walk(std::uint32_t page, const Hole& keys, int deep, const Take& take, std::vector<Hole>& holes,
            std::int64_t& lost) {
    const auto tree = page < used_.size() && !used_[page] && deep > 0 ? ReadTreePage(pages_, page) : std::nullopt;
    if (!tree || !IsFor(*tree, keys)) {
      holes.push_back(keys);
      return;
    }
    used_[page] = true;
    lost += tree->lostRows;
    for (const PageRow& row : tree->rows) take(row);
    std::int64_t low = keys.low;
    for (std::size_t i = 0; i < tree->children.size(); ++i) {
      const bool last = i + 1 == tree->children.size();
      const Hole part{low, last ? keys.high : tree->children[i].lastKey};
      // A page whose keys are in no order may name the same one twice, or none.
      Walk(tree->children[i].page, part.low < part.high ? part : keys, deep - 1, take, holes, lost);
      if (part.low < part.high) low = part.high;
    }
  }

  // A page to which a damaged number led belongs elsewhere: most of its rows are not looked for here.
  static bool IsFor(const TreePage& tree, const Hole& keys) {
    if (!tree.leaf || tree.rows.empty()) return true;
    const auto strangers = std::ranges::count_if(tree.rows, [&](const PageRow& row) { return !keys.Takes(row.key); });
    return 2 * static_cast<std::size_t>(strangers) <= tree.rows.size();
  }

  // ---- Pages of which nobody knows the table

  void AdoptStrays() {
    for (std::uint32_t page = 2; page <= pages_.Count(); ++page) {
      if (used_[page]) continue;
      const auto tree = ReadTreePage(pages_, page);
      if (!tree || !tree->leaf || tree->rows.empty()) continue;
      used_[page] = true;
      if (Target* owner = OwnerOf(*tree)) {
        for (const PageRow& row : tree->rows) Put(*owner, row);
        owner->told.lostRows += tree->lostRows;
        owner->adopted = true;
      } else {
        ++strayPages_;
      }
    }
  }

  // The one table that lacks such rows; null when none does, or several.
  Target* OwnerOf(const TreePage& tree) {
    Target* owner = nullptr;
    for (Target& target : targets_) {
      if (!Lacks(target, tree) || !Fits(target.layout, target.places.size(), tree)) continue;
      if (owner != nullptr) return nullptr;
      owner = &target;
    }
    if (owner != nullptr) return owner;
    const std::pair<std::string, const Table*>* found = nullptr;
    for (const auto& possible : possible_) {
      if (!Fits(possible.second, possible.second->fields.size() + 1, tree)) continue;
      if (found != nullptr) return nullptr;
      found = &possible;
    }
    if (found == nullptr) return nullptr;
    auto target = TargetFor(found->first, found->second, {});
    target->holes.emplace_back();
    std::erase_if(possible_, [&](const auto& one) { return one.first == target->told.name; });
    targets_.push_back(*std::move(target));
    return &targets_.back();
  }

  static bool Lacks(const Target& target, const TreePage& tree) {
    return std::ranges::any_of(target.holes, [&](const Hole& hole) {
      return std::ranges::count_if(tree.rows, [&](const PageRow& row) { return hole.Takes(row.key); }) * 2 >
             std::ssize(tree.rows);
    });
  }

  // Rows of just that many values, each of the kind of its field.
  static bool Fits(const Table* layout, std::size_t columns, const TreePage& tree) {
    std::size_t fitting = 0;
    for (const PageRow& row : tree.rows) {
      if (row.cells.size() != columns) continue;
      fitting += layout == nullptr || (FitsRow(*layout, row) && row.cells.back().IsNull());
    }
    return 2 * fitting > tree.rows.size();
  }

  static bool FitsRow(const Table& layout, const PageRow& row) {
    try {
      for (std::size_t i = 0; i < layout.fields.size() && i < row.cells.size(); ++i)
        FittedValue(layout.fields[i], layout.name, row.cells[i]);
      return true;
    } catch (const BadValue&) {
      return false;
    }
  }

  // ---- What is not there any more

  // By which of a table's indexes people would call its rows.
  const Listed* NamingIndex(const std::string& table) const {
    constexpr std::array kNaming{"BatchNo", "Color_Name", "DesignID", "JobNumber", "SetName", "LotCName", "Name"};
    for (const char* field : kNaming)
      for (const Listed& listed : listed_)
        if (listed.index && EqualNoCase(listed.of, table) &&
            StartsWithNoCase(listed.name, fmt::format("{}_{}_", table, field)))
          return &listed;
    return nullptr;
  }

  void NameLost(Target& target) {
    if (target.layout == nullptr || (target.holes.empty() && target.told.lostRows == 0)) return;
    const Listed* index = NamingIndex(target.told.name);
    if (index == nullptr) {
      // Nobody knows how many rows stood there; at least one in each place.
      if (!target.adopted) target.told.lostRows += static_cast<std::int64_t>(target.holes.size());
      return;
    }
    std::int64_t missing = 0;
    Statement row = fresh_.Prepare(
        fmt::format("SELECT 1 FROM {} WHERE {} = ?", Quoted(target.told.name), Quoted(target.layout->rowKey)));
    std::vector<std::uint32_t> pages{index->root};
    for (std::size_t i = 0; i < pages.size(); ++i) {
      const std::uint32_t page = pages[i];
      if (page < 2 || page >= used_.size() || used_[page]) continue;
      used_[page] = true;
      const auto read = ReadIndexPage(pages_, page);
      if (!read) continue;
      pages.insert(pages.end(), read->children.begin(), read->children.end());
      for (const IndexEntry& entry : read->entries) {
        row.Bind(1, entry.key);
        if (!row.Step()) {
          ++missing;
          if (target.told.lostNames.size() < kMostNames)
            target.told.lostNames.push_back(fmt::format("{} (row {})", entry.cells.front().Text(), entry.key));
        }
        row.Reset();
      }
    }
    target.told.lostRows = std::max(target.told.lostRows, missing);
  }

  PageFile pages_;
  Database& fresh_;
  std::vector<bool> used_;
  std::vector<bool> child_;
  std::vector<Listed> listed_;
  std::vector<Target> targets_;
  std::vector<std::pair<std::string, const Table*>> possible_;  // tables of the layout that the list does not have
  std::int64_t strayPages_ = 0;
};

}  // namespace

const Table* KnownLayout(std::string_view name) {
  for (const Table* table : schema::Global())
    if (EqualNoCase(table->name, name)) return table;
  for (const Table* table : {&schema::Users, &schema::StockHistory, &schema::OpenBatch, &schema::PendingRollUps})
    if (EqualNoCase(table->name, name)) return table;
  const Table* longest = nullptr;
  for (const Table* table : schema::PerDatabase()) {
    const bool ends =
        name.size() > table->name.size() && EqualNoCase(name.substr(name.size() - table->name.size()), table->name);
    if (ends && (longest == nullptr || table->name.size() > longest->name.size())) longest = table;
  }
  return longest;
}

Salvage SalvageInto(const std::filesystem::path& damaged, const std::filesystem::path& fresh) {
  const auto file = Database::Create(fresh);
  Transaction transaction(*file);
  Salvage salvage = Salvager(damaged, *file).Run();
  if (salvage.Any()) transaction.Commit();
  return salvage;
}

}  // namespace vellumark
