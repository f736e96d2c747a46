#pragma once

#include <string>
#include <string_view>

#include "core/settings/registry_store.h"

namespace romsteward {

class Host;

/// Where the lock values live: `genpass` (the scrambled password; its presence locks the
/// interface) and `genmenu` ("1" when the menus and the toolbar are locked too).
inline constexpr std::string_view kInterfaceLockKey =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion";

inline constexpr std::string_view kLockCaption = "&Lock interface settings...";
inline constexpr std::string_view kUnlockCaption = "Un&lock interface settings...";

/// Each byte of `text` XORed with the next byte of a 24-bit linear congruential generator
/// reseeded from -`seed` (docs/interface-layout.md gives its constants). The result has the
/// text's length and is only ever compared, never decoded. This hides the password from a
/// glance at the settings file; it is no encryption.
std::string ScramblePassword(std::string_view text, int seed);

/// The lock as stored now.
struct InterfaceLock {
  bool locked = false;       ///< a password is stored
  bool menusLocked = false;  ///< locked, and `genmenu` is "1"
};
InterfaceLock ReadInterfaceLock(const RegistryStore& store);

/// The lock menu command: locks when no password is stored, else unlocks. Either takes
/// effect at the next start. The typed password goes nowhere but the comparison.
void ToggleInterfaceLock(Host& host, RegistryStore& store);
/// Asks for the password twice and whether the menus are locked too, then stores the lock.
void LockInterface(Host& host, RegistryStore& store);
/// Asks for the password and removes the lock when it is the stored one.
void UnlockInterface(Host& host, RegistryStore& store);

}  // namespace romsteward
