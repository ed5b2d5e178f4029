#include "core/shell/support_renewal.h"

#include <system_error>

#include "core/session/rights.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

// The wait window goes whatever fails, and stays away while the setup window is open.
class Waiting {
 public:
  explicit Waiting(Session& session) : session_(session) { session_.progress.Begin("Creating Support Files ..."); }
  ~Waiting() { session_.progress.End(); }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

 private:
  Session& session_;
};

}  // namespace

std::string DataFileToKeep(const Session& session) {
  std::error_code ignored;
  if (session.DataFileName.empty() || fs::exists(session.DataFileName, ignored)) return session.DataFileName;
  return (session.ProgramFolder / kDefaultDataFile).string();
}

Result<bool> CreateNewSupportFiles(Session& session, StartupWindows& windows) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Advanced); !allowed)
    return std::unexpected(allowed.error());
  const Message question{"Create Support Files",
                         "Create new Vellumark support files ?\nCustomized program settings will have to be "
                         "re-entered.\nLabel designs will have to be re-created.",
                         Buttons::OkCancel, Icon::Question, Answer::Ok};
  if (session.prompt.Show(question) != Answer::Ok) return false;
  windows.CloseAllChildWindows();
  {
    const Waiting waiting(session);
    WriteFreshSupportFiles(*session.support);
    // At once, so that the file is still known should the machine stop in the setup window.
    StoreSettings(session, {setting::DbFileName50.To(DataFileToKeep(session))});
  }
  windows.ShowNewSetup(session);
  const Waiting waiting(session);
  ReadSettings(session);
  windows.TakePrinter(session);
  RunSupportLadder(session);
  return true;
}

}  // namespace vellumark
