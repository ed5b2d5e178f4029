#include "core/scale/reading.h"

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr char kXOn = 0x11;
constexpr char kXOff = 0x13;
constexpr std::size_t kHead = 3;
constexpr std::size_t kTail = 4;
constexpr std::size_t kMostKept = std::size_t{2} * kReplyLength;  // more is no reply any more, however much comes

}  // namespace

std::optional<double> ParseReply(std::string_view reply) {
  if (reply.size() != kReplyLength) return std::nullopt;
  std::string_view text = reply.substr(kHead, kReplyLength - kHead - kTail);
  const auto trim = [&text] {
    while (text.starts_with(' ')) text.remove_prefix(1);
    while (text.ends_with(' ')) text.remove_suffix(1);
  };
  trim();
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
    trim();
  }
  // A second sign is none.
  if (text.empty() || !(text.front() == '.' || (text.front() >= '0' && text.front() <= '9'))) return std::nullopt;
  if (text.find('\t') != std::string_view::npos) return std::nullopt;
  const auto number = ParseNumber(text);
  if (!number) return std::nullopt;
  return negative && *number != 0 ? -*number : *number;
}

int TimeOnLine(const LineSettings& line, std::size_t characters) {
  const int bits = 1 + line.wordLen + (line.parity == 'N' ? 0 : 1) + line.stopBits;
  return static_cast<int>((characters * static_cast<std::size_t>(bits) * 1000 + static_cast<std::size_t>(line.baud) - 1) /
                          static_cast<std::size_t>(std::max(line.baud, 1)));
}

ReadingLoop::ReadingLoop(const LineSettings& line)
    : replyTime_(kInBuffTimer + TimeOnLine(line, kSendNetWeight.size() + kReplyLength)),
      // Two characters, and what a USB adapter holds back.
      silence_(TimeOnLine(line, 2) + 40),
      zeroTime_(TimeOnLine(line, kZero.size()) + kSNWTimer),
      freshFor_(2 * (replyTime_ + kSNWTimer)) {}

void ReadingLoop::Take(std::string_view received, std::int64_t now) {
  for (const char c : received) {
    if (c == kXOn || c == kXOff) continue;
    lastByte_ = now;
    if (reply_.size() < kMostKept) reply_ += c;
  }
}

void ReadingLoop::Finish(std::int64_t now) {
  waiting_ = false;
  if (const auto weight = ParseReply(reply_)) last_ = Reading{*weight, now};
  reply_.clear();
}

std::string_view ReadingLoop::Step(std::int64_t now, std::string_view received) {
  if (now < deafUntil_) return {};
  Take(received, now);
  if (waiting_) {
    const bool silent = !reply_.empty() && now - lastByte_ >= silence_;
    if (silent || (reply_.empty() && now - asked_ >= replyTime_)) Finish(now);
  } else if (!received.empty()) {
    // Nobody asked: a reply that is late, or noise. The next request waits until it is over.
    reply_.clear();
    nextAsk_ = std::max(nextAsk_, now + silence_);
  }
  if (waiting_ || now < nextAsk_) return {};
  waiting_ = true;
  reply_.clear();
  asked_ = lastByte_ = now;
  nextAsk_ = now + kSNWTimer;
  return kSendNetWeight;
}

std::string_view ReadingLoop::Zero(std::int64_t now) {
  // The reply to what was asked already may come at any time until it is due.
  const std::int64_t due = waiting_ ? asked_ + replyTime_ : now;
  deafUntil_ = nextAsk_ = std::max(due, now + zeroTime_);
  waiting_ = false;
  reply_.clear();
  last_.reset();
  return kZero;
}

}  // namespace vellumark
