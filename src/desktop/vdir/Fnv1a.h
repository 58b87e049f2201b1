#pragma once

#include <cstdint>
#include <string_view>

namespace valdrix::desktop {

/// The 64-bit hash FNV-1a: the same on every machine and in every version.
[[nodiscard]] constexpr std::uint64_t fnv1a(std::string_view bytes) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char byte : bytes)
    hash = (hash ^ static_cast<unsigned char>(byte)) * std::uint64_t{0x100000001b3};
  return hash;
}

}  // namespace valdrix::desktop
