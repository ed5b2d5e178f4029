#include "desktop/cloud/retrieve_splash.h"

#include <QTimer>

#include "desktop/cloud/cloud_works.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

CloudRetrieveSplash::CloudRetrieveSplash(WindowList& windowList, QWidget* owner, const QString& name, const QString& text,
                                         CloudParts parts)
    : Dialog(windowList, owner, name, tr("Cloud")), parts_(std::move(parts)) {
  Form form(*this);
  form.Wide(form.Label("lblRetrieving", text));
  QLabel* info = form.Hint({}, "lblUpdateInfo");
  form.Wide(info);
  QProgressBar* meter = MakeMeter("pbMeter");
  form.Wide(meter);
  progress_.emplace(*info, *meter);
  form.ButtonsWithoutDefault({form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(400);
}

void CloudRetrieveSplash::OnOpen(const Arguments& arguments) {
  work_ = arguments.Has("Work") ? arguments.Get<CloudWork>("Work") : AskForSets();
}

int CloudRetrieveSplash::exec() {
  QTimer::singleShot(0, this, [this] { Run(); });
  return Dialog::exec();
}

bool CloudRetrieveSplash::MayClose() {
  if (!progress_->IsRunning()) return true;
  progress_->Cancel();
  return false;
}

void CloudRetrieveSplash::Run() {
  const auto line = parts_.connect(session.clock);
  CloudDesk desk{session, *line, *progress_};
  progress_->Start();
  bool fetched = false;
  WithFiles(*this, windowTitle(), [&] {
    const auto made = work_(desk, false);
    if (!FormHost::Accepted(made)) return;
    const CloudOutcome& outcome = made->outcome;
    fetched = outcome.done;
    if (!outcome.done && !outcome.cancelled)
      session.prompt.Tell(U8(windowTitle()), outcome.Text(), vellumark::Icon::Exclamation);
  });
  progress_->Finish();
  done(fetched ? QDialog::Accepted : QDialog::Rejected);
}

}  // namespace vellumark::desktop
