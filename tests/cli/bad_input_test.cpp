// Every subcommand fed what a new user might give it by mistake: each refusal exits 2 with a
// message naming the file, and leaves every file as it was, with nothing half written or
// left behind.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <thread>

#include "core/cart/convert.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/ips_create.h"
#include "support/cart_images.h"
#include "tool_runner.h"

namespace romsteward {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

enum class Input { Missing, Folder, Empty, OneByte, Bytes511, TruncatedSmd, Fifo, FakeZip };

// One subcommand line: "{in}" is the bad input, "{image}" a sound image, "{patch}" a sound
// patch, "{out}" an output that does not exist yet, "{dir}" the folder of all of them.
struct Command {
  std::vector<std::string> args;
  std::vector<Input> refused;
};

const std::vector<Input> kAllInputs = {Input::Missing, Input::Folder,   Input::Empty,
                                       Input::OneByte, Input::Bytes511, Input::TruncatedSmd};
const std::vector<Input> kNoImage = {Input::Missing, Input::Folder, Input::Empty, Input::OneByte,
                                     Input::Bytes511};

const Command kCommands[] = {
    // Any file is described; only what cannot be read or is cut short is refused.
    {{"info", "{in}"}, {Input::Missing, Input::Folder, Input::TruncatedSmd}},
    {{"checksum", "{in}"}, kAllInputs},
    {{"checksum", "--fix", "--backup", "{in}"}, kAllInputs},
    {{"repair", "--yes", "{in}"}, kNoImage},
    {{"restore-checksum", "{in}"}, kNoImage},
    {{"convert", "--to", "md", "{in}", "-o", "{out}"}, kAllInputs},
    {{"split", "--size", "1", "{in}"}, kAllInputs},
    {{"join", "{in}"}, kAllInputs},
    {{"ips", "create", "{in}", "{image}", "-o", "{out}"}, kAllInputs},
    {{"ips", "create", "{image}", "{in}", "-o", "{out}"}, kAllInputs},
    {{"ips", "apply", "{in}", "{image}"}, kNoImage},
    {{"ips", "apply", "{patch}", "{in}"}, {Input::Missing, Input::Folder}},
    {{"patch", "from-ips", "{image}", "{in}", "p"}, kNoImage},
    {{"join-files", "{out}", "{image}", "{in}"}, {Input::Missing, Input::Folder}},
    // A file that only starts like a ZIP archive lists nothing: it is refused, not "0 files".
    {{"list", "{in}"},
     {Input::Missing, Input::Empty, Input::OneByte, Input::Bytes511, Input::FakeZip}},
    {{"report", "{in}", "-o", "{out}"},
     {Input::Missing, Input::Empty, Input::OneByte, Input::FakeZip}},
    {{"report", "--template", "{in}", "{dir}", "-o", "{out}"}, kNoImage},
};

class BadInputTest : public test::ByteFileTest {
protected:
  BadInputTest() {
    std::filesystem::create_directory(m_dir);
    m_image = (m_dir / "sound.bin").string();
    test::WriteTestFile(m_image, test::MakeCartridge(64 * 1024, 2));
    std::string changed = test::ReadTestFile(m_image);
    changed[0x300] = 'X';
    m_patch = (m_dir / "sound.ips").string();
    test::WriteTestFile(m_patch, DiffToIps(test::ReadTestFile(m_image), changed)->bytes);
  }

  // Makes the bad input `kind` under `name` in the work folder and returns its path.
  std::string MakeInput(Input kind, const std::string& name) const {
    const auto path = m_dir / Utf8ToPath(name);
    switch (kind) {
      case Input::Missing:
        break;
      case Input::Folder:
        std::filesystem::create_directory(path);
        break;
      case Input::Empty:
        test::WriteTestFile(path, "");
        break;
      case Input::OneByte:
        test::WriteTestFile(path, "\x01");
        break;
      case Input::Bytes511:
        test::WriteTestFile(path, std::string(511, '\x7F'));
        break;
      case Input::Fifo:
        ::mkfifo(path.c_str(), 0600);
        break;
      case Input::FakeZip:
        test::WriteTestFile(path, "PK" + std::string(600, '\x03'));
        break;
      case Input::TruncatedSmd: {
        // A copier header announcing four blocks, and not even one after it.
        const std::string smd = EncodeImage(test::MakeCartridge(64 * 1024, 3), Layout::Smd);
        test::WriteTestFile(path, smd.substr(0, 512 + 10000));
        break;
      }
    }
    return PathToUtf8(path);
  }

