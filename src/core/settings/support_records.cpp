#include "core/settings/support_records.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <utility>

#include "core/base/refusal.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

bool IsAscii(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

std::string Decode(std::string_view bytes) {
  return IsAscii(bytes) ? std::string(bytes) : FromCp1252(bytes);
}

constexpr std::string_view kAddress = "file://";

bool FitsTheFormat(std::string_view text) {
  if (text.find_first_of("\"\r\n") != std::string_view::npos || text.starts_with(kAddress)) return false;
  if (IsAscii(text)) return true;
  try {
    return FromCp1252(ToCp1252(text)) == text;
  } catch (const BadValue&) {
    return false;
  }
}

std::string AddressOf(std::string_view path) {
  std::string address(kAddress);
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = byte > 0x20 && byte < 0x7F && c != '%' && c != '"';
    address += plain ? std::string(1, c) : fmt::format("%{:02X}", byte);
  }
  return address;
}

std::string PathOf(std::string_view address) {
  const auto digit = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
  };
  address.remove_prefix(kAddress.size());
  std::string path;
  for (std::size_t i = 0; i < address.size(); ++i) {
    const int high = address[i] == '%' && i + 2 < address.size() ? digit(address[i + 1]) : -1;
    const int low = high >= 0 ? digit(address[i + 2]) : -1;
    path += low >= 0 ? static_cast<char>(high * 16 + low) : address[i];
    if (low >= 0) i += 2;
  }
  return path;
}

void AppendField(std::string& out, std::string_view text) {
  out += '"';
  if (IsAscii(text)) {
    out += text;
  } else {
    out += ToCp1252(text);
  }
  out += '"';
}

struct Field {
  std::string_view text;
  bool whole = false;  // closed by its quote or followed by a comma
};

// Takes a field and the comma behind it off the front of a line.
Field TakeField(std::string_view& line) {
  Field field;
  const std::size_t start = line.find_first_not_of(" \t");
  line.remove_prefix(start == std::string_view::npos ? line.size() : start);
  std::size_t comma = std::string_view::npos;
  if (line.starts_with('"')) {
    line.remove_prefix(1);
    const std::size_t quote = line.find('"');
    field.text = line.substr(0, quote);
    field.whole = quote != std::string_view::npos;
    comma = line.find(',', field.whole ? quote : line.size());
  } else {
    comma = line.find(',');
    field.text = line.substr(0, comma);
    field.text = field.text.substr(0, field.text.find('"'));
    field.whole = comma != std::string_view::npos;
  }
  line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
  return field;
}

std::string_view TakeLine(std::string_view& bytes) {
  const std::size_t end = bytes.find_first_of("\r\n");
  const std::string_view line = bytes.substr(0, end);
  bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
  return line;
}

}  // namespace

bool HoldsForeignName(std::string_view key) {
  return key.starts_with("dbFileName") || key.ends_with("FileLocation") || key.ends_with("_DefaultDir") ||
         key.ends_with("_DefaultFileName") || key == "PrinterDevice" || key == "PrinterFont" || key == "ReportPrinter" ||
         key == "Printer" || key == "Paper Type" || key == "Picture Image Location" || key.ends_with(" FontName");
}

SupportRecords::SupportRecords(RecordShape shape, std::vector<SupportRecord> records)
    : shape_(shape), records_(std::move(records)) {
  for (const SupportRecord& record : records_) CheckFields(record);
}

SupportRecords SupportRecords::Parse(std::string_view bytes, RecordShape shape) {
  SupportRecords result(shape);
  result.records_.reserve(bytes.size() / 24);
  while (!bytes.empty()) {
    std::string_view line = TakeLine(bytes);
    if (line.empty()) continue;
    SupportRecord record;
    if (shape == RecordShape::LayoutKeyValue) record.layout = Decode(TakeField(line).text);
    const Field key = TakeField(line);
    if (!key.whole) continue;
    record.key = Decode(key.text);
    record.value = Decode(TakeField(line).text);
    if (HoldsForeignName(record.key) && record.value.starts_with(kAddress)) record.value = PathOf(record.value);
    result.records_.push_back(std::move(record));
  }
  return result;
}

std::string SupportRecords::Bytes() const {
  std::string bytes;
  bytes.reserve(records_.size() * 48);
  for (const SupportRecord& record : records_) {
    if (shape_ == RecordShape::LayoutKeyValue) {
      AppendField(bytes, record.layout);
      bytes += ',';
    }
    AppendField(bytes, record.key);
    bytes += ',';
    const bool address = HoldsForeignName(record.key) && !FitsTheFormat(record.value);
    AppendField(bytes, address ? AddressOf(record.value) : record.value);
    bytes += "\r\n";
  }
  return bytes;
}

