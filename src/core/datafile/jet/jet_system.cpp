#include <algorithm>
#include <array>
#include <span>

#include "core/datafile/jet/jet_format.h"
#include "core/datafile/jet/jet_pages.h"
#include "core/datafile/jet/jet_writer.h"

// The first page of a Jet file and the tables of its own, by which other programs find those of people.

namespace vellumark {

using namespace jet;

namespace {

// A real set that belongs together: the day of the file, a figure of its own, and how it masks who owns what.
constexpr std::string_view kCreated = "\x3E\x85\xD3\x3B\x3E\xAB\xE4\x40";
constexpr std::uint32_t kFigure = 0x0000261C;
constexpr std::string_view kEngine = "\x65\x89";
constexpr std::string_view kAdmin = "\x64\x8B";
constexpr std::string_view kUsers = "\x65\x8B";
constexpr std::string_view kCreator = "\x65\x8E";

constexpr std::uint32_t kGlobalMapPage = 1;
constexpr std::uint32_t kObjectsPage = kCatalogPage;
constexpr std::uint32_t kRightsPage = 3;
constexpr std::uint32_t kQueriesPage = 4;
constexpr std::uint32_t kRelationsPage = 5;
constexpr std::uint32_t kMapsPage = 6;
constexpr std::uint32_t kTables = 0x0F000001;
constexpr std::uint32_t kDatabases = 0x0F000002;
constexpr std::uint32_t kRelationships = 0x0F000003;
constexpr std::uint32_t kProperties = 0x10000000;
constexpr std::uint32_t kSystemFlag = 0x80000000;

constexpr std::uint8_t kFixed = 0x13;
constexpr std::uint8_t kVarying = 0x12;
constexpr std::uint8_t kOwner = 0x32;

struct SystemField {
  const char* name;
  int type;
  std::uint16_t number, var;
  std::uint8_t flags;
  std::uint16_t offset, length;
};

constexpr auto kObjects = std::to_array<SystemField>({
    {"Connect", 12, 9, 3, kVarying, 0, 0},
    {"Database", 12, 8, 2, kVarying, 0, 0},
    {"DateCreate", 8, 4, 1, kFixed, 10, 8},
    {"DateUpdate", 8, 5, 1, kFixed, 18, 8},
    {"Flags", 4, 7, 2, kFixed, 26, 4},
    {"ForeignName", 10, 10, 4, kVarying, 0, 510},
    {"Id", 4, 0, 0, kFixed, 0, 4},
    {"Lv", 11, 13, 7, kVarying, 0, 0},
    {"LvExtra", 11, 16, 10, kVarying, 0, 0},
    {"LvModule", 11, 15, 9, kVarying, 0, 0},
    {"LvProp", 11, 14, 8, kVarying, 0, 0},
    {"Name", 10, 2, 0, kVarying, 0, 510},
    {"Owner", 9, 6, 1, kOwner, 0, 510},
    {"ParentId", 4, 1, 0, kFixed, 4, 4},
    {"RmtInfoLong", 12, 12, 6, kVarying, 0, 0},
    {"RmtInfoShort", 10, 11, 5, kVarying, 0, 510},
    {"Type", 3, 3, 1, kFixed, 8, 2},
});
constexpr auto kRights = std::to_array<SystemField>({
    {"ACM", 4, 2, 1, kFixed, 4, 4},
    {"FInheritable", 1, 3, 1, kFixed, 0, 1},
    {"ObjectId", 4, 0, 0, kFixed, 0, 4},
    {"SID", 9, 1, 0, kOwner, 0, 510},
});
constexpr auto kQueries = std::to_array<SystemField>({
    {"Attribute", 2, 1, 0, kFixed, 4, 1},
    {"Expression", 12, 5, 3, kVarying, 0, 0},
    {"Flag", 3, 6, 4, kFixed, 5, 2},
    {"LvExtra", 4, 7, 4, kFixed, 7, 4},
    {"Name1", 10, 3, 1, kVarying, 0, 510},
    {"Name2", 10, 4, 2, kVarying, 0, 510},
    {"ObjectId", 4, 0, 0, kFixed, 0, 4},
    {"Order", 9, 2, 0, kVarying, 0, 510},
});
constexpr auto kRelations = std::to_array<SystemField>({
    {"ccolumn", 4, 2, 1, kFixed, 4, 4},
    {"grbit", 4, 1, 1, kFixed, 0, 4},
    {"icolumn", 4, 3, 1, kFixed, 8, 4},
    {"szColumn", 10, 5, 2, kVarying, 0, 510},
    {"szObject", 10, 4, 1, kVarying, 0, 510},
    {"szReferencedColumn", 10, 7, 4, kVarying, 0, 510},
    {"szReferencedObject", 10, 6, 3, kVarying, 0, 510},
    {"szRelationship", 10, 0, 0, kVarying, 0, 510},
});

Definition DefinitionOf(std::span<const SystemField> fields) {
  Definition definition;
  definition.system = true;
  for (const SystemField& f : fields)
    definition.fields.push_back({f.name, static_cast<JetType>(f.type), f.number, f.var, f.flags, f.offset, f.length});
  return definition;
}

/// The tables of Jet's own: their maps stand together on one page.
class SystemTables {
 public:
  SystemTables(const std::function<std::uint32_t()>& newPage,
               const std::function<void(std::uint32_t, std::string_view)>& write)
      : newPage_(newPage), write_(write), maps_(kMapsPage, 0) {}

