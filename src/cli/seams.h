#pragma once

#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "core/base/refusal.h"
#include "core/base/seams.h"
#include "core/shell/opening.h"

namespace vellumark::cli {

/// Writes on standard error. That it cannot be written is not told: there is nowhere left to tell it, and the exit
/// status says what happened.
void WriteError(const std::string& text);
/// A message as one text: its title before it, unless it begins with that already.
std::string Headed(std::string_view title, const std::string& text);

/// A question that no option answered.
struct UnansweredQuestion {
  Message message;
};

/// A login that the Data File asked for and the options did not give.
struct RefusedLogin {
  Refusal refusal;
};

/// Answers from --answer, --yes and --no; tells on standard error.
class OptionPrompt final : public Prompt {
 public:
  enum class Rest { Unanswered, Yes, No };

  /// `title` is compared without its leading and trailing blanks.
  void AddAnswer(std::string_view title, Answer answer);
  void SetRest(Rest rest) { rest_ = rest; }
  Answer Show(const Message& message) override;

 private:
  std::map<std::string, Answer> answers_;
  Rest rest_ = Rest::Unanswered;
};

/// A line on the terminal, once the work has lasted a moment; nothing when standard error is no terminal.
class TerminalProgress final : public Progress {
 public:
  TerminalProgress();
  ~TerminalProgress() override { Clear(); }
  void Begin(std::string_view text) override;
  void Percent(double percent) override;
  void End() override { Clear(); }

 private:
  void Clear();

  bool terminal_;
  bool shown_ = false;
  std::string text_;
  std::chrono::steady_clock::time_point began_;
  std::chrono::steady_clock::time_point drawn_;
};

/// The opening's windows on the command line: there are none, what they would say is said by the caller.
class NoWindows final : public OpeningWindows {
 public:
  NoWindows() = default;
  NoWindows(std::string user, std::string password) : user_(std::move(user)), password_(std::move(password)) {}

  void ShowNewDataFile(const std::string&) override {}
  std::optional<std::filesystem::path> ShowUpdateDataFile(const std::filesystem::path&, int) override { return {}; }
  /// With the user of the options; throws RefusedLogin.
  void Login(Session& session) override;
  void SetCaption(const std::string&) override {}
  void SuggestArchive(Session&) override {}
  void ShutdownBackup(Session&, const std::string&) override {}

 private:
  std::string user_;
  std::string password_;
};

}  // namespace vellumark::cli
