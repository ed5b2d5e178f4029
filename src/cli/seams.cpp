#include "cli/seams.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include "core/base/platform.h"
#include "core/base/text.h"
#include "core/session/users.h"

namespace vellumark::cli {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

void WriteError(const std::string& text) {
  std::fputs(text.c_str(), stderr);
  std::fflush(stderr);
}

std::string Headed(std::string_view title, const std::string& text) {
  const std::string head = Trim(title) + ": ";
  return head == ": " || text.starts_with(head) ? text : head + text;
}

void OptionPrompt::AddAnswer(std::string_view title, Answer answer) {
  answers_[Trim(title)] = answer;
}

Answer OptionPrompt::Show(const Message& message) {
  if (message.buttons == Buttons::Ok) {
    std::string text = message.text;
    text.erase(text.find_last_not_of(" \n") + 1);
    WriteError(Headed(message.title, text) + "\n");
    return Answer::Ok;
  }
  const bool confirms = message.buttons == Buttons::OkCancel;
  if (const auto found = answers_.find(Trim(message.title)); found != answers_.end()) {
    const Answer answer = found->second;
    if (confirms) return answer == Answer::Yes || answer == Answer::Ok ? Answer::Ok : Answer::Cancel;
    if (answer == Answer::Ok) return Answer::Yes;
    return answer == Answer::Cancel && message.buttons == Buttons::YesNo ? Answer::No : answer;
  }
  switch (rest_) {
    case Rest::Yes:
      return confirms ? Answer::Ok : Answer::Yes;
    case Rest::No:
      return confirms ? Answer::Cancel : Answer::No;
    case Rest::Unanswered:
      break;
  }
  throw UnansweredQuestion{message};
}

TerminalProgress::TerminalProgress() : terminal_(platform::ErrorsAreTerminal()) {}

void TerminalProgress::Begin(std::string_view text) {
  text_ = std::string(text);
  std::ranges::replace(text_, '\n', ' ');
  began_ = steady_clock::now();
}

void TerminalProgress::Percent(double percent) {
  if (!terminal_) return;
  const auto now = steady_clock::now();
  if (now - began_ < milliseconds(300) || now - drawn_ < milliseconds(100)) return;
  drawn_ = now;
  shown_ = true;
  WriteError(fmt::format("\r\x1b[K{} {:.0f}%", text_, percent));
}

void TerminalProgress::Clear() {
  if (!shown_) return;
  shown_ = false;
  WriteError("\r\x1b[K");
}

void NoWindows::Login(Session& session) {
  if (auto in = LogIn(session, user_, password_); !in) throw RefusedLogin{in.error()};
}

}  // namespace vellumark::cli
