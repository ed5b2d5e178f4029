#pragma once

#include "core/jobs/photo_library.h"

namespace vellumark::paper {

/// False for a JPEG whose picture is cut off: the decoder would fill it up with grey.
bool IsWholeJpeg(std::string_view bytes);

/// Makes photos with the image formats of Qt. For callers that know nothing of it.
class JpegMaker final : public PhotoMaker {
 public:
  Result<std::string> Jpeg(const std::string& bytes, const std::string& name) const override;
};

}  // namespace vellumark::paper