  /// A row of the table, by the names of its fields; the others are null.
  struct Cell {
    std::string_view field;
    std::string bytes;
  };

  void Begin(std::uint32_t page, std::span<const SystemField> fields) {
    page_ = page;
    definition_ = DefinitionOf(fields);
    data_.reset();
    owned_ = {};
  }

  /// Where it stands.
  IndexEntry Add(const std::vector<Cell>& cells) {
    std::vector<FieldBytes> values(definition_.fields.size());
    for (const Cell& cell : cells)
      values[static_cast<std::size_t>(std::ranges::find(definition_.fields, cell.field, &Field::name) -
                                      definition_.fields.begin())] = {cell.bytes, false};
    const std::string row = RowBytes(definition_.fields, values);
    if (!data_ || !data_->Fits(row.size())) {
      if (data_) write_(data_->Number(), data_->Bytes());
      data_.emplace(newPage_(), page_);
      owned_.Add(data_->Number());
    }
    ++definition_.rows;
    return {{}, data_->Number(), data_->Add(row)};
  }

  void AddIndex(std::string name, std::vector<std::uint16_t> columns, std::uint8_t flags, std::uint8_t kind,
                std::vector<IndexEntry> entries) {
    const std::uint32_t root = newPage_();
    PageSet pages;
    pages.Add(root);
    const auto count = static_cast<std::uint32_t>(entries.size());
    write_(root, IndexPage(page_, std::move(entries)));
    definition_.indexNames.push_back(definition_.indexes.size());
    definition_.indexes.push_back({std::move(name), std::move(columns), flags, kind, root, AddMap(pages), count});
  }

  void End() {
    if (data_) write_(data_->Number(), data_->Bytes());
    std::ranges::sort(definition_.indexNames, {}, [&](std::size_t i) { return definition_.indexes[i].name; });
    definition_.owned = AddMap(owned_);
    definition_.free = AddMap({});
    for (const Field& field : definition_.fields)
      for (int map = 0; field.IsLong() && map < 2; ++map) definition_.longMaps.push_back(AddMap({}));
    write_(page_, DefinitionPages(definition_.Bytes(), {page_}).front());
  }

  void WriteMaps() { write_(kMapsPage, maps_.Bytes()); }

 private:
  std::uint32_t AddMap(const PageSet& pages) {
    const std::string row = pages.Row([this](const std::string& page) {
      const std::uint32_t number = newPage_();
      write_(number, page);
      return number;
    });
    return PointerTo(kMapsPage, maps_.Add(row));
  }

