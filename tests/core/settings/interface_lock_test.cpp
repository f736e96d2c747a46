#include "core/settings/interface_lock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/scripted_host.h"
#include "support/settings_fixture.h"
#include "support/store_triggers.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;

constexpr std::string_view kLocked = "Controls will be locked next time you restart Romsteward";
constexpr std::string_view kUnlocked =
    "Interface settings will be unlocked next time you start Romsteward!";
constexpr std::string_view kWrong = "You typed the wrong password! Try again!";

class InterfaceLockTest : public test::SettingsTest {
protected:
  std::string Lock(std::string_view key) {
    auto value = Store().GetValue(kInterfaceLockKey, key);
    return value ? *value : "<missing>";
  }
  void LockWith(const std::string& password, Answer menus) {
    m_host.AnswerText(password).AnswerText(password).AnswerYesNo(menus);
    ToggleInterfaceLock(m_host, Store());
  }
  void UnlockWith(std::optional<std::string> typed) {
    m_host.AnswerText(std::move(typed));
    ToggleInterfaceLock(m_host, Store());
  }
  std::vector<std::string> Messages() const {
    std::vector<std::string> texts;
    for (const test::HostEvent& event : m_host.EventsOf(test::PromptKind::Message))
      texts.push_back(event.text);
    return texts;
  }
  test::ScriptedHost m_host;
};

TEST(ScramblePassword, IsARepeatableKeystreamOfTheSeed) {
  const std::string text = "correct horse battery staple";
  const std::string scrambled = ScramblePassword(text, 'c');
  EXPECT_EQ(scrambled.size(), text.size());
  EXPECT_NE(ScramblePassword(text, 'd'), scrambled);
  // XOR with the same stream: scrambling twice gives the text back, every byte value too.
  std::string bytes;
  for (int b = 0; b < 256; ++b)
    bytes.push_back(static_cast<char>(b));
  EXPECT_EQ(ScramblePassword(ScramblePassword(bytes, 255), 255), bytes);
  EXPECT_EQ(ScramblePassword("", 0), "");
}

TEST_F(InterfaceLockTest, LockThenUnlockWithTheRightPasswordOnly) {
  LockWith("s3cret", Answer::Yes);
  const std::vector<test::HostEvent> asked = m_host.EventsOf(test::PromptKind::Text);
  ASSERT_EQ(asked.size(), 2u);
  for (const test::HostEvent& event : asked) {
    EXPECT_TRUE(event.masked);
    EXPECT_EQ(event.title, "Password protection");
  }
  EXPECT_EQ(asked[0].text, "Type password");
  EXPECT_EQ(asked[1].text, "Confirm password");
  EXPECT_EQ(m_host.Texts().back(), kLocked);
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Information);
  EXPECT_EQ(Lock("genmenu"), "1");
  EXPECT_EQ(Lock("genpass"), "s" + ScramblePassword("s3cret", 's'));
  EXPECT_TRUE(ReadInterfaceLock(Store()).menusLocked);

  UnlockWith("s3cret!");  // wrong: nothing changes
  EXPECT_EQ(m_host.Texts().back(), kWrong);
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Critical);
  EXPECT_TRUE(ReadInterfaceLock(Store()).locked);

  UnlockWith("s3cret");
  EXPECT_EQ(m_host.Texts().back(), kUnlocked);
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Exclamation);
  EXPECT_EQ(Lock("genpass"), "<missing>");
  EXPECT_FALSE(ReadInterfaceLock(Store()).locked);
  EXPECT_FALSE(ReadInterfaceLock(Store()).menusLocked);  // genmenu alone locks nothing

  // A one-character password, with the menus left free.
  LockWith("x", Answer::No);
  EXPECT_EQ(Lock("genpass"), "x" + ScramblePassword("x", 'x'));  // two bytes
  EXPECT_EQ(Lock("genmenu"), "0");
  EXPECT_TRUE(ReadInterfaceLock(Store()).locked);
  EXPECT_FALSE(ReadInterfaceLock(Store()).menusLocked);
  UnlockWith("x");
  EXPECT_EQ(m_host.Texts().back(), kUnlocked);
}

TEST_F(InterfaceLockTest, NothingIsStoredWithoutTwoMatchingPasswords) {
  UnlockWith(std::string());  // no password stored: the command locks, and empty text stops
  UnlockWith(std::nullopt);   // cancelled
  EXPECT_TRUE(Messages().empty());

  m_host.AnswerText("abc").AnswerText("abd");
  ToggleInterfaceLock(m_host, Store());
  m_host.AnswerText("abc").AnswerText(std::nullopt);  // a cancelled confirmation differs
  ToggleInterfaceLock(m_host, Store());
  EXPECT_THAT(Messages(),
              ElementsAre("You misspeled the password. Interface settings are NOT locked!",
                          "You misspeled the password. Interface settings are NOT locked!"));
  EXPECT_EQ(Lock("genpass"), "<missing>");
  EXPECT_EQ(Lock("genmenu"), "<missing>");
  // An empty stored password could never be matched: it does not lock.
  ASSERT_TRUE(Store().SetValue(kInterfaceLockKey, "genpass", ""));
  EXPECT_FALSE(ReadInterfaceLock(Store()).locked);
}

TEST_F(InterfaceLockTest, FailingStoreKeepsTheStateItHad) {
  test::FailStoreWrites(PathOf("settings.sqlite3"), "INSERT", "genpass");
  LockWith("pw", Answer::Yes);
  EXPECT_EQ(m_host.Texts().back(), "Error saving password to the system registry!");
  EXPECT_EQ(Lock("genmenu"), "<missing>");  // both values or neither

  test::RunOnStoreFile(PathOf("settings.sqlite3"), "DROP TRIGGER fail_INSERT");
  ASSERT_TRUE(Store().SetValue(kInterfaceLockKey, "genpass", "p" + ScramblePassword("pw", 'p')));
  test::FailStoreWrites(PathOf("settings.sqlite3"), "DELETE", "genpass");
  UnlockWith("pw");
  EXPECT_EQ(m_host.Texts().back(),
            "Error erasing password from system registry! Interface settings LOCKED!");
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Critical);
  EXPECT_TRUE(ReadInterfaceLock(Store()).locked);
}

}  // namespace
}  // namespace romsteward
