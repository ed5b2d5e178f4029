#pragma once

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <initializer_list>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

/// A caption that stands over its field.
inline QLabel* Caption(const QString& text, QWidget* field) {
  auto* label = new QLabel(text);
  label->setProperty("role", "label");
  label->setBuddy(field);
  QString plain = text;
  field->setAccessibleName(plain.remove('&'));
  return label;
}

/// What belongs to a caption, below it.
inline QVBoxLayout* Under(QWidget* caption, std::initializer_list<QWidget*> fields) {
  auto* cell = new QVBoxLayout;
  cell->setSpacing(space::kTight);
  cell->addWidget(caption);
  auto* across = new QHBoxLayout;
  across->setSpacing(space::kUnit);
  for (QWidget* field : fields) across->addWidget(field);
  cell->addLayout(across);
  return cell;
}

}  // namespace vellumark::desktop
