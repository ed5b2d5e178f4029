#pragma once

#include "desktop/batch/batch_form.h"

namespace vellumark::desktop {

template <class T>
bool BatchForm::Took(const Result<T>& result) {
  if (!result) ShowRefusal(result.error());
  return result.has_value();
}

}  // namespace vellumark::desktop