bool SupportRecords::Contains(std::string_view layout, std::string_view key) const {
  return Find(layout, key) != kNone;
}

const std::string& SupportRecords::Get(std::string_view layout, std::string_view key) const {
  static const std::string empty;
  const std::uint32_t found = Find(layout, key);
  return found == kNone ? empty : records_[found].value;
}

bool SupportRecords::Set(std::string_view layout, std::string_view key, std::string_view value) {
  const std::uint32_t first = Find(layout, key);
  if (first == kNone) return false;
  CheckFields({std::string(layout), std::string(key), std::string(value)});
  for (std::size_t i = first; i < records_.size(); ++i) {
    SupportRecord& record = records_[i];
    if (record.key != key || record.layout != layout || record.value == value) continue;
    record.value = value;
    changed_ = true;
  }
  return true;
}

void SupportRecords::Append(std::string_view layout, std::string_view key, std::string_view value) {
  SupportRecord record{std::string(layout), std::string(key), std::string(value)};
  CheckFields(record);
  records_.push_back(std::move(record));
  changed_ = true;
  if (slots_.size() < records_.size() * 2) {
    slots_.clear();
    return;
  }
  std::uint32_t& slot = slots_[SlotOf(layout, key)];
  if (slot == kNone) slot = static_cast<std::uint32_t>(records_.size() - 1);
}

void SupportRecords::InsertAfter(std::string_view layout, std::string_view anchor, std::vector<SupportRecord> added) {
  if (added.empty()) return;
  for (SupportRecord& record : added) {
    record.layout = layout;
    CheckFields(record);
  }
  std::size_t place = Find(layout, anchor);
  if (place == kNone) {
    const auto last = std::find_if(records_.rbegin(), records_.rend(),
                                   [layout](const SupportRecord& record) { return record.layout == layout; });
    place = last == records_.rend() ? records_.size() : static_cast<std::size_t>(records_.rend() - last);
  } else {
    ++place;
  }
  records_.insert(records_.begin() + static_cast<std::ptrdiff_t>(place), std::make_move_iterator(added.begin()),
                  std::make_move_iterator(added.end()));
  slots_.clear();
  changed_ = true;
}

bool SupportRecords::RemoveRecords(std::string_view layout) {
  if (shape_ == RecordShape::KeyValue) throw std::logic_error("a Support File of two fields has no layouts");
  const auto removed = std::erase_if(records_, [layout](const SupportRecord& r) { return r.layout == layout; });
  if (removed == 0) return false;
  slots_.clear();
  changed_ = true;
  return true;
}

std::vector<std::string> SupportRecords::Layouts() const {
  std::vector<std::string> layouts;
  for (const SupportRecord& record : records_)
    if (std::ranges::find(layouts, record.layout) == layouts.end()) layouts.push_back(record.layout);
  return layouts;
}

std::uint32_t SupportRecords::Find(std::string_view layout, std::string_view key) const {
  if (slots_.empty()) Index();
  return slots_[SlotOf(layout, key)];
}

// The slot that holds the first record of the key, or the free one where it belongs.
std::size_t SupportRecords::SlotOf(std::string_view layout, std::string_view key) const {
  const std::hash<std::string_view> hash;
  std::size_t slot = hash(key);
  if (!layout.empty()) slot ^= hash(layout) * 31;
  for (;; ++slot) {
    slot &= slots_.size() - 1;
    const std::uint32_t number = slots_[slot];
    if (number == kNone || (records_[number].key == key && records_[number].layout == layout)) return slot;
  }
}

void SupportRecords::Index() const {
  std::size_t size = 64;
  while (size < records_.size() * 4) size *= 2;
  slots_.assign(size, kNone);
  for (std::size_t i = 0; i < records_.size(); ++i) {
    std::uint32_t& slot = slots_[SlotOf(records_[i].layout, records_[i].key)];
    if (slot == kNone) slot = static_cast<std::uint32_t>(i);
  }
}

void SupportRecords::CheckFields(const SupportRecord& record) const {
  if (shape_ == RecordShape::KeyValue && !record.layout.empty())
    throw std::logic_error("a layout was named for a Support File of two fields");
  if (shape_ == RecordShape::LayoutKeyValue && record.layout.empty())
    throw std::logic_error("no layout was named for a label file");
  for (const std::string& name : {record.layout, record.key})
    if (name.find_first_of("\"\r\n") != std::string::npos)
      throw BadValue(fmt::format("the name \"{}\" holds a double quote or a line end", name));
  if (record.value.find_first_of("\r\n") != std::string::npos && !HoldsForeignName(record.key))
    throw BadValue(fmt::format("the value of \"{}\" holds a line end", record.key));
}

}  // namespace vellumark
