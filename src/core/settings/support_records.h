#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellumark {

/// What one line of a Support File holds: `"key","value"` or, in the label files, `"layout","key","value"`.
enum class RecordShape { KeyValue, LayoutKeyValue };

struct SupportRecord {
  std::string layout;  ///< empty in a file of two fields
  std::string key;
  std::string value;
  bool operator==(const SupportRecord&) const = default;
};

/// Whether a key's value is a name that the machine gave and no operator can choose anew: of a file or folder, of a
/// printer, of a font.
bool HoldsForeignName(std::string_view key);

/// The records of one Support File in file order, away from the disk. Texts are UTF-8. Keys and layouts are compared
/// exactly. A key may stand more than once: the first one is read, all of them are set.
///
/// What is written is refused with BadValue when a field holds a line end, or a key or layout a double quote. A double
/// quote in a value is written as it stands; the next reading ends the value there, since the format knows no escape.
/// A foreign name is never cut or refused: one that the format cannot hold stands in the file as a "file://" address,
/// its bytes percent-encoded, and is plain again when it is read.
class SupportRecords {
 public:
  explicit SupportRecords(RecordShape shape) : shape_(shape) {}
  SupportRecords(RecordShape shape, std::vector<SupportRecord> records);

  /// Reads a file's bytes (CP1252). A field begins after leading blanks and is either quoted or bare. It ends at the
  /// next double quote, a bare one also at the comma or the line's end; what stands between that quote and the comma is
  /// dropped, as is anything behind the last field. A field that is missing or cut off reads as far as it
  /// goes, but a line whose key is not there in full (the quote does not close, or nothing but the line's end follows
  /// a bare one) is no record: half a key could only be mistaken for another.
  static SupportRecords Parse(std::string_view bytes, RecordShape shape);
  /// The file's bytes: every field quoted, CP1252, CRLF. Throws BadValue for a character outside the code page.
  std::string Bytes() const;

  const std::vector<SupportRecord>& Records() const& { return records_; }
  std::vector<SupportRecord> Records() && { return std::move(records_); }
  bool Contains(std::string_view key) const { return Contains({}, key); }
  bool Contains(std::string_view layout, std::string_view key) const;
  /// The value of the first record; empty when there is none.
  const std::string& Get(std::string_view key) const { return Get({}, key); }
  const std::string& Get(std::string_view layout, std::string_view key) const;

  /// Changes every record of the key; false when there is none (nothing is added).
  bool Set(std::string_view key, std::string_view value) { return Set({}, key, value); }
  bool Set(std::string_view layout, std::string_view key, std::string_view value);
  void Append(std::string_view key, std::string_view value) { Append({}, key, value); }
  void Append(std::string_view layout, std::string_view key, std::string_view value);
  /// Puts records behind the first record of `anchor`; without one, behind the last record of the layout, else at the
  /// end. Their own layouts are replaced by `layout`.
  void InsertAfter(std::string_view layout, std::string_view anchor, std::vector<SupportRecord> added);
  void InsertAfter(std::string_view anchor, std::vector<SupportRecord> added) {
    InsertAfter({}, anchor, std::move(added));
  }
  /// Drops all records of a layout; false when it has none.
  bool RemoveRecords(std::string_view layout);

  /// The layouts that have records, each once, in file order.
  std::vector<std::string> Layouts() const;

  /// Whether anything differs from what was read or first given.
  bool Changed() const { return changed_; }

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  std::uint32_t Find(std::string_view layout, std::string_view key) const;
  std::size_t SlotOf(std::string_view layout, std::string_view key) const;
  void Index() const;
  void CheckFields(const SupportRecord& record) const;

  RecordShape shape_;
  bool changed_ = false;
  std::vector<SupportRecord> records_;
  // An open-addressed table of record numbers, a power of two long; empty when it has to be made anew.
  mutable std::vector<std::uint32_t> slots_;
};

}  // namespace vellumark
