#include "desktop/settings/default_printer.h"

#include <QFontDatabase>
#include <QLayout>

#include "core/session/settings.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {

Default_Printer::Default_Printer(WindowList& windowList, QWidget* owner, const SystemPrinters& printers)
    : Dialog(windowList, owner, "Default_Printer", tr("Default Printer")) {
  Form form(*this);
  form.Row(tr("Default &Printer"), printer_ = form.Combo("cmbPrinter"));
  form.Row(tr("&Font"), font_ = form.Combo("cmbFont", QFontDatabase::families()));
  form.Row(sample_ = form.Label("lblSample", tr("OXIDE RED 3   12.500 lb.")));
  form.Row(Explain(form, tr("Reports and labels are printed on this printer, in this font.")));
  form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);

  ShowPrinters(*printer_, printers, GetSetting(session, setting::PrinterDevice));
  // A font of another machine stays the choice, though it cannot be shown here.
  const QString font = Q(session.PrinterFont);
  if (!font.isEmpty() && font_->findText(font) < 0) font_->insertItem(0, font);
  font_->SetText(session.PrinterFont);
  font_->setMinimumWidth(280);
  sample_->setMinimumHeight(sample_->fontMetrics().height() * 2);
  connect(font_, &QComboBox::currentTextChanged, this, &Default_Printer::ShowSample);
  ShowSample();
}

void Default_Printer::ShowSample() {
  QFont font(font_->currentText());
  font.setPointSizeF(Look::Base().pointSizeF() * 1.4);
  sample_->setFont(font);
}

void Default_Printer::cmdSave_Click() {
  // On a computer without printers the one that was chosen before stays.
  const std::string device =
      printer_->count() > 0 ? ChosenDevice(*printer_) : GetSetting(session, setting::PrinterDevice);
  if (Accepted(SaveDefaultPrinter(session, device, font_->Text()))) accept();
}

}  // namespace vellumark::desktop
