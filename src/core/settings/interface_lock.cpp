#include "core/settings/interface_lock.h"

#include <cstdint>
#include <optional>

#include "core/host/host.h"

namespace romsteward {

namespace {

constexpr std::string_view kPasswordValue = "genpass";
constexpr std::string_view kMenusValue = "genmenu";
constexpr std::string_view kPasswordCaption = "Password protection";

// A 24-bit linear congruential generator, x' = (a x + c) mod 2^24. The increment is odd and
// a - 1 is a multiple of 4, so every seed runs through all 2^24 states.
class LockGenerator {
public:
  explicit LockGenerator(int negativeSeed)
      // The seed's bits are spread over all three bytes, so that seeds one apart start far
      // apart.
      : m_state(
            (static_cast<std::uint32_t>(-static_cast<std::int64_t>(negativeSeed)) * kSeedSpread +
             kSeedOffset) &
            kMask) {}

  // The next number of [0, 1), in 24 bits.
  double Next() {
    m_state = static_cast<std::uint32_t>(
        (static_cast<std::uint64_t>(m_state) * kMultiplier + kIncrement) & kMask);
    return static_cast<double>(m_state) / static_cast<double>(kMask + 1);
  }

private:
  static constexpr std::uint32_t kMask = 0xFFFFFF;
  static constexpr std::uint32_t kMultiplier = 1664525;
  static constexpr std::uint32_t kIncrement = 7271263;
  static constexpr std::uint32_t kSeedSpread = 0x010101;
  static constexpr std::uint32_t kSeedOffset = 0x2F6B1D;
  std::uint32_t m_state;
};

int FirstByte(std::string_view text) {
  return static_cast<unsigned char>(text.front());
}

std::optional<std::string> AskPassword(Host& host, std::string_view prompt) {
  return host.AskText(prompt, kPasswordCaption, {}, true);
}

}  // namespace

std::string ScramblePassword(std::string_view text, int seed) {
  LockGenerator generator(-seed);
  std::string scrambled;
  scrambled.reserve(text.size());
  for (const char c : text) {
    const int key = static_cast<int>(256.0 * generator.Next());
    scrambled.push_back(static_cast<char>(static_cast<unsigned char>(c) ^ key));
  }
  return scrambled;
}

InterfaceLock ReadInterfaceLock(const RegistryStore& store) {
  InterfaceLock lock;
  const Result<std::string> password = store.GetValue(kInterfaceLockKey, kPasswordValue);
  // An empty value could never be matched: it would lock the owner out for good.
  lock.locked = password && !password->empty();
  const Result<std::string> menus = store.GetValue(kInterfaceLockKey, kMenusValue);
  lock.menusLocked = lock.locked && menus && *menus == "1";
  return lock;
}

void ToggleInterfaceLock(Host& host, RegistryStore& store) {
  if (ReadInterfaceLock(store).locked) {
    UnlockInterface(host, store);
  } else {
    LockInterface(host, store);
  }
}

void LockInterface(Host& host, RegistryStore& store) {
  const std::optional<std::string> password = AskPassword(host, "Type password");
  if (!password || password->empty()) return;
  // A cancelled confirmation is an empty text, which differs.
  if (AskPassword(host, "Confirm password").value_or(std::string()) != *password) {
    host.ShowMessage("You misspeled the password. Interface settings are NOT locked!",
                     MessageIcon::Critical, {});
    return;
  }
  const bool menus = host.AskYesNo("Do you want to lock all menus and the toolbar?",
                                   MessageIcon::Question, {}) == Answer::Yes;
  // The whole password is scrambled; the stored value begins with its first byte plain.
  const int seed = FirstByte(*password);
  const std::string stored = password->substr(0, 1) + ScramblePassword(*password, seed);
  // Both values in one write, so a failure leaves no half lock behind.
  const Status saved = store.SetValues(
      kInterfaceLockKey,
      {{std::string(kMenusValue), menus ? "1" : "0"}, {std::string(kPasswordValue), stored}});
  if (!saved) {
    host.ShowMessage("Error saving password to the system registry!", MessageIcon::Critical, {});
    return;
  }
  host.ShowMessage("Controls will be locked next time you restart Romsteward",
                   MessageIcon::Information, {});
}

void UnlockInterface(Host& host, RegistryStore& store) {
  const Result<std::string> stored = store.GetValue(kInterfaceLockKey, kPasswordValue);
  if (!stored || stored->empty()) return;
  const std::optional<std::string> typed = AskPassword(host, "Type password");
  if (!typed || typed->empty()) return;
  if (ScramblePassword(*typed, FirstByte(*stored)) != stored->substr(1)) {
    host.ShowMessage("You typed the wrong password! Try again!", MessageIcon::Critical, {});
    return;
  }
  if (!store.DeleteValue(kInterfaceLockKey, kPasswordValue)) {
    host.ShowMessage("Error erasing password from system registry! Interface settings LOCKED!",
                     MessageIcon::Critical, {});
    return;
  }
  host.ShowMessage("Interface settings will be unlocked next time you start Romsteward!",
                   MessageIcon::Exclamation, {});
}

}  // namespace romsteward
