#pragma once

#include "desktop/batch/batch_form.h"

namespace vellumark::desktop {

template <class T>
bool BatchForm::Took(const Result<T>& result) {
  if (result) return true;
  if (result.error().text.empty()) {
    FocusField(result.error().field);
  } else {
    ShowRefusal(result.error());
  }
  return false;
}

}  // namespace vellumark::desktop
