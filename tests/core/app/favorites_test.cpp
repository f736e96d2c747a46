#include "core/library/favorites.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "core/app/main_window_model.h"
#include "core/launch/extracted_copies.h"
#include "core/launch/zip_archive.h"
#include "core/settings/emulator_options.h"
#include "core/settings/general_settings.h"
#include "support/cart_images.h"
#include "support/place_fixture.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// What the launch command saw when it was called.
struct LaunchSeen {
  std::string diret;
  std::string entry;
  int preferredEmulator = -1;
  bool imageThere = false;
  bool recorded = false;  // a killed run would leave nothing the next start cannot clear
};

class FavoritesTest : public test::PlaceTest {
protected:
  FavoritesTest() {
    // The fake launch: records the model's state and makes the image read-only, as an
    // archive can hand it over, then ends at once.
    model.SetLaunchStep([this](MainWindowModel& m, std::function<void()> done) {
      const std::filesystem::path image = Utf8ToPath(JoinDirName(m.Diret(), m.SelectedText()));
      const auto records = settings.Store().EnumerateValueNames(SectionKeyPath(kSectionExtractRun));
      launches.push_back({m.Diret(), m.SelectedText(), m.Options().preferredEmulator, exists(image),
                          records && !records->empty()});
      if (exists(image)) test::MakeReadOnly(image);
      done();
    });
  }
  std::string Roms() {
    const std::string dir = MakeDir("roms");
    Put(dir, "game.bin", ImageBytes(Layout::Bin));
    Put(dir, "other.smd", ImageBytes(Layout::Smd));
    return dir;
  }
  void Add(std::string_view title, std::string_view location) {
    ASSERT_TRUE(SaveFavorite(settings, title, location).ok());
  }
  // Runs `title` and counts the completions.
  int Run(std::string_view title) {
    int completions = 0;
    model.RunFavorite(title, [&] { ++completions; });
    return completions;
  }
  bool Stored(std::string_view title) const { return !FavoriteLocationOf(settings, title).empty(); }

  std::vector<LaunchSeen> launches;
  MainWindowModel model{host, settings};
};

TEST_F(FavoritesTest, TheMenuListsTitlesInNameOrderAndOneTitleIgnoresCase) {
  model.LoadFavoritesMenu();
  model.OpenFavoritesMenu();
  EXPECT_THAT(model.FavoriteMenu(), IsEmpty());
  EXPECT_FALSE(model.Controls()["mnu_orgfav"].enabled);
  EXPECT_FALSE(model.Controls()["mnu_addfav"].enabled);

  Add("zz top", "/a");
  Add("Sonic", "/b");
  Add(" b game", "/c");
  Add("aGame", "/d");
  Add("SONIC", "/e");  // the same value as "Sonic"
  model.LoadFavoritesMenu();
  model.OpenFavoritesMenu();
  ASSERT_EQ(model.FavoriteMenu().size(), 4u);
  EXPECT_EQ(model.FavoriteMenu()[0], "aGame");
  EXPECT_EQ(model.FavoriteMenu()[1], " b game");
  EXPECT_TRUE(EqualsIgnoreCase(model.FavoriteMenu()[2], "sonic"));
  EXPECT_EQ(FavoriteLocationOf(settings, "sonic"), "/e");
  EXPECT_TRUE(model.Controls()["mnu_orgfav"].enabled);
}

TEST_F(FavoritesTest, AddingAsksForATitleAndStoresTheLocationOfTheSelection) {
  const std::string dir = Roms();
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(0);
  host.AnswerText(std::nullopt).AnswerText("   ").AnswerText("My Game");
  model.AddFavorite();
  model.AddFavorite();
  EXPECT_THAT(model.FavoriteMenu(), IsEmpty());
  model.AddFavorite();
  EXPECT_THAT(model.FavoriteMenu(), ElementsAre("My Game"));
  EXPECT_EQ(FavoriteLocationOf(settings, "My Game"), JoinDirName(dir, "game.bin"));
  const auto boxes = host.EventsOf(test::PromptKind::Text);
  ASSERT_EQ(boxes.size(), 3u);
  EXPECT_EQ(boxes[0].title, "New Favorite Game");
  EXPECT_EQ(boxes[0].text, "Type the text you wish to see in 'Favorites' menu");
  EXPECT_EQ(boxes[0].initial, "game.bin");

  // Inside an archive the two backslashes mark the member.
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", MakeDir("temp")).ok());
  const std::string zip =
      Put(MakeDir("zips"), "set.zip", Zip({{"a.bin", ImageBytes(Layout::Bin)}}));
  ASSERT_TRUE(model.SetDiret(zip));
  model.Select(0);
  host.AnswerText("Zipped");
  model.AddFavorite();
  EXPECT_EQ(FavoriteLocationOf(settings, "Zipped"), zip + "\\\\a.bin");
}