  std::vector<std::string> Line(const Command& command, const std::string& input) const {
    std::vector<std::string> args = {"--settings", PathOf("store.sqlite3").string()};
    for (const std::string& arg : command.args) {
      std::string text = arg;
      const std::map<std::string, std::string> values = {{"{in}", input},
                                                         {"{image}", m_image},
                                                         {"{patch}", m_patch},
                                                         {"{out}", (m_dir / "out.bin").string()},
                                                         {"{dir}", m_dir.string()}};
      if (auto found = values.find(arg); found != values.end()) text = found->second;
      args.push_back(text);
    }
    return args;
  }

  // Every path under the work folder with a digest of its contents (a folder as "/", a FIFO
  // as "|"; a huge file by its size and time of change).
  std::map<std::string, std::string> Snapshot() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_dir)) {
      std::string& seen = files[entry.path().string()];
      if (entry.is_directory())
        seen = "/";
      else if (!entry.is_regular_file())
        seen = "|";
      else if (entry.file_size() > (1u << 20))
        seen = std::to_string(entry.file_size()) + "@" +
               std::to_string(entry.last_write_time().time_since_epoch().count());
      else
        seen = std::to_string(std::hash<std::string>()(test::ReadTestFile(entry.path())));
    }
    return files;
  }

  // Runs `command` on the bad input `kind` named `name`: it must be refused cleanly.
  test::ToolRun ExpectRefused(const Command& command, Input kind, const std::string& name) {
    const std::string input = MakeInput(kind, name);
    const auto before = Snapshot();
    const auto args = Line(command, input);
    const test::ToolRun run = test::RunToolWith(args);
    const std::string line = EscapeForDisplay(::testing::PrintToString(args));
    EXPECT_EQ(run.status, cli::kExitError) << line << "\n" << run.out << run.err;
    // The name as given, or as shown escaped on one line (join names the set's first volume,
    // so the name without its extension is enough).
    const std::string stem = input.substr(0, input.rfind('.'));
    EXPECT_THAT(run.err, AnyOf(HasSubstr(stem), HasSubstr(EscapeForDisplay(stem)),
                               HasSubstr(EscapeForDisplay(stem, false))))
        << line << "\n"
        << run.err;
    EXPECT_EQ(Snapshot(), before) << line;
    std::filesystem::remove_all(Utf8ToPath(input));
    return run;
  }

  const std::filesystem::path m_dir = PathOf("work");
  std::string m_image;
  std::string m_patch;
};

TEST_F(BadInputTest, EveryCommandRefusesWhatIsNoUsableInput) {
  for (const Command& command : kCommands) {
    for (const Input kind : command.refused)
      ExpectRefused(command, kind, "input.bin");
  }
}

