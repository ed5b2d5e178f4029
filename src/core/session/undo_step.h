#pragma once

#include <cstdint>
#include <string>

#include "core/datafile/recorded_changes.h"
#include "core/session/acts.h"
#include "core/session/session.h"

namespace vellumark {

/// An act that can be taken back: hears what is written from its making on, and keeps it with the act. It stands behind
/// the transaction of the act. One inside another is part of that.
class UndoStep {
 public:
  /// `what` in words, such as "Delete RED"; `act` is what taking it back asks for. `subject` is a Batch that has to be
  /// closed before.
  UndoStep(Session& session, Act act, std::string what, std::string subject = {});
  /// All is written. Called before the commit.
  void Keep();

 private:
  Session& session_;
  Act act_;
  std::string what_;
  std::string subject_;
  std::int64_t lastLine_ = 0;  // of the stock history before the act
  ChangeRecorder recorder_;
};

/// The formulas of an import, which keeps itself what it did; in the transaction of the import.
void KeepImportForUndo(Session& session, std::int64_t import, std::string_view source);
/// What the subject of an import begins with.
inline constexpr std::string_view kImportSubject = "Import ";

}  // namespace vellumark
