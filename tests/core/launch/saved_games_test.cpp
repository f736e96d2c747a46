#include "core/launch/saved_games.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/scoped_env.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;

class SavedGamesTest : public ::testing::Test {
protected:
  void SetUp() override {
    std::filesystem::create_directories(m_dir / "roms");
    std::filesystem::create_directories(m_dir / "kgen");
    m_rom = m_dir.Write("roms/Sunset Rider.bin", "rom");
    m_kgen = (m_dir / "kgen" / "kgen.exe").string();
  }
  void Touch(const std::string& name) { m_dir.Write(name, "save"); }

  test::TempDir m_dir;
  std::filesystem::path m_rom;
  std::string m_kgen;
};

TEST_F(SavedGamesTest, EveryKindInTableOrderWithHeadingsOnlyForSnapshots) {
  Touch("roms/Sunset Rider.GSV");  // names match without regard to case
  Touch("roms/Sunset Rider.gs1");
  Touch("roms/Sunset Rider.gs0");
  Touch("roms/Sunset Rider.sav");
  Touch("kgen/Sunset Rider.ksb");
  Touch("kgen/SunsX.kss");    // other prefix: not this game's
  Touch("kgen/sunset2.kss");  // same first five letters: listed, as KGen names them
  Touch("kgen/Sunset Rider.kss");
  EXPECT_THAT(JogosSalvos(m_rom, m_kgen),
              ElementsAre("Genecyst State", "Genecyst Snapshots:", " - Sunset Rider.gs0",
                          " - Sunset Rider.gs1", "GenEm State", "KGen State",
                          "KGen Snapshots:", " - Sunset Rider.kss", " - sunset2.kss"));
}

TEST_F(SavedGamesTest, NothingFoundShowsTheSingleEntryAndShortNamesMatchWhole) {
  Touch("roms/Other.gsv");
  EXPECT_THAT(JogosSalvos(m_rom, m_kgen), ElementsAre("No saved games"));
  EXPECT_THAT(JogosSalvos(m_rom, ""), ElementsAre("No saved games"));  // no KGen path set
  // Short base names use the whole name for KGen snapshots.
  const auto rom = m_dir.Write("roms/Ax.md", "rom");
  Touch("kgen/Ax.kss");
  Touch("kgen/Ax9.kss");
  Touch("kgen/Axe.ksb");
  EXPECT_THAT(JogosSalvos(rom, m_kgen), ElementsAre("KGen Snapshots:", " - Ax.kss", " - Ax9.kss"));
}

TEST_F(SavedGamesTest, EntriesResolveToTheirFilesAndHeadingsAreRefused) {
  Touch("roms/Sunset Rider.gs2");
  Touch("kgen/Sunse.kss");
  Touch("roms/Sunset Rider.sav");
  const auto entries = JogosSalvos(m_rom, m_kgen);
  ASSERT_THAT(entries, ElementsAre("Genecyst Snapshots:", " - Sunset Rider.gs2", "GenEm State",
                                   "KGen Snapshots:", " - Sunse.kss"));
  EXPECT_EQ(SavedGameFile(entries, 0, m_rom, m_kgen).error().message,
            "You can't Delete a file type");
  EXPECT_EQ(*SavedGameFile(entries, 1, m_rom, m_kgen), m_dir / "roms" / "Sunset Rider.gs2");
  EXPECT_EQ(*SavedGameFile(entries, 2, m_rom, m_kgen), m_dir / "roms" / "Sunset Rider.sav");
  EXPECT_FALSE(SavedGameFile(entries, 3, m_rom, m_kgen).ok());
  EXPECT_EQ(*SavedGameFile(entries, 4, m_rom, m_kgen), m_dir / "kgen" / "Sunse.kss");

  // Of two states differing in case only, the one named exactly after the image.
  Touch("roms/SUNSET RIDER.gsv");
  Touch("roms/Sunset Rider.gsv");
  const auto both = JogosSalvos(m_rom, m_kgen);
  ASSERT_EQ(both.front(), "Genecyst State");
  EXPECT_EQ(*SavedGameFile(both, 0, m_rom, m_kgen), m_dir / "roms" / "Sunset Rider.gsv");
}

TEST_F(SavedGamesTest, DebianEmulatorFilesFollowTheClassicOnes) {
  test::ScopedEnv home("HOME", (m_dir / "home").string());
  test::ScopedEnv mednafen("MEDNAFEN_HOME", (m_dir / "mdn").string());
  for (const char* dir : {"home/.local/share/blastem/Sunset Rider", "mdn/sav", "mdn/mcs"})
    std::filesystem::create_directories(m_dir / dir);
  Touch("roms/Sunset Rider.sav");
  Touch("home/.local/share/blastem/Sunset Rider/save.sram");
  Touch("home/.local/share/blastem/Sunset Rider/slot_1.state");
  Touch("home/.local/share/blastem/Sunset Rider/quicksave.state");
  const std::string hash = "0123456789abcdef0123456789ABCDEF";
  Touch("mdn/sav/Sunset Rider." + hash + ".sav");
  Touch("mdn/mcs/Sunset Rider." + hash + ".mc3");
  Touch("mdn/mcs/Sunset Rider.mc0");                   // the older name, without the hash
  Touch("mdn/mcs/Sunset Rider.notahash.mc1");          // not Mednafen's
  Touch("mdn/mcs/Sunset Rider Two." + hash + ".mc0");  // another game
  const auto entries = JogosSalvos(m_rom, m_kgen);
  EXPECT_THAT(entries, ElementsAre("GenEm State", "BlastEm Battery Save", "BlastEm States:",
                                   " - quicksave.state", " - slot_1.state", "Mednafen Battery Save",
                                   "Mednafen States:", " - Sunset Rider." + hash + ".mc3",
                                   " - Sunset Rider.mc0"));
  EXPECT_EQ(SavedGameFile(entries, 4, m_rom, m_kgen).value(),
            m_dir / "home/.local/share/blastem/Sunset Rider/slot_1.state");
  EXPECT_EQ(SavedGameFile(entries, 5, m_rom, m_kgen).value(),
            m_dir / "mdn/sav" / ("Sunset Rider." + hash + ".sav"));
  EXPECT_EQ(SavedGameFile(entries, 8, m_rom, m_kgen).value(), m_dir / "mdn/mcs/Sunset Rider.mc0");
  EXPECT_FALSE(SavedGameFile(entries, 6, m_rom, m_kgen));  // a heading
}

}  // namespace
}  // namespace romsteward
