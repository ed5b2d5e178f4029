#include "desktop/cloud/cloud_about.h"

#include "core/cloud/cloud_settings.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

CloudAbout::CloudAbout(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CloudAbout", tr("About Cloud Service")) {
  Form form(*this);
  form.Heading(tr("A folder of your own at a host that all your shops reach"));
  Paragraph(form, tr("Backups of the Data File, of the settings, the label layouts and the photos of Designs are kept there, up to "
                     "30 of them. Each is read again before it counts as one, and can be restored at any time."));
  Paragraph(form, tr("With each backup a second copy goes up for the shops that share with you: your colors, formulas, Designs and "
                     "stock. Users, passwords, Batches and jobs are not in it."));
  Paragraph(form, tr("From the shops in your list of shared accounts you fetch the same: formulas and Designs to take over, and what "
                     "they have in stock."));
  Paragraph(form, tr("Reports go up as text for the administrator of the accounts, who can also send a Data File to a shop."));
  QuietParagraph(form, tr("The line is encrypted with TLS, and the certificate of the host is checked before the login. The host, "
                          "the account and the password come from whoever runs the host for you."));
  std::string account;
  try {
    account = CloudLine(session);
  } catch (const Failure& failure) {
    account = failure.subject + ": " + failure.cause;
  }
  QuietParagraph(form, account.empty() ? tr("No account has been entered yet.") : Q(account), "lblAccount");
  form.Buttons({form.Button("cmdClose", tr("Close"))});
  setMinimumWidth(560);
  FitHeight(*this);
}

}  // namespace vellumark::desktop
