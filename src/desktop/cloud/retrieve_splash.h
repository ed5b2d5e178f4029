#pragma once

#include <functional>
#include <optional>

#include "core/cloud/cloud_run.h"
#include "desktop/cloud/cloud_parts.h"
#include "desktop/cloud/get_put_data_form.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A small window while something is fetched that is shown next: it closes by itself. Opened with {"Work", CloudWork};
/// without one what is known of the account's backups is brought up to date. Accepted when that was done, and otherwise it tells why.
class CloudRetrieveSplash : public Dialog {
  Q_OBJECT

 public:
  CloudRetrieveSplash(WindowList& windowList, QWidget* owner, const QString& name, const QString& text, CloudParts parts);
  void OnOpen(const Arguments& arguments) override;
  int exec() override;
  bool MayClose() override;

 private:
  void Run();

  CloudParts parts_;
  CloudWork work_;
  std::optional<MeterProgress> progress_;
};

}  // namespace vellumark::desktop
