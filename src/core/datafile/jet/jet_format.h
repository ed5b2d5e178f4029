#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace vellumark::jet {

// What both sides know of the bytes of a Jet file, in which every number is little-endian.

inline constexpr std::string_view kSignature{"Standard Jet DB\0", 16};
inline constexpr std::string_view kLaterSignature{"Standard ACE DB\0", 16};
inline constexpr std::size_t kSignatureAt = 4;
inline constexpr std::size_t kVersionAt = 0x14;
inline constexpr std::size_t kMaskAt = 0x18;
inline constexpr std::size_t kMaskBytes = 128;
inline constexpr std::size_t kKeyAt = 0x3E;
inline constexpr std::size_t kPasswordAt = 0x42;
inline constexpr std::size_t kCreatedAt = 0x72;
inline constexpr std::uint32_t kCatalogPage = 2;    ///< of the definition of MSysObjects
inline constexpr std::int64_t kDayOfEpoch = 25569;  ///< 1970-01-01, in days since 1899-12-30

/// Puts on, and takes off, the mask that lies over part of the first page.
void MaskHeader(std::string& page);

template <class T>
requires std::is_arithmetic_v<T> T Read(std::string_view bytes, std::size_t at) {
  T value{};
  bytes.copy(reinterpret_cast<char*>(&value), sizeof value, at);
  return value;
}

template <class T>
requires std::is_arithmetic_v<T>
void Append(std::string& bytes, T value) {
  bytes.append(std::bit_cast<const char*>(&value), sizeof value);
}

template <class T>
requires std::is_arithmetic_v<T>
void Put(std::string& bytes, std::size_t at, T value) {
  std::memcpy(bytes.data() + at, &value, sizeof value);
}

static_assert(std::endian::native == std::endian::little);

}  // namespace vellumark::jet