// Opening a FIFO for reading waits for a writer: every command must refuse it at once. A
// helper opens it for writing now and then, so a command that does wait gets through to
// an empty read and fails here instead of hanging the suite.
TEST_F(BadInputTest, FifosAreRefusedInsteadOfWaitedOn) {
  const Command readers[] = {
      {{"info", "{in}"}, {}},
      {{"checksum", "--fix", "{in}"}, {}},
      {{"convert", "--to", "md", "{in}", "-o", "{out}"}, {}},
      {{"split", "--size", "1", "{in}"}, {}},
      {{"join-files", "{out}", "{image}", "{in}"}, {}},
      {{"ips", "create", "{in}", "{image}", "-o", "{out}"}, {}},
      {{"ips", "create", "{image}", "{in}", "-o", "{out}"}, {}},
      {{"ips", "apply", "{in}", "{image}"}, {}},
      {{"patch", "add", "{in}", "p", "0", "00"}, {}},
      {{"patch", "from-ips", "{image}", "{in}", "p"}, {}},
      {{"repair", "--yes", "{in}"}, {}},
      {{"restore-checksum", "{in}"}, {}},
      {{"report", "--template", "{in}", "{dir}", "-o", "{out}"}, {}},
      {{"identify", "--dat", "{in}", "{image}"}, {}},
  };
  const std::string fifo = (m_dir / "input.bin").string();
  std::atomic<bool> done = false;
  std::thread releaser([&] {
    while (!done) {
      const int fd = ::open(fifo.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
      if (fd >= 0) ::close(fd);
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  });
  for (const Command& command : readers) {
    const test::ToolRun run = ExpectRefused(command, Input::Fifo, "input.bin");
    EXPECT_THAT(run.err, HasSubstr("not a regular file")) << command.args[0] << run.err;
  }
  done = true;
  releaser.join();
}

TEST_F(BadInputTest, AwkwardNamesAreShownAsTheyAre) {
  for (const std::string name :
       {"with blanks .bin", "it's \"quoted\".bin", "new\nline.bin", "latin\xE9\xFF.bin"}) {
    for (const Command& command : kCommands)
      ExpectRefused(command, Input::Missing, name);
  }
  // convert shows the names it writes and refuses on one line, escaped.
  const std::string odd = (m_dir / "new\nline.bin").string();
  test::WriteTestFile(odd, test::ReadTestFile(m_image));
  for (int run = 0; run < 2; ++run) {  // written, then refused as existing
    const test::ToolRun converted = test::RunToolWith({"convert", "--to", "smd", odd});
    EXPECT_EQ(converted.status, run == 0 ? cli::kExitOk : cli::kExitError) << converted.err;
    EXPECT_THAT(converted.out + converted.err, HasSubstr(EscapeForDisplay("new\nline.smd")));
    EXPECT_THAT(converted.out + converted.err, ::testing::Not(HasSubstr("new\nline")));
  }
  // A name with a leading dash reads as an option: the usage error names it.
  const test::ToolRun dash = test::RunToolWith({"checksum", "-game.bin"});
  EXPECT_EQ(dash.status, cli::kExitError);
  EXPECT_THAT(dash.err, HasSubstr("-game.bin"));
  EXPECT_THAT(dash.err, HasSubstr("Usage: romsteward-tool checksum"));
}

TEST_F(BadInputTest, OutputsThatCannotBeWrittenLeaveNothing) {
  std::vector<std::filesystem::path> places = {m_dir / "missing" / "out.bin"};
  // The superuser writes into any folder, so a read-only one only stops other users.
  if (::geteuid() != 0) {
    std::filesystem::create_directory(m_dir / "locked");
    std::filesystem::permissions(m_dir / "locked", std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    places.push_back(m_dir / "locked" / "out.bin");
  }
  for (const auto& out : places) {
    const Command writers[] = {
        {{"convert", "--to", "smd", "{image}", "-o", out.string()}, {}},
        {{"ips", "create", "{image}", "{image}", "-o", out.string()}, {}},
        {{"report", "{dir}", "-o", out.string()}, {}},
        {{"join-files", out.string(), "{image}"}, {}},
    };
    for (const Command& command : writers) {
      const auto before = Snapshot();
      const test::ToolRun run = test::RunToolWith(Line(command, ""));
      EXPECT_EQ(run.status, cli::kExitError) << command.args[0] << run.err;
      EXPECT_THAT(run.err, HasSubstr(out.parent_path().string())) << command.args[0];
      EXPECT_EQ(Snapshot(), before) << command.args[0];
    }
  }
}

TEST_F(BadInputTest, ReadOnlyImagesAndDamagedStoresAreLeftAlone) {
  std::string wrong = test::MakeCartridge(64 * 1024, 4);
  wrong[0x18E] = static_cast<char>(wrong[0x18E] + 1);
  const auto image = m_dir / "read-only.bin";
  test::WriteTestFile(image, wrong);
  test::MakeReadOnly(image);
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"checksum", "--fix", image.string()},
        {"ips", "apply", m_patch, image.string()}}) {
    const test::ToolRun run = test::RunToolWith(args);
    EXPECT_EQ(run.status, cli::kExitError) << args[0];
    EXPECT_THAT(run.err + run.out, HasSubstr(image.string())) << args[0];
    EXPECT_EQ(test::ReadTestFile(image), wrong) << args[0];
  }

  const auto store = Put("damaged.sqlite3", "SQLite format 3" + std::string(600, '\x55'));
  const std::string damaged = test::ReadTestFile(store);
  for (const std::vector<std::string>& args : {std::vector<std::string>{"settings", "list"},
                                               {"repair", m_image},
                                               {"list", m_dir.string()},
                                               {"patch", "list", m_image},
                                               {"checksum", "--fix", "--backup", image.string()}}) {
    std::vector<std::string> line = {"--settings", store.string()};
    line.insert(line.end(), args.begin(), args.end());
    const test::ToolRun run = test::RunToolWith(line);
    EXPECT_EQ(run.status, cli::kExitError) << args[0];
    EXPECT_THAT(run.err, HasSubstr(store.string())) << args[0];
    EXPECT_EQ(test::ReadTestFile(store), damaged) << args[0];
  }
}

