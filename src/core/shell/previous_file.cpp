#include "core/shell/previous_file.h"

#include "core/session/settings.h"

namespace vellumark {

PreviousFile::PreviousFile(Session& session, OpeningWindows& windows)
    : session_(session),
      windows_(windows),
      name_(session.DataFileName),
      stored_(GetSetting(session, setting::DbFileName50)),
      wasOpen_(session.DataFileOpen),
      recordsetsWereOpen_(session.RecordsetsOpen) {}

void PreviousFile::Leave() {
  if (!wasOpen_) return;
  CloseDataFile(session_, windows_);
  windows_.ShutdownBackup(session_, "AutoBackup");
}

void PreviousFile::Return() {
  const bool nothingChanged = session_.DataFileName == name_ && session_.DataFileOpen == wasOpen_ &&
                              session_.RecordsetsOpen == recordsetsWereOpen_;
  if (nothingChanged) return;
  CloseDataFile(session_, windows_);
  session_.DataFileName = name_;
  if (GetSetting(session_, setting::DbFileName50) != stored_) StoreDefaultDataFile(session_, stored_);
  if (!wasOpen_) return;
  try {
    OpenDataFile(session_, windows_);
  } catch (const Failure& failure) {
    CloseDataFile(session_, windows_);
    session_.StartupMessage = failure.subject + "\n" + failure.cause + ".";
    windows_.ShowNewDataFile(session_.StartupMessage);
  }
}

}  // namespace vellumark
