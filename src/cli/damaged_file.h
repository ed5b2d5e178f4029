#pragma once

#include "cli/frame.h"

namespace vellumark::cli {

/// For whoever puts a file right: opens it as every command does, with the login that it wants. That it cannot be read is
/// written to standard error and is no refusal; what keeps others out (a wrong password, another program) is one.
Result<void> OpenAsFarAsItCan(Context& context);

}  // namespace vellumark::cli
