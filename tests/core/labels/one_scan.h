#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/labels/scan_records.h"
#include "core/session/session.h"

namespace vellumark::test {

/// The record of a text that holds one, after `book` did its work with it.
template <class Book>
ScanRecord OneScan(Session& session, const std::string& text, const Book& book) {
  const auto records = ParseScan(text);
  EXPECT_EQ(records.size(), 1U);
  ScanRecord record = records.at(0);
  book(session, record);
  return record;
}

/// What a scan is told whose text no lot can bear.
inline std::string TooLong(const std::string& text) {
  return fmt::format(
      "A lot number, location or container has at most 30 characters.\n{} has {}.\n\nUpdate information - "
      "Process Again.",
      text, text.size());
}

/// Each of these scans fails with its message, and nothing of it reaches stock.
template <class Room, class Cases>
void ExpectFailures(Room& room, const Cases& cases) {
  const auto before = room.Scalar("SELECT COUNT(*) FROM MSysStockHistory");
  for (const auto& [scan, message] : cases) {
    const ScanRecord record = room.Scan(scan);
    EXPECT_EQ(record.state, ScanRecord::State::Failed) << scan;
    EXPECT_EQ(record.Message, message);
  }
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM MSysStockHistory"), before);
}

}  // namespace vellumark::test
