#include "desktop/inventory/scan_data_field.h"

#include <QKeyEvent>
#include <QTextBlock>

#include "desktop/kit/scanned_entry.h"

namespace vellumark::desktop {
namespace {

constexpr int kMoment = 200;  // ms

}  // namespace

ScanDataField::ScanDataField(const QString& name) : NoteField(name) {
  ScannedEntry::Collects(*this);
  quiet_.setSingleShot(true);
  quiet_.setInterval(kMoment);
  connect(&quiet_, &QTimer::timeout, this, &ScanDataField::Read);
  connect(this, &QPlainTextEdit::textChanged, this, [this] {
    if (std::exchange(lines_, blockCount()) == blockCount()) return quiet_.start();
    quiet_.stop();
    Q_EMIT Read();
  });
}

QString ScanDataField::LastLine() const {
  QTextBlock block = document()->lastBlock().previous();
  while (block.isValid() && block.text().trimmed().isEmpty()) block = block.previous();
  return block.text().trimmed();
}

void ScanDataField::EndLine() {
  if (!textCursor().block().text().trimmed().isEmpty()) insertPlainText("\n");
}

void ScanDataField::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_J && event->modifiers() == Qt::ControlModifier) return EndLine();
  NoteField::keyPressEvent(event);
}

bool ScanDataField::focusNextPrevChild(bool next) {
  if (!next || textCursor().block().text().trimmed().isEmpty()) return NoteField::focusNextPrevChild(next);
  EndLine();
  return true;
}

}  // namespace vellumark::desktop
