// Where users keep settings for programs: on Windows the registry, elsewhere text files.

#ifndef ZT_PLATFORM_SETTINGS_STORE_H
#define ZT_PLATFORM_SETTINGS_STORE_H

#include <cstdint>
#include <optional>
#include <span>

namespace zt {

/// A setting that is a number.
struct NumberSetting {
  const char* name = nullptr;          ///< Zero-terminated, plain ASCII.
  std::optional<std::uint32_t> value;  ///< Nothing where it is missing or is no such number.
};

/// Reads the values of the given settings of one key; those that are missing are left without one, all of them where the key is
/// missing or cannot be opened. Uses no heap, so that a crashed process can call it.
///
/// On Windows these are the key's values of type REG_DWORD. Elsewhere they are lines such as "flag = 0x107" of a text file: the
/// one that the environment variable JQMLOG_SETTINGS names, without it "/etc/jqmlog/" with the key's last part and ".conf". A
/// program with other rights than the user who starts it (set-user-id) ignores the variable. Spaces and tabs do not matter; "#"
/// begins a comment; numbers are decimal, or hexadecimal after "0x", and have 32 bits; of two lines for a name the latter
/// counts; other lines are ignored, and what follows the first 16 KiB.
///
/// @param key  path of the key, zero-terminated, its parts separated by backslashes: on Windows a key of HKEY_LOCAL_MACHINE
void ReadNumberSettings(const char* key, std::span<NumberSetting> settings);

}  // namespace zt

#endif  // ZT_PLATFORM_SETTINGS_STORE_H
