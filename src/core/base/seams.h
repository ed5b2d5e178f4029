#pragma once

#include <string>
#include <string_view>

#include "core/base/date.h"

namespace vellumark {

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };
enum class Icon { None, Information, Question, Exclamation, Critical };

/// One message to the operator. Title and text are shown as they stand, padding blanks included.
struct Message {
  std::string title;
  std::string text;
  Buttons buttons = Buttons::Ok;
  Icon icon = Icon::None;
  Answer defaultAnswer = Answer::Ok;
};

/// How the core asks and tells. The desktop answers with a message box, the command line from its options, tests from
/// a script. Questions are asked before a transaction opens, never inside one.
class Prompt {
 public:
  virtual ~Prompt() = default;
  virtual Answer Show(const Message& message) = 0;

  /// Tells, with an OK button only.
  void Tell(std::string title, std::string text, Icon icon = Icon::None);
  /// Asks Yes or No; true for Yes.
  bool Ask(std::string title, std::string text, Answer defaultAnswer = Answer::Yes);
};

/// How long work shows itself. Implementations decide when a wait window is worth showing.
class Progress {
 public:
  virtual ~Progress() = default;
  /// A new piece of work begins; `text` says which. The percent starts again at 0.
  virtual void Begin(std::string_view text) = 0;
  /// 0 to 100.
  virtual void Percent(double percent) = 0;
  /// True once the operator asked to stop; work that allows it then rolls back.
  virtual bool Cancelled() { return false; }
  virtual void End() {}
};

/// For callers that show nothing.
class NoProgress final : public Progress {
 public:
  void Begin(std::string_view) override {}
  void Percent(double) override {}
};

/// The only source of the present time.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual DateTime Now() const = 0;
  /// Midnight of the present day.
  DateTime Today() const { return Now().Midnight(); }
};

/// The machine's clock in local time.
class SystemClock final : public Clock {
 public:
  DateTime Now() const override;
};

/// A clock that stands where it was set: back-dated entry and tests.
class FixedClock final : public Clock {
 public:
  explicit FixedClock(DateTime now) : now_(now) {}
  DateTime Now() const override { return now_; }
  void Set(DateTime now) { now_ = now; }

 private:
  DateTime now_;
};

}  // namespace vellumark
