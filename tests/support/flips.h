#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>

#include "core/backup/deep_check.h"
#include "core/base/files.h"
#include "core/datafile/lifecycle.h"
#include "support/ink_room.h"
#include "support/snapshot.h"

namespace vellumark::test {

/// Colours, formulas, lots, a Batch and its job, as a small ink room has them.
inline void FillInkRoom(InkRoom& room, int formulas) {
  for (int n = 0; n < 20; ++n)
    room.Basic("INK " + std::to_string(n), {{"Notes", "shelf " + std::to_string(n * 7)}, {"PurchaseCost", 3.5 + n}});
  for (int n = 0; n < 20; n += 2)
    room.AddRow(schema::BasicLotInv, {{"LotCName", "INK " + std::to_string(n)},
                                      {"LotRefID", 1},
                                      {"LotNumber", "L" + std::to_string(n)},
                                      {"LotQty", 12.5F + static_cast<float>(n)}});
  for (int n = 0; n < formulas; ++n)
    room.Mix("MIX " + std::to_string(n),
             {{"INK " + std::to_string(n % 20), 75.0F}, {"INK " + std::to_string((n + 3) % 20), 25.0F}},
             {{"Notes", std::string(static_cast<std::size_t>(n % 40), 'n')}, {"Date_Entered", "2026-02-03 00:00:00"}});
  for (int n = 1; n <= 10; ++n)
    room.AddRow(schema::Batch, {{"BatchNo", n},
                                {"Color_Name", "MIX " + std::to_string(n)},
                                {"Quantity", 20.0F},
                                {"IngName0", "INK " + std::to_string(n)},
                                {"IngQty0", 20.0F},
                                {"IngType0", 1},
                                {"Date_Entered", "2026-03-01 10:00:00"}});
}

/// A closed Data File of which single bits are turned over, and back again.
class FlippedFile {
 public:
  explicit FlippedFile(std::filesystem::path path)
      : path_(std::move(path)), bytes_(ReadFileBytes(path_)), content_(Content()) {}

  std::size_t Bits() const { return bytes_.size() * 8; }
  void Flip(std::size_t bit) { WriteByte(bit / 8, static_cast<char>(bytes_[bit / 8] ^ (1 << (bit % 8)))); }
  void Back(std::size_t bit) { WriteByte(bit / 8, bytes_[bit / 8]); }
  void CutTo(std::size_t size) const { std::filesystem::resize_file(path_, size); }
  void Whole() const { ReplaceFile(path_, bytes_); }
  std::size_t Size() const { return bytes_.size(); }

  /// Whether a person would read what was written.
  bool ReadsTheSame() const { return Content() == content_; }
  /// Whether the check finds the file sound; it answers, whatever it meets.
  bool IsSound() const {
    ScriptedPrompt prompt;
    NoProgress progress;
    FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
    Session session{prompt, progress, clock};
    try {
      if (GateOf(ReadFileVersion(path_)) != VersionGate::Current) return false;
      session.DataFileDB = Database::Open(path_, OpenMode::ReadOnly);
      return CheckDataFileRules(session, CheckDepth::Deep).Sound();
    } catch (const Failure&) {
      return false;
    }
  }

 private:
  std::string Content() const {
    try {
      return Snapshot(*Database::Open(path_, OpenMode::ReadOnly));
    } catch (const Failure& failure) {
      return failure.cause;
    }
  }
  void WriteByte(std::size_t place, char byte) const {
    const int file = ::open(path_.c_str(), O_WRONLY);
    const bool written = ::pwrite(file, &byte, 1, static_cast<off_t>(place)) == 1;
    ::close(file);
    if (!written) throw std::runtime_error("cannot write " + path_.string());
  }

  std::filesystem::path path_;
  std::string bytes_;
  std::string content_;
};

/// Turns bits over and cuts the file; every one that changes what a person reads is noticed.
inline void ExpectNoticed(FlippedFile& file, int flips, int cuts) {
  std::mt19937 random(20260310);
  ASSERT_TRUE(file.IsSound());
  int changed = 0;
  for (int n = 0; n < flips; ++n) {
    const std::size_t bit = random() % file.Bits();
    file.Flip(bit);
    if (!file.ReadsTheSame()) {
      ++changed;
      ASSERT_FALSE(file.IsSound()) << "bit " << bit % 8 << " of byte " << bit / 8;
    } else {
      (void)file.IsSound();  // and answers all the same
    }
    file.Back(bit);
  }
  EXPECT_GT(changed, flips / 20);
  testing::Test::RecordProperty("changed", changed);
  for (int n = 0; n < cuts; ++n) {
    const std::size_t size = random() % file.Size();
    file.CutTo(size);
    ASSERT_FALSE(file.IsSound()) << "cut to " << size;
    file.Whole();
  }
  ASSERT_TRUE(file.IsSound());
}

}  // namespace vellumark::test
