#include "desktop/shell/program.h"

#include "core/shell/opening.h"
#include "core/shell/support_renewal.h"

namespace vellumark::desktop {

Program::Program(WindowList& windowList)
    : windows_(windowList),
      session_(windowList.session),
      scale_(windowList),
      main_(windowList),
      startup_(main_, windowList, scale_) {
  main_.OnClosing([this] { return End(); });
  main_.OnCreateSupportFiles([this] { CreateSupportFiles(); });
  main_.OnScale([this](const std::string& item) { RunScale(item); });
}

bool Program::Start(const StartOptions& options) {
  try {
    if (!StartUp(session_, options, startup_)) return false;
    main_.EnableMenuItems();
    main_.ReopenWindows();
    return true;
  } catch (const EndOfProgram&) {
    // Chosen in a window of the start: whatever is open is closed, nothing is asked.
    main_.OnClosing({});
    CloseDataFile(session_, startup_);
    return false;
  } catch (const Failure& failure) {
    main_.OnClosing({});
    session_.prompt.Tell(failure.subject, failure.cause, Icon::Critical);
    status_ = 1;
    return false;
  }
}

bool Program::End() {
  main_.Remember();
  if (!windows_.CloseChildWindows() || !MayEnd(session_, startup_)) return false;
  main_.DisableMenuItems();
  EndSession(session_, startup_);
  return true;
}

void Program::CreateSupportFiles() {
  const auto created = CreateNewSupportFiles(session_, startup_);
  if (!created) session_.prompt.Tell(created.error().title, created.error().text, Icon::Exclamation);
}

void Program::RunScale(const std::string& item) {
  if (item == "menuScale_Setup") scale_.Setup();
  if (item == "menuScale_PowerOn") scale_.SwitchOn();
  if (item == "menuScale_PowerOff") scale_.SwitchOff();
}

}  // namespace vellumark::desktop