TEST_F(FavoritesTest, AnArchivedFavoriteRunsFromATemporaryCopyThatIsDeletedAfterwards) {
  const std::string temp = MakeDir("temp");
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", temp).ok());
  const std::string zip =
      Put(MakeDir("zips"), "set.zip",
          Zip({{"a.bin", ImageBytes(Layout::Bin)}, {"sub/b.bin", ImageBytes(Layout::Bin)}}));
  Add("A", zip + "\\\\a.bin");
  Add("B", zip + "\\\\sub/b.bin");
  const std::string dir = Roms();
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(0);
  EXPECT_EQ(Run("A"), 1);
  EXPECT_EQ(Run("B"), 1);
  ASSERT_EQ(launches.size(), 2u);
  EXPECT_EQ(launches[0].diret, temp);
  EXPECT_EQ(launches[0].entry, "a.bin");
  EXPECT_TRUE(launches[0].imageThere);
  EXPECT_TRUE(launches[0].recorded);
  EXPECT_EQ(launches[1].diret, JoinDirName(temp, "sub"));
  EXPECT_TRUE(launches[1].imageThere);
  // Read-only during the run, gone after it; the list is back where it was.
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("temp")));
  EXPECT_EQ(RecoverInterruptedExtractions(host, settings.Store()), 0u);
  EXPECT_EQ(model.Diret(), dir);
  EXPECT_EQ(model.SelectedText(), "game.bin");
  EXPECT_THAT(host.Events(), IsEmpty());
}

TEST_F(FavoritesTest, ArchivedFavoritesThatCannotRunTellWhyAndLeaveNothingBehind) {
  const std::string zipDir = MakeDir("zips");
  const auto volumes =
      test::WriteSplitSet(PathOf("set"), test::MakeCartridge(512 * 1024), 256 * 1024);
  const std::string zip = Put(zipDir, "set.zip", Zip({{"set.1", test::ReadTestFile(volumes[0])}}));
  Add("Split", zip + "\\\\set.1");

  // No temporary folder set: the one in the cache folder, made for it and left empty.
  EXPECT_EQ(Run("Split"), 1);
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("cache/romsteward/temp")));
  // One that was deleted after it was chosen is not replaced behind the user's back.
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", PathToUtf8(PathOf("gone"))).ok());
  EXPECT_EQ(Run("Split"), 1);
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", MakeDir("temp")).ok());
  EXPECT_EQ(Run("Split"), 1);
  EXPECT_THAT(host.Texts(),
              ElementsAre("You can't run splitted files stored in a ZIP", kTempFolderMissing,
                          "You can't run splitted files stored in a ZIP"));
  for (const auto& event : host.Events())
    EXPECT_EQ(event.icon, MessageIcon::Critical);
  EXPECT_THAT(launches, IsEmpty());
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("temp")));
}

TEST_F(FavoritesTest, ADeadFavoriteIsOfferedForRemoval) {
  const std::string dir = Roms();
  const std::string zip =
      Put(MakeDir("zips"), "set.zip", Zip({{"a.bin", ImageBytes(Layout::Bin)}}));
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", MakeDir("temp")).ok());
  Add("Gone", JoinDirName(dir, "gone.bin"));
  Add("Empty", "");
  Add("No member", zip + "\\\\b.bin");
  model.LoadFavoritesMenu();

  host.AnswerYesNo(Answer::No);
  EXPECT_EQ(Run("Gone"), 1);
  EXPECT_TRUE(Stored("Gone"));
  host.AnswerYesNo(Answer::Yes).AnswerYesNo(Answer::Yes);
  EXPECT_EQ(Run("Gone"), 1);
  EXPECT_EQ(Run("No member"), 1);
  EXPECT_THAT(model.FavoriteMenu(), ElementsAre("Empty"));
  host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(Run("Empty"), 1);
  EXPECT_THAT(model.FavoriteMenu(), IsEmpty());
  EXPECT_THAT(launches, IsEmpty());
  const auto questions = host.EventsOf(test::PromptKind::YesNo);
  ASSERT_EQ(questions.size(), 4u);
  EXPECT_EQ(questions[0].text, "Rom not found, remove favorite from menu?");
  EXPECT_EQ(questions[0].icon, MessageIcon::Critical);
}

