#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/scale/serial_line.h"

namespace vellumark {

constexpr int kReplyLength = 18;
constexpr int kSNWTimer = 400;      ///< between two requests for the weight, in milliseconds
constexpr int kInBuffTimer = 500;   ///< what the scale may take to answer, beside the time that the bytes are under way
constexpr std::string_view kSendNetWeight = "SNW\r";
constexpr std::string_view kZero = "ZRO\r";

/// The weight of a reply, in the scale's unit. A reply has exactly 18 characters, of which the first three and the last
/// four are not looked at; what stands between them is a number with or without a sign, in blanks. Nothing for anything
/// else.
std::optional<double> ParseReply(std::string_view reply);

/// Milliseconds that so many characters are under way.
int TimeOnLine(const LineSettings& line, std::size_t characters);

/// A weight and when it came, by the clock of whoever drives the loop.
struct Reading {
  double weight = 0;
  std::int64_t at = 0;
};

/// Asks the scale for its weight again and again and puts its replies together. It knows no clock and no port: it is
/// told the time in milliseconds and what has come, and says what is to be sent. A reply is what comes between a
/// request and the silence after it, less XON and XOFF: in however many pieces, and dropped when it has not the length.
class ReadingLoop {
 public:
  explicit ReadingLoop(const LineSettings& line);

  /// To be called with whatever has come, also with nothing; what is to be sent now, if anything.
  std::string_view Step(std::int64_t now, std::string_view received);
  /// Zeroes the scale: what is under way of the old weight is dropped. What is to be sent now.
  std::string_view Zero(std::int64_t now);

  /// The last weight since the loop began or the scale was zeroed.
  const std::optional<Reading>& Last() const { return last_; }
  /// Whether that came at most so many milliseconds ago.
  bool IsFresh(std::int64_t now) const { return last_ && now - last_->at <= freshFor_; }

 private:
  void Take(std::string_view received, std::int64_t now);
  void Finish(std::int64_t now);

  int replyTime_;   // from the request to the last character, at most
  int silence_;     // after which a reply is whole
  int zeroTime_;    // until the command to zero has arrived
  int freshFor_;
  bool waiting_ = false;
  std::int64_t asked_ = 0;
  std::int64_t lastByte_ = 0;
  std::int64_t nextAsk_ = 0;
  std::int64_t deafUntil_ = 0;
  std::string reply_;
  std::optional<Reading> last_;
};

}  // namespace vellumark
