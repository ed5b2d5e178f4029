#pragma once

#include <QElapsedTimer>
#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "desktop/kit/record_source.h"

namespace vellumark::desktop {

/// A list that is read in pieces while the program goes on, whatever its records are. A grid looks through it in pieces
/// too: of a filter what is found at the beginning is shown at once, the rest when all was looked through, which its
/// `RowsRead` tells.
class ReadInPieces {
 public:
  virtual ~ReadInPieces() = default;
  /// Reads anew. What is there stays until all of it has come; of a list without rows the first screen comes at once.
  virtual void BeginAnew() = 0;
  /// Reads for a moment; false when all is there. The grid is to be refreshed then.
  virtual bool ReadFurther() = 0;
  /// What a row leads to.
  virtual RowTarget Target(int row) const = 0;
};

/// Its rows: a piece is appended by `Read`, which says whether more may come.
template <class Record>
class PieceSource : public RecordSource<Record>, public ReadInPieces {
 public:
  using Read = std::function<bool(std::vector<Record>& rows)>;
  using KeyOf = std::function<std::int64_t(const Record&)>;

  PieceSource(TableOf<Record> table, std::function<Read()> begin, KeyOf key,
              const std::vector<std::string_view>& columns = {})
      : RecordSource<Record>(std::move(table), columns), begin_(std::move(begin)), key_(std::move(key)) {}

  const Record& Row(int row) const { return rows_.at(static_cast<std::size_t>(row)); }

  void BeginAnew() override {
    read_ = begin_();
    next_.clear();
    if (!rows_.empty()) return;
    while (read_ && next_.size() < kScreen) ReadPiece();
    rows_ = next_;
  }
  bool ReadFurther() override {
    QElapsedTimer time;
    time.start();
    while (read_ && time.elapsed() < kMoment) ReadPiece();
    if (read_) return true;
    rows_ = std::exchange(next_, {});
    return false;
  }

  int Rows() const override { return static_cast<int>(rows_.size()); }
  std::int64_t Key(int row) const override { return key_(Row(row)); }
  int RowOf(std::int64_t key) const override {
    const auto found = std::ranges::find_if(rows_, [&](const Record& record) { return key_(record) == key; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
  }

 protected:
  const Record& At(int row) const override { return Row(row); }

 private:
  static constexpr std::size_t kScreen = 200;  // rows, more than a window shows
  static constexpr qint64 kMoment = 10;        // milliseconds

  void ReadPiece() {
    if (!read_(next_)) read_ = {};
  }

  std::function<Read()> begin_;
  KeyOf key_;
  Read read_;
  std::vector<Record> rows_;
  std::vector<Record> next_;
};

}  // namespace vellumark::desktop
