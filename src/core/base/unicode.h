#pragma once

#include <string>
#include <string_view>

namespace vellumark {

// Between the UTF-8 of the program and what other programs write. They stand in text.cpp.

void AppendUtf8(std::string& text, char32_t character);
/// A half of a pair that stands alone, and a byte left over, become the character for what cannot be read.
std::string FromUtf16(std::string_view bytes, bool bigEndian);
/// Little-endian. A byte that is no UTF-8 becomes the character for what cannot be read.
std::string ToUtf16(std::string_view utf8);

}  // namespace vellumark
