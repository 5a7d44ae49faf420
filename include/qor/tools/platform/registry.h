// The registry store: hierarchical keys of typed values with the platform's
// calls, types and error numbers. Each predefined root is one SQLite file:
//
//   HKEY_CURRENT_USER    $XDG_CONFIG_HOME/qortools/registry/current_user.db  (~/.config by default)
//   HKEY_LOCAL_MACHINE   /var/lib/qortools/registry/local_machine.db
//   HKEY_CLASSES_ROOT    /var/lib/qortools/registry/classes_root.db
//
// or all three in $QORTOOLS_REGISTRY_DIR when that is set. Every write is one
// transaction, so several processes and threads may read and write at once
// and a process killed in the middle of a write loses nothing committed.
// Key and value names compare without regard to case; enumeration goes in
// the order the values and subkeys were made. A key with subkeys cannot be
// deleted (ERROR_ACCESS_DENIED); a store file that is not a database answers
// ERROR_BADDB and is left as it is.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/types.h"

namespace qor::tools {

struct registry_key;
using HKEY = registry_key *;

inline HKEY const HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t(0x80000000u));
inline HKEY const HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t(0x80000001u));
inline HKEY const HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t(0x80000002u));

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_DWORD_BIG_ENDIAN = 5;
inline constexpr DWORD REG_LINK = 6;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;

inline constexpr DWORD KEY_READ = 0x20019;
inline constexpr DWORD KEY_ALL_ACCESS = 0xF003F;
inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

inline constexpr DWORD ERROR_BADDB = 1009;
inline constexpr DWORD ERROR_KEY_DELETED = 1018;

using LSTATUS = std::int32_t;

// Paths are separated by backslashes; an empty or null path is the key itself.
QOR_TOOLS_API LSTATUS RegOpenKeyExW(HKEY key, char16_t const *path, DWORD options, DWORD access, HKEY *result);
QOR_TOOLS_API LSTATUS RegCreateKeyExW(HKEY key, char16_t const *path, DWORD reserved, char16_t *keyClass, DWORD options,
                                      DWORD access, void const *security, HKEY *result, DWORD *disposition);
QOR_TOOLS_API LSTATUS RegCloseKey(HKEY key);
QOR_TOOLS_API LSTATUS RegSetValueExW(HKEY key, char16_t const *name, DWORD reserved, DWORD type,
                                     std::uint8_t const *data, DWORD size);
// With a null `data` only the type and size are answered; a buffer that is
// too small gives ERROR_MORE_DATA and the size needed.
QOR_TOOLS_API LSTATUS RegQueryValueExW(HKEY key, char16_t const *name, DWORD *reserved, DWORD *type,
                                       std::uint8_t *data, DWORD *size);
QOR_TOOLS_API LSTATUS RegDeleteValueW(HKEY key, char16_t const *name);
QOR_TOOLS_API LSTATUS RegDeleteKeyW(HKEY key, char16_t const *path);
// `nameLength` is the buffer's size in characters on entry, the name's length
// without its terminator on return. ERROR_NO_MORE_ITEMS past the last.
QOR_TOOLS_API LSTATUS RegEnumValueW(HKEY key, DWORD index, char16_t *name, DWORD *nameLength, DWORD *reserved,
                                    DWORD *type, std::uint8_t *data, DWORD *size);
QOR_TOOLS_API LSTATUS RegEnumKeyExW(HKEY key, DWORD index, char16_t *name, DWORD *nameLength, DWORD *reserved,
                                    char16_t *keyClass, DWORD *classLength, void *lastWrite);

}  // namespace qor::tools
