#pragma once

#include <memory>

#include "core/scale/serial_line.h"

namespace vellumark::devices {

/// The serial ports of this machine. For callers that know nothing of Qt; one at a time, in the main thread. It needs no
/// event loop.
std::unique_ptr<SerialLine> SystemLine();

}  // namespace vellumark::devices
