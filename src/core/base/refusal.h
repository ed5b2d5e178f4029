#pragma once

#include <expected>
#include <stdexcept>
#include <string>
#include <utility>

namespace vellumark {

/// What a rule says when it refuses an operation: the exact title and text for the user, and the name of the field
/// that should get the focus (empty when there is none).
struct Refusal {
  std::string title;
  std::string text;
  std::string field;
  /// The operator answered No to the question of that title: there is nothing more to say, only the focus to be given.
  bool declined = false;
  bool operator==(const Refusal&) const = default;
};

/// The answer of an operation that a rule may refuse.
template <class T>
using Result = std::expected<T, Refusal>;

inline std::unexpected<Refusal> Refuse(std::string title, std::string text, std::string field = {}) {
  return std::unexpected(Refusal{std::move(title), std::move(text), std::move(field), false});
}

/// The answer of an operation that a question stopped; without a text.
inline std::unexpected<Refusal> Decline(std::string question, std::string field = {}) {
  return std::unexpected(Refusal{std::move(question), {}, std::move(field), true});
}

/// A failure of the world: a file, a disk or a line. `subject` names it (a path, a port), `cause` says what happened.
class Failure : public std::runtime_error {
 public:
  Failure(std::string subjectOfFailure, std::string causeOfFailure)
      : std::runtime_error(subjectOfFailure + ": " + causeOfFailure),
        subject(std::move(subjectOfFailure)),
        cause(std::move(causeOfFailure)) {}

  std::string subject;
  std::string cause;
};

/// A value that a field of the Data File cannot hold: too wide, out of range, of another kind. Nothing was written.
class BadValue : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace vellumark
