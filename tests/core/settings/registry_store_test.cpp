#include "core/settings/registry_store.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "support/scoped_env.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using test::ReadTestFile;
using test::WriteTestFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Pair;

constexpr std::string_view kKey = "HKEY_CURRENT_USER\\Software\\Test";

std::vector<std::string> FolderListing(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

class RegistryStoreTest : public test::TempDirTest {
protected:
  std::unique_ptr<RegistryStore> OpenStore() {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    if (!store) {
      ADD_FAILURE() << store.error().message;
      return nullptr;
    }
    return std::move(store).value();
  }
};

TEST_F(RegistryStoreTest, KeyPathsAndValueNamesIgnoreCase) {
  auto store = OpenStore();
  ASSERT_TRUE(store->SetValue(kKey, "Kfrm", "3"));
  EXPECT_EQ(*store->GetValue("hkey_current_user\\SOFTWARE\\test", "kFRM"), "3");
  EXPECT_EQ(*store->GetValue(std::string(kKey) + "\\", "kfrm"), "3");

  // Writing under another spelling overwrites the one value; its first spelling stays.
  ASSERT_TRUE(store->SetValue("HKEY_CURRENT_USER\\software\\TEST", "KFRM", "4"));
  EXPECT_THAT(*store->EnumerateValues(kKey), ElementsAre(Pair("Kfrm", "4")));
  // Only ASCII letters fold: other bytes must match exactly.
  ASSERT_TRUE(store->SetValue(kKey, "\xC3\xA9", "e-acute"));
  EXPECT_FALSE(store->HasValue(kKey, "\xC3\x89"));
}

TEST_F(RegistryStoreTest, ValuesKeepEveryByte) {
  auto store = OpenStore();
  EXPECT_TRUE(RegistryStore::Open(PathOf("a/b/settings.sqlite3")));  // missing folders are made
  const std::string binary("\x00\x12\xFF\x00|\r\n", 7);
  ASSERT_TRUE(store->SetValue(kKey, "binary", binary));
  ASSERT_TRUE(store->SetValue(kKey, "empty", ""));
  ASSERT_TRUE(store->SetValue(kKey, "SONIC.BIN|Patch \xE9", "x"));
  EXPECT_EQ(*store->GetValue(kKey, "binary"), binary);
  EXPECT_EQ(store->GetValue(kKey, "empty").value(), "");
  EXPECT_TRUE(store->HasValue(kKey, "sonic.bin|patch \xE9"));

  // A name with a NUL byte is refused rather than cut short.
  auto refused = store->SetValue(kKey, std::string("a\0b", 3), "x");
  ASSERT_FALSE(refused);
  EXPECT_THAT(refused.error().message, HasSubstr("0x00"));
  store.reset();
  EXPECT_EQ(*OpenStore()->GetValue(kKey, "binary"), binary);  // and after reopening
}

TEST_F(RegistryStoreTest, EnumerationKeepsCreationOrder) {
  auto store = OpenStore();
  ASSERT_TRUE(store->SetValues(kKey, {{"b", "1"}, {"a", "2"}, {"c", "3"}}));
  ASSERT_TRUE(store->SetValue(kKey, "A", "overwritten"));  // keeps its place
  ASSERT_TRUE(store->DeleteValue(kKey, "b"));
  ASSERT_TRUE(store->SetValue(kKey, "b", "again"));  // a new value goes last
  EXPECT_THAT(*store->EnumerateValues(kKey),
              ElementsAre(Pair("a", "overwritten"), Pair("c", "3"), Pair("b", "again")));
  EXPECT_THAT(*store->EnumerateValueNames(kKey), ElementsAre("a", "c", "b"));
}

TEST_F(RegistryStoreTest, EveryCallReportsFailure) {
  auto store = OpenStore();
  EXPECT_FALSE(store->EnumerateValues(kKey));  // no such key yet
  EXPECT_FALSE(store->KeyExists(kKey));
  EXPECT_FALSE(store->DeleteValue(kKey, "x"));
  EXPECT_FALSE(store->GetValue(kKey, "x"));

  ASSERT_TRUE(store->SetValue(kKey, "x", "1"));
  EXPECT_TRUE(store->DeleteValue(kKey, "X"));
  auto again = store->DeleteValue(kKey, "x");
  ASSERT_FALSE(again);
  EXPECT_THAT(again.error().message, HasSubstr("\"x\""));

  // The key outlives its last value, as a registry key does.
  EXPECT_TRUE(store->KeyExists(kKey));
  ASSERT_TRUE(store->EnumerateValues(kKey));
  EXPECT_TRUE(store->EnumerateValues(kKey)->empty());
  EXPECT_FALSE(store->SetValue("\\", "x", "1"));
}

TEST_F(RegistryStoreTest, SubkeysAreListedOnceInCreationOrder) {
  auto store = OpenStore();
  ASSERT_TRUE(store->SetValue("Root\\Settings", "a", "1"));
  ASSERT_TRUE(store->SetValue("Root\\Cartridge\\Deep", "a", "1"));
  ASSERT_TRUE(store->SetValue("ROOT\\settings", "b", "1"));
  ASSERT_TRUE(store->SetValue("Rooted\\Other", "a", "1"));
  EXPECT_THAT(*store->EnumerateSubkeyNames("root"), ElementsAre("Settings", "Cartridge"));
  EXPECT_TRUE(store->EnumerateSubkeyNames("Nowhere")->empty());
}

// Files that cannot be a store: each is refused with its name and left byte for byte.
class UnusableStoreTest : public test::TempDirTest {
protected:
  void ExpectRefused(const std::filesystem::path& file, std::string_view why) {
    const std::string before = ReadTestFile(file);
    auto store = RegistryStore::Open(file);
    ASSERT_FALSE(store);
    EXPECT_THAT(store.error().message, HasSubstr(file.string()));
    EXPECT_THAT(store.error().message, HasSubstr(std::string(why)));
    EXPECT_EQ(ReadTestFile(file), before);
  }
};

TEST_F(UnusableStoreTest, TextFilesDamagedStoresOtherDatabasesAndFolders) {
  WriteTestFile(PathOf("notes.txt"), std::string(5000, 'x'));
  ExpectRefused(PathOf("notes.txt"), "not a database");

  const auto file = PathOf("settings.sqlite3");
  {
    auto store = RegistryStore::Open(file);
    ASSERT_TRUE(store);
    for (int i = 0; i < 200; ++i) {
      ASSERT_TRUE((*store)->SetValue(kKey, fmt::format("value{}", i), std::string(100, 'v')));
    }
  }
  std::string bytes = ReadTestFile(file);
  ASSERT_GT(bytes.size(), 3 * 4096u);
  bytes.replace(2 * 4096, 4096, 4096, '\xA5');  // a page of the values' table
  WriteTestFile(file, bytes);
  ExpectRefused(file, "damaged");

  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(PathOf("other.db").c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE songs(title TEXT)", nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(db);
  ExpectRefused(PathOf("other.db"), "another program");

  auto folder = RegistryStore::Open(Dir());
  ASSERT_FALSE(folder);
  EXPECT_THAT(folder.error().message, HasSubstr("folder"));
}

// The last writes of a program that never closed the store are in its journal alone; with the
// file cut short beside it, the store is refused and neither file is merged, changed or gone.
TEST_F(UnusableStoreTest, ADamagedStoreKeepsItsJournalAsItWas) {
  const auto file = PathOf("settings.sqlite3");
  {
    auto store = RegistryStore::Open(file);
    ASSERT_TRUE(store);
    for (int i = 0; i < 50; ++i)
      ASSERT_TRUE((*store)->SetValue(kKey, fmt::format("value{}", i), std::string(3000, 'v')));
  }
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  sqlite3_db_config(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  ASSERT_EQ(sqlite3_exec(db,
                         "INSERT INTO registry_values(key_id, name, folded, data) "
                         "SELECT id, 'late', 'late', zeroblob(5000) FROM registry_keys",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(db);
  const auto wal = PathOf("settings.sqlite3-wal");
  const std::string journal = ReadTestFile(wal);
  ASSERT_FALSE(journal.empty());
  const auto files = FolderListing(Dir());
  for (const std::uintmax_t size : {2 * 4096, 0}) {
    std::filesystem::resize_file(file, size);
    ExpectRefused(file, "damaged");
    ExpectRefused(file, "damaged");  // and again: the first look changed nothing
    EXPECT_EQ(ReadTestFile(wal), journal);
    EXPECT_EQ(FolderListing(Dir()), files);
  }
}

TEST(RegistryStoreLocation, EnvironmentChoosesTheFile) {
  test::ScopedEnv home("HOME", "/home/player");
  test::ScopedEnv chosen("ROMSTEWARD_SETTINGS", std::nullopt);
  {
    test::ScopedEnv xdg("XDG_CONFIG_HOME", "/cfg");
    EXPECT_EQ(RegistryStore::DefaultLocation(), "/cfg/romsteward/settings.sqlite3");
  }
  {
    test::ScopedEnv xdg("XDG_CONFIG_HOME", "relative");  // not absolute: ignored
    EXPECT_EQ(RegistryStore::DefaultLocation(), "/home/player/.config/romsteward/settings.sqlite3");
  }
  test::ScopedEnv portable("ROMSTEWARD_SETTINGS", "/portable/store.db");
  EXPECT_EQ(RegistryStore::DefaultLocation(), "/portable/store.db");
}

// A store in a folder nobody may write (and itself read-only) is read as it is; a write is
// refused with the reason, and no journal file is left beside it.
TEST_F(RegistryStoreTest, AReadOnlyStoreInAReadOnlyFolderIsStillRead) {
  namespace fs = std::filesystem;
  const auto folder = PathOf("locked");
  const auto file = folder / "settings.sqlite3";
  ASSERT_TRUE(fs::create_directory(folder));
  {
    auto store = RegistryStore::Open(file);
    ASSERT_TRUE(store);
    ASSERT_TRUE((*store)->SetValue(kKey, "kept", "1"));
  }
  const fs::perms readOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
  fs::permissions(file, readOnly);
  // The folder locked too, then only the file.
  for (const bool lockedFolder : {true, false}) {
    fs::permissions(folder, lockedFolder ? readOnly | fs::perms::owner_exec |
                                               fs::perms::group_exec | fs::perms::others_exec
                                         : fs::perms::owner_all);
    {
      auto store = RegistryStore::Open(file);
      ASSERT_TRUE(store) << store.error().message;
      EXPECT_EQ((*store)->GetValue(kKey, "kept").value(), "1");
      EXPECT_THAT(*(*store)->EnumerateValueNames(kKey), ElementsAre("kept"));
      const Status refused = (*store)->SetValue(kKey, "new", "2");
      ASSERT_FALSE(refused);
      EXPECT_THAT(refused.error().message, HasSubstr("it is read-only"));
    }
    if (lockedFolder) {
      EXPECT_THAT(FolderListing(folder), ElementsAre("settings.sqlite3"));
    }
  }
}

// Two copies of the program writing at once: every value of both arrives.
TEST_F(RegistryStoreTest, TwoProcessesWriteWithoutLoss) {
  constexpr int kPerProcess = 150;
  ASSERT_TRUE(OpenStore());  // created before the race, as after a first start
  const auto file = PathOf("settings.sqlite3");
  std::vector<pid_t> children;
  for (int child = 0; child < 2; ++child) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      // No test macros in the child: its exit status is its verdict.
      auto store = RegistryStore::Open(file);
      int failures = store ? 0 : 1;
      for (int i = 0; store && i < kPerProcess; ++i) {
        const std::string name = fmt::format("p{}.v{}", child, i);
        if (!(*store)->SetValue(kKey, name, name)) ++failures;
        if (!(*store)->SetValue(kKey, "shared", name)) ++failures;
        if (!(*store)->EnumerateValues(kKey)) ++failures;
      }
      _exit(failures == 0 ? 0 : 1);
    }
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  auto store = OpenStore();
  auto values = store->EnumerateValues(kKey);
  ASSERT_TRUE(values);
  EXPECT_EQ(values->size(), 2u * kPerProcess + 1);  // every name is new but "shared"
  for (const auto& [name, value] : *values)
    EXPECT_TRUE(name == "shared" || value == name) << name << " holds " << value;
}

}  // namespace
}  // namespace romsteward