TEST_F(BadInputTest, UsageErrorsExitTwoWithTheShortUsage) {
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"checksum", "--frobnicate", m_image},
        {"checksum"},
        {"ips", "create", m_image},
        {"nonsense"},
        {}}) {
    const test::ToolRun run = test::RunToolWith(args);
    EXPECT_EQ(run.status, cli::kExitError) << ::testing::PrintToString(args);
    EXPECT_THAT(run.err, HasSubstr("Usage: romsteward-tool")) << ::testing::PrintToString(args);
    EXPECT_EQ(run.out, "");
  }
  EXPECT_EQ(test::RunToolWith({"--help"}).status, cli::kExitOk);
}

// A 3 GiB sparse image costs no disk; whatever a command does with it, it must not hold it
// in memory.
TEST_F(BadInputTest, HugeSparseInputsKeepMemoryBounded) {
  constexpr std::uint64_t kHuge = 3ull << 30;
  const auto huge = m_dir / "huge.bin";
  const auto other = m_dir / "huge2.bin";
  for (const auto& path : {huge, other}) {
    test::WriteTestFile(path, test::MakeCartridge(64 * 1024, 5));
    std::filesystem::resize_file(path, kHuge);
  }
  // The second differs far beyond the last offset an IPS record can name.
  {
    auto file = BinaryFile::Open(other, BinaryFile::Mode::ReadWrite);
    ASSERT_TRUE(file.ok());
    ASSERT_TRUE(file->WriteAt(kHuge - 10, "x").ok());
  }
  const auto before = Snapshot();
  const test::ToolRun created = test::RunToolWith(
      {"ips", "create", huge.string(), other.string(), "-o", (m_dir / "o.ips").string()});
  EXPECT_EQ(created.status, cli::kExitError);
  EXPECT_THAT(created.err, HasSubstr("beyond 0xFFFFFF"));
  const test::ToolRun converted = test::RunToolWith(
      {"convert", "--to", "smd", huge.string(), "-o", (m_dir / "o.smd").string()});
  EXPECT_EQ(converted.status, cli::kExitError);
  EXPECT_THAT(converted.err, HasSubstr(huge.string()));
  // Zeros add nothing to the sum: the image's own checksum is still right.
  EXPECT_EQ(test::RunToolWith({"checksum", huge.string()}).status, cli::kExitOk);
  EXPECT_EQ(Snapshot(), before);

  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  EXPECT_LT(usage.ru_maxrss, 1024 * 1024);  // KiB: well under a gigabyte at its highest
}

}  // namespace
}  // namespace romsteward