  const std::function<std::uint32_t()>& newPage_;
  const std::function<void(std::uint32_t, std::string_view)>& write_;
  DataPage maps_;
  std::uint32_t page_ = 0;
  Definition definition_;
  std::optional<DataPage> data_;
  PageSet owned_;
};

template <class T>
std::string Bytes(T value) {
  std::string bytes;
  Append(bytes, value);
  return bytes;
}

struct Object {
  std::uint32_t id, parent;
  std::string name;
  std::int16_t type;
  std::uint32_t flags;
  std::string_view owner;
};

void WriteObjects(SystemTables& tables, const std::vector<Object>& objects, double made) {
  tables.Begin(kObjectsPage, kObjects);
  std::vector<IndexEntry> byName;
  std::vector<IndexEntry> byId;
  for (const Object& object : objects) {
    std::string name;
    for (const char c : object.name) (name += c) += '\0';
    IndexEntry entry = tables.Add({{"Id", Bytes(object.id)},
                                   {"ParentId", Bytes(object.parent)},
                                   {"Name", name},
                                   {"Type", Bytes(object.type)},
                                   {"DateCreate", Bytes(made)},
                                   {"DateUpdate", Bytes(made)},
                                   {"Owner", std::string(object.owner)},
                                   {"Flags", Bytes(object.flags)}});
    entry.key = KeyOf(static_cast<std::int32_t>(object.id));
    byId.push_back(entry);
    entry.key = KeyOf(static_cast<std::int32_t>(object.parent)) + KeyOf(object.name);
    byName.push_back(std::move(entry));
  }
  tables.AddIndex("ParentIdName", {1, 2}, 0x81, 0, std::move(byName));
  tables.AddIndex("Id", {0}, 0x81, 1, std::move(byId));
  tables.End();
}

struct Right {
  std::uint32_t object, mask;
  bool inherited;
  std::string_view owner;
};

void WriteRights(SystemTables& tables, const std::vector<Right>& rights) {
  tables.Begin(kRightsPage, kRights);
  std::vector<IndexEntry> byObject;
  for (const Right& right : rights) {
    std::vector<SystemTables::Cell> cells{
        {"ObjectId", Bytes(right.object)}, {"SID", std::string(right.owner)}, {"ACM", Bytes(right.mask)}};
    if (right.inherited) cells.push_back({"FInheritable", {}});
    byObject.push_back(tables.Add(cells));
    byObject.back().key = KeyOf(static_cast<std::int32_t>(right.object));
  }
  tables.AddIndex("ObjectId", {0}, 0x88, 0, std::move(byObject));
  tables.End();
}

std::string Header() {
  std::string page(kPageBytes, '\0');
  page[1] = 1;
  page.replace(kSignatureAt, kSignature.size(), kSignature);
  Put(page, kVersionAt, std::uint32_t{1});
  Put(page, kMaskAt, PointerTo(kGlobalMapPage, 0));
  Put(page, 0x1C, PointerTo(kGlobalMapPage, 1));
  for (std::uint32_t i = 0; i < 4; ++i) Put(page, 0x20 + i * 4, kObjectsPage + i);
  Put(page, 0x3C, std::uint16_t{1252});
  page.replace(kCreatedAt, kCreated.size(), kCreated);
  for (std::size_t i = 0; i < 10; ++i)
    Put(page, kPasswordAt + i * 4, static_cast<std::uint32_t>(Read<double>(page, kCreatedAt)));
  Put(page, 0x6A, kFigure);
  Put(page, 0x6E, std::uint32_t{0x0409});
  MaskHeader(page);
  page.replace(kMaskAt + kMaskBytes, 8,
               std::string_view("\x54\x06\0\0"
                                "4.0\0",
                                8));
  for (std::size_t at = 0xE00; at < kPageBytes; at += 2) page[at + 1] = 1;
  page[0xE00] = 1;
  return page;
}

}  // namespace

void JetWriter::WriteSystem() {
  std::uint32_t kept = kMapsPage + 1;
  const std::function<std::uint32_t()> newPage = [&] { return kept < kFirstPage ? kept++ : NewPage(); };
  const std::function<void(std::uint32_t, std::string_view)> write =
      [this](std::uint32_t page, std::string_view bytes) { WritePage(page, bytes); };
  std::vector<Object> objects{
      {kTables, 0x0F000000, "Tables", 3, kSystemFlag, kEngine},
      {kDatabases, 0x0F000000, "Databases", 3, kSystemFlag, kEngine},
      {kRelationships, 0x0F000000, "Relationships", 3, kSystemFlag, kEngine},
      {kProperties, kDatabases, "MSysDb", 2, kSystemFlag, kAdmin},
      {kObjectsPage, kTables, "MSysObjects", 1, kSystemFlag, kEngine},
      {kRightsPage, kTables, "MSysACEs", 1, kSystemFlag, kEngine},
      {kQueriesPage, kTables, "MSysQueries", 1, kSystemFlag, kEngine},
      {kRelationsPage, kTables, "MSysRelationships", 1, kSystemFlag, kEngine},
  };
  std::vector<Right> rights{
      {kObjectsPage, 0x60000, false, kAdmin},    {kRightsPage, 0x60000, false, kAdmin},
      {kQueriesPage, 0x60000, false, kAdmin},    {kRelationsPage, 0xE0000, false, kAdmin},
      {kTables, 0xF00FE, true, kCreator},        {kTables, 0x60001, false, kAdmin},
      {kRelationships, 0xF00FE, true, kCreator}, {kRelationships, 0x60001, false, kAdmin},
      {kDatabases, 0x60000, false, kAdmin},      {kProperties, 0x6000E, false, kAdmin},
      {kProperties, 0xE, false, kUsers},         {kQueriesPage, 0x14, false, kUsers},
      {kRelationsPage, 0x14, false, kUsers},     {kObjectsPage, 0x14, false, kUsers},
      {kTables, 0xFFEFF, true, kUsers},          {kRelationships, 0xFFFFF, true, kUsers},
  };
  for (const Made& table : tables_) {
    objects.push_back({table.definition, kTables, table.name, 1, 0, kAdmin});
    rights.push_back({table.definition, 0xF00FE, false, kAdmin});
    rights.push_back({table.definition, 0xFFEFF, false, kUsers});
  }
  SystemTables tables(newPage, write);
  WriteObjects(tables, objects, JetDays(made_));
  WriteRights(tables, rights);
  tables.Begin(kQueriesPage, kQueries);
  tables.AddIndex("ObjectIdAttribute", {0, 1, 2}, 0x81, 1, {});
  tables.End();
  tables.Begin(kRelationsPage, kRelations);
  tables.AddIndex("szRelationship", {0}, 0x82, 0, {});
  tables.AddIndex("szObject", {4}, 0x82, 0, {});
  tables.AddIndex("szReferencedObject", {6}, 0x82, 0, {});
  tables.End();
  tables.WriteMaps();
  WriteGlobalMap();
  WritePage(0, Header());
}

// Which pages are free: none of the file, all behind it.
void JetWriter::WriteGlobalMap() {
  constexpr std::size_t kStep = 32;
  constexpr std::size_t kLongestHere = 96;  // bytes of bits; more go onto pages of their own
  DataPage page(kGlobalMapPage, 1);
  std::string row(1, '\0');
  const auto freeFrom = [](std::size_t bytes, std::uint32_t used, std::uint32_t first) {
    std::string bits(bytes, '\0');
    for (std::size_t i = used > first ? used - first : 0; i < bytes * 8; ++i)
      bits[i / 8] = static_cast<char>(bits[i / 8] | 1 << i % 8);
    return bits;
  };
  if (pages_ <= kLongestHere * 8) {
    const std::size_t bytes = std::max<std::size_t>(64, (pages_ / 8 + kStep) / kStep * kStep);
    Append(row, std::uint32_t{0});
    row += freeFrom(std::min(bytes, kLongestHere), pages_, 0);
  } else {
    constexpr std::uint32_t kOnOne = PageSet::kBytesOfPiece * 8;
    std::vector<std::uint32_t> maps;
    while (maps.size() * kOnOne <= pages_) maps.push_back(NewPage());
    row[0] = 1;
    for (std::size_t i = 0; i < maps.size(); ++i) {
      Append(row, maps[i]);
      WritePage(maps[i],
                PageSet::MapPage(freeFrom(PageSet::kBytesOfPiece, pages_, static_cast<std::uint32_t>(i) * kOnOne)));
    }
    row.resize(PageSet::kRowBytes, '\0');
  }
  page.Add(row);
  page.Add(std::string(PageSet::kRowBytes, '\0'));
  WritePage(kGlobalMapPage, page.Bytes());
}

}  // namespace vellumark
