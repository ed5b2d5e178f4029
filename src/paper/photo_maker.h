#pragma once

#include "core/jobs/photo_library.h"

namespace vellumark::paper {

/// Makes photos with the image formats of Qt. For callers that know nothing of it.
class JpegMaker final : public PhotoMaker {
 public:
  Result<std::string> Jpeg(const std::string& bytes, const std::string& name) const override;
};

}  // namespace vellumark::paper
