#include "core/settings/interface_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/scripted_host.h"
#include "support/settings_fixture.h"
#include "support/store_triggers.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class InterfaceLayoutTest : public test::SettingsTest {
protected:
  // Every control at a rectangle of its own: control i at (i, 100 + i, 200 + i, 300 + i).
  static LayoutSnapshot FullSnapshot() {
    LayoutSnapshot snapshot{{}, 640, 480};
    int i = 0;
    for (const LayoutControl& control : kLayoutControls) {
      ++i;
      snapshot.controls[std::string(control.name)] = {i, 100 + i, 200 + i, 300 + i};
    }
    return snapshot;
  }
  std::vector<std::string> Names() {
    return Store().EnumerateValueNames(SectionKeyPath(kSectionSettings)).value();
  }
  test::ScriptedHost m_host;
};

TEST_F(InterfaceLayoutTest, SaveWritesInOrderAndReadsBack) {
  ASSERT_TRUE(WriteInterfaceLayout(Settings(), FullSnapshot()));

  // 1, 2, 3, 9, 5, 6, 7, 8, the window, then 10 to 27; 23 once, holding cystfm's rectangle.
  std::vector<std::string> expected;
  for (int n : {1, 2, 3, 9, 5, 6, 7, 8}) {
    for (const char* letter : {"X", "Y", "W", "H"})
      expected.push_back(letter + std::to_string(n));
  }
  expected.insert(expected.end(), {"WF", "HF"});
  for (int n = 10; n <= 27; ++n) {
    for (const char* letter : {"X", "Y", "W", "H"})
      expected.push_back(letter + std::to_string(n));
  }
  EXPECT_EQ(Names(), expected);
  // cystexclusive is the 22nd control, cystfm the 23rd.
  EXPECT_EQ(Stored(kSectionSettings, "X23"), "23");
  EXPECT_EQ(Stored(kSectionSettings, "H23"), "323");

  Reopen();
  const StoredLayout stored = ReadInterfaceLayout(Settings());
  EXPECT_EQ(stored.windowWidth, 640);
  EXPECT_EQ(stored.windowHeight, 480);
  const LayoutSnapshot saved = FullSnapshot();
  EXPECT_EQ(stored.controls.size(), 26u);
  EXPECT_FALSE(stored.controls.contains("cystexclusive"));
  for (const auto& [name, rect] : stored.controls) {
    const ControlRect& want = saved.controls.at(name);
    EXPECT_EQ(rect, (StoredRect{want.x, want.y, want.width, want.height})) << name;
  }
}

TEST_F(InterfaceLayoutTest, ReadKeepsOnlyUsableKeys) {
  // Nothing stored: no entry at all.
  EXPECT_TRUE(ReadInterfaceLayout(Settings()).controls.empty());
  EXPECT_FALSE(ReadInterfaceLayout(Settings()).windowWidth);

  ASSERT_TRUE(Settings().SaveSettings(kSectionSettings, {{"X5", "12"},
                                                         {"Y5", "junk"},
                                                         {"W5", "0"},
                                                         {"H5", "-40"},
                                                         {"X2", "-7"},
                                                         {"WF", "900"},
                                                         {"HF", "abc"}}));
  const StoredLayout stored = ReadInterfaceLayout(Settings());
  ASSERT_EQ(stored.controls.size(), 2u);
  EXPECT_EQ(stored.controls.at("List1"), (StoredRect{12, {}, {}, {}}));
  EXPECT_EQ(stored.controls.at("CmdForce"), (StoredRect{-7, {}, {}, {}}));
  EXPECT_EQ(stored.windowWidth, 900);
  EXPECT_FALSE(stored.windowHeight);
}

TEST_F(InterfaceLayoutTest, EraseDeletesInOrderAndPassesOverMissingKeys) {
  ASSERT_TRUE(WriteInterfaceLayout(Settings(), FullSnapshot()));
  ASSERT_TRUE(Settings().SaveSettings(
      kSectionSettings, {{"LaunchX", "10"}, {"prevY", "5"}, {"Joy", "1"}, {"X4", "1"}}));
  test::RunOnStoreFile(PathOf("settings.sqlite3"),
                       "CREATE TABLE erased(name); CREATE TRIGGER log AFTER DELETE ON "
                       "registry_values BEGIN INSERT INTO erased VALUES(OLD.name); END;");
  EraseInterfaceLayout(m_host, Settings());

  EXPECT_EQ(m_host.Texts(), std::vector<std::string>{"Please, restart Genesis Romsteward!"});
  // Keys that belong to others, and the unused number 4, stay.
  EXPECT_THAT(Names(), ElementsAre("Joy", "X4"));
  Close();
  std::vector<std::string> erased;
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(PathOf("settings.sqlite3").c_str(), &db), SQLITE_OK);
  sqlite3_stmt* rows = nullptr;
  sqlite3_prepare_v2(db, "SELECT name FROM erased ORDER BY rowid", -1, &rows, nullptr);
  while (sqlite3_step(rows) == SQLITE_ROW)
    erased.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(rows, 0)));
  sqlite3_finalize(rows);
  sqlite3_close(db);
  ASSERT_EQ(erased.size(), 2u * 2 * 26 + 4);
  EXPECT_THAT(std::vector(erased.begin(), erased.begin() + 6),
              ElementsAre("X1", "Y1", "X2", "Y2", "X3", "Y3"));
  EXPECT_EQ(erased[6], "X5");  // 4 is no number
  EXPECT_THAT(std::vector(erased.begin() + 50, erased.begin() + 56),
              ElementsAre("X27", "Y27", "W1", "H1", "W2", "H2"));
  EXPECT_THAT(std::vector(erased.end() - 4, erased.end()),
              ElementsAre("WF", "HF", "LaunchX", "prevY"));
}

TEST_F(InterfaceLayoutTest, FailingStoreLosesNothingAndSaysSo) {
  ASSERT_TRUE(Settings().SaveSetting(kSectionSettings, "X1", "5"));
  ASSERT_TRUE(Settings().SaveSetting(kSectionSettings, "Y1", "6"));
  test::FailStoreWrites(PathOf("settings.sqlite3"), "INSERT", "H27");
  test::FailStoreWrites(PathOf("settings.sqlite3"), "DELETE", "X1");

  // A save is all or nothing: the old values stay.
  SaveInterfaceLayout(m_host, Settings(), FullSnapshot());
  EXPECT_THAT(Names(), ElementsAre("X1", "Y1"));
  EXPECT_EQ(Stored(kSectionSettings, "X1"), "5");

  // A refused deletion is reported; the rest is still erased.
  EraseInterfaceLayout(m_host, Settings());
  EXPECT_THAT(Names(), ElementsAre("X1"));
  const std::vector<std::string> texts = m_host.Texts();
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_THAT(texts[0], HasSubstr("The interface settings were not saved."));
  EXPECT_THAT(texts[0], HasSubstr("injected failure"));
  EXPECT_THAT(texts[1], HasSubstr("Some interface settings could not be erased."));
  EXPECT_EQ(texts[2], "Please, restart Genesis Romsteward!");
}

}  // namespace
}  // namespace romsteward