TEST_F(FavoritesTest, APlainFavoriteRunsWithItsSavedOptionsAndMissingEntriesAreRefused) {
  const std::string dir = Roms();
  Put(dir, "notes.txt", "text");
  EmulatorOptions saved;
  saved.preferredEmulator = 2;
  ASSERT_TRUE(SaveOptions(settings, OptionSection::Cartridge, saved, {}, "other.smd").ok());
  Add("Other", JoinDirName(dir, "other.smd"));
  ASSERT_TRUE(model.SetDiret(MakeDir("elsewhere")));
  EXPECT_EQ(Run("other"), 1);
  ASSERT_EQ(launches.size(), 1u);
  EXPECT_EQ(launches[0].diret, dir);
  EXPECT_EQ(launches[0].entry, "other.smd");
  EXPECT_EQ(launches[0].preferredEmulator, 2);
  EXPECT_EQ(model.Diret(), dir);  // the list stays where the favorite is
  model.RunImagePath("\"" + JoinDirName(dir, "game.bin") + "\"");
  ASSERT_EQ(launches.size(), 2u);
  EXPECT_EQ(launches[1].entry, "game.bin");

  // Hidden by the "Rom files" filter, missing, and in a directory that is gone.
  int completions = 0;
  for (const std::string& path : {JoinDirName(dir, "notes.txt"), JoinDirName(dir, "missing.bin"),
                                  PathToUtf8(PathOf("gone/game.bin"))})
    model.RunImagePath(path, [&] { ++completions; });
  EXPECT_EQ(completions, 3);
  EXPECT_EQ(launches.size(), 2u);
  EXPECT_THAT(host.Texts(),
              ElementsAre(kRomDoesNotExist, kRomDoesNotExist, "Directory no longer exists"));
}

// File names tell case apart: each road to an image reaches the one named exactly.
TEST_F(FavoritesTest, NamesDifferingOnlyInCaseReachTheImageNamedExactly) {
  const std::string dir = MakeDir("roms");
  for (const char* name : {"Sonic.bin", "sonic.bin", "SONIC.bin"})
    Put(dir, name, ImageBytes(Layout::Bin));
  for (const char* name : {"Sonic.bin", "sonic.bin", "SONIC.bin"}) {
    SCOPED_TRACE(name);
    launches.clear();
    Add("Game", JoinDirName(dir, name));
    EXPECT_EQ(Run("Game"), 1);
    model.RunImagePath(JoinDirName(dir, name));
    ASSERT_EQ(launches.size(), 2u);
    EXPECT_EQ(launches[0].entry, name);
    EXPECT_EQ(launches[1].entry, name);
    model.RefreshRomList();  // F5
    EXPECT_EQ(model.SelectedText(), name);
  }
}

TEST_F(FavoritesTest, RemovingTakesOneConfirmedTitleFromTheListDialog) {
  Add("One", "/a");
  Add("Two", "/b");
  model.LoadFavoritesMenu();
  host.AnswerList(std::nullopt);
  model.RemoveFavorites();
  host.AnswerList("Two").AnswerYesNo(Answer::No);
  model.RemoveFavorites();
  EXPECT_THAT(model.FavoriteMenu(), ElementsAre("One", "Two"));
  host.AnswerList("Two").AnswerYesNo(Answer::Yes);
  model.RemoveFavorites();
  EXPECT_THAT(model.FavoriteMenu(), ElementsAre("One"));
  EXPECT_FALSE(Stored("Two"));

  const auto lists = host.EventsOf(test::PromptKind::List);
  ASSERT_EQ(lists.size(), 3u);
  EXPECT_EQ(lists[0].title, "Remove items from favorite menu");
  EXPECT_THAT(lists[0].items, ElementsAre("One", "Two"));
  EXPECT_EQ(host.EventsOf(test::PromptKind::YesNo)[0].text,
            "Are you sure you want to remove 'Two' from the favorites menu?");
}

}  // namespace
}  // namespace romsteward
