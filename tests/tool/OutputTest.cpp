// How outputs come to be, and what is said on the terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>
#include <utility>

#include "Program.h"

namespace tooltest {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

const std::string kStart = "YUV4MPEG2 W2 H1 Cmono\nFRAME\nab";

TEST(Output, ReplacesAnExistingFileAndKeepsItsRights) {
  Workplace place;
  place.Write("target.png", "old");
  fs::permissions(place.Path("target.png"), fs::perms(0640));
  fs::create_symlink("target.png", place.Path("link.png"));
  ASSERT_EQ(place.Run("fill link.png --size 2x2 --colour 1").exitCode, 0);
  EXPECT_TRUE(fs::is_symlink(place.Path("link.png")));
  EXPECT_EQ(place.Read("target.png").substr(1, 3), "PNG");
  EXPECT_EQ(fs::status(place.Path("target.png")).permissions(), fs::perms(0640));
  EXPECT_EQ(place.Files(), (std::vector<std::string>{"link.png", "target.png"}));
}

TEST(Output, MayBeTheInput) {
  Workplace place;
  place.Write("clip.y4m", kStart + "FRAME\ncd");
  ASSERT_EQ(place.Run("mirror clip.y4m clip.y4m").exitCode, 0);
  EXPECT_EQ(place.Read("clip.y4m"), "YUV4MPEG2 W2 H1 Cmono F25:1\nFRAME\nbaFRAME\ndc");
}

TEST(Output, IsRemovedWhenTheProgramIsInterrupted) {
  for (int signal : {SIGINT, SIGTERM}) {
    Workplace place;
    int pipe[2];
    ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    const int process = Start(place.Path(""), {"copy", "-", "x.y4m"}, pipe[0], null, null);
    ASSERT_EQ(write(pipe[1], kStart.data(), kStart.size()), static_cast<ssize_t>(kStart.size()));
    for (int i = 0; i < 500 && place.Files().empty(); ++i) std::this_thread::sleep_for(10ms);
    EXPECT_EQ(place.Files().size(), 1u);  // the temporary file
    EXPECT_FALSE(fs::exists(place.Path("x.y4m")));
    kill(process, signal);
    EXPECT_EQ(WaitFor(process), 128 + signal);
    EXPECT_TRUE(place.Files().empty());
    close(pipe[0]);
    close(pipe[1]);
    close(null);
  }
}

TEST(Output, ThatCannotBePrintedIsAFailure) {
  Workplace place;
  const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(WaitFor(Start(place.Path(""), {"info"}, null, full, null)), 1);
  close(null);
  close(full);
}

// A pipe to and from the tool, which can be closed and filled at will.
class Stream {
 public:
  Stream(const Workplace& place, const std::string& line) {
    int in[2], out[2], err[2];
    EXPECT_EQ(::pipe2(in, O_CLOEXEC) | ::pipe2(out, O_CLOEXEC) | ::pipe2(err, O_CLOEXEC), 0);
    process_ = Start(place.Path(""), Words(line), in[0], out[1], err[1]);
    for (const int end : {in[0], out[1], err[1]}) close(end);
    in_ = in[1], out_ = out[0], err_ = err[0];
  }
  ~Stream() {
    for (const int end : {in_, out_, err_}) close(end);
  }
  void Write(const std::string& bytes) const {
    EXPECT_EQ(write(in_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  std::string Read(std::size_t count) const { return ReadFrom(out_, count); }
  std::string Messages() const { return ReadFrom(err_, 1000); }
  void CloseOutput() { close(std::exchange(out_, -1)); }
  void EndInput() { close(std::exchange(in_, -1)); }
  int Wait() const { return WaitFor(process_); }

 private:
  static std::string ReadFrom(int end, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t done = 0;
    while (done < count) {
      const ssize_t got = read(end, bytes.data() + done, count - done);
      if (got <= 0) break;
      done += static_cast<std::size_t>(got);
    }
    return bytes.substr(0, done);
  }
  int process_, in_, out_, err_;
};

const std::string kHead = "YUV4MPEG2 W2 H1 Cmono F25:1\n";

// A frame leaves as soon as it has come in whole, however slowly, and as it would alone.
TEST(Output, IsNotHeldBackByASlowInput) {
  Workplace place;
  Stream stream(place, "mirror - -");
  const std::string frame = "FRAME\nab", mirrored = "FRAME\nba";
  for (const char c : kHead) stream.Write(std::string(1, c));
  for (int i = 0; i < 20; ++i) {
    for (const char c : frame) stream.Write(std::string(1, c));
    EXPECT_EQ(stream.Read((i == 0 ? kHead : "").size() + 8), (i == 0 ? kHead : "") + mirrored);
  }
  stream.Write(frame + frame + "FRAME\nc");
  stream.EndInput();
  EXPECT_EQ(stream.Read(1000), mirrored + mirrored);
  EXPECT_EQ(stream.Messages(), "qvtool: standard input: frame 23 is cut short: 1 of 2 bytes\n");
  EXPECT_EQ(stream.Wait(), 1);
}

// Nobody reads what it writes: it ends, although its input has not, with the signal or, where this
// is ignored, with a message.
TEST(Output, ThatIsClosedEndsTheProgramAtOnce) {
  for (const bool ignored : {false, true}) {
    Workplace place;
    if (ignored) std::signal(SIGPIPE, SIG_IGN);
    Stream stream(place, "copy - -");
    std::signal(SIGPIPE, SIG_DFL);
    stream.CloseOutput();
    stream.Write(kStart);
    EXPECT_EQ(stream.Wait(), ignored ? 1 : 128 + SIGPIPE);
    EXPECT_EQ(stream.Messages(),
              ignored ? "qvtool: standard output: cannot write: Broken pipe\n" : "");
  }
}

// Files of the frames before it are there and whole; of those after it, on any thread, none.
TEST(Output, OfPicturesEndsBeforeTheFirstThatFails) {
  Workplace place;
  std::string clip = "YUV4MPEG2 W64 H64 Cmono\n";
  for (unsigned i = 0; i < 12; ++i) clip += "FRAME\n" + Noise(4096, i);
  EXPECT_EQ(place.Run("copy - cut-%d.png", clip.substr(0, clip.size() - 1)).exitCode, 1);
  EXPECT_EQ(place.Files().size(), 11u);
  std::filesystem::create_directory(place.Path("all-5.png"));
  const Outcome outcome = place.Run("copy - all-%d.png", clip);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.err, "qvtool: all-5.png: is a directory; wanted is the name of a file\n");
  EXPECT_EQ(place.Files().size(), 16u);
  for (const int i : {1, 2, 3, 4})
    EXPECT_EQ(place.Read("all-" + std::to_string(i) + ".png"),
              place.Read("cut-" + std::to_string(i) + ".png"));
}

// Copies a stream that takes longer than the tool waits before it shows a bar.
void CopySlowly(const Workplace& place, int err) {
  int pipe[2];
  ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
  const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
  const int process = Start(place.Path(""), {"copy", "-", "x.y4m"}, pipe[0], null, err);
  ASSERT_GT(write(pipe[1], kStart.data(), kStart.size()), 0);
  std::this_thread::sleep_for(500ms);
  ASSERT_GT(write(pipe[1], "FRAME\ncd", 8), 0);
  close(pipe[1]);
  EXPECT_EQ(WaitFor(process), 0);
  close(pipe[0]);
  close(null);
}

TEST(Progress, IsShownOnATerminal) {
  Workplace place;
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0)
    GTEST_SKIP() << "no pseudo-terminals here";
  const int screen = open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
  CopySlowly(place, screen);
  char text[1000];
  const ssize_t count = read(terminal, text, sizeof text);
  ASSERT_GT(count, 0);
  EXPECT_NE(std::string(text, static_cast<std::size_t>(count)).find("2 frames"), std::string::npos);
  close(screen);
  close(terminal);
}

TEST(Progress, IsNotWrittenIntoFiles) {
  Workplace place;
  const int file = open(place.Path("log").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  CopySlowly(place, file);
  close(file);
  EXPECT_EQ(place.Read("log"), "");
}

// With examples that work as they stand, where there are these files.
TEST(Help, IsThereForEverySubCommand) {
  Workplace place;
  for (const char* file : {"photo.jpg --size 900x600", "in.jpg --size 90x60",
                           "first.png --size 9x9", "second.png --size 9x9",
                           "in.y4m --size 1280x720 --layout i420"})
    ASSERT_EQ(place.Run(std::string("fill --colour 99 ") + file).exitCode, 0);
  ASSERT_EQ(place.Run("convert first.png logo.png --to bgra").exitCode, 0);
  place.Write("my logo.png", place.Read("logo.png"));
  place.Write("clip.y4m", "YUV4MPEG2 W400 H200 Cmono\nFRAME\n" + Noise(80000, 1) + "FRAME\n" +
                              Noise(80000, 2));
  const Outcome all = place.Run("--help");
  EXPECT_EQ(all.exitCode, 0);
  std::istringstream lines(all.out.substr(all.out.find("Subcommands:")));
  std::string line;
  std::getline(lines, line);
  int commands = 0;
  while (std::getline(lines, line) && line.starts_with("  ")) {
    std::string name;
    std::istringstream(line) >> name;
    if (name.empty() || line[2] == ' ') continue;  // the second line of a description
    ++commands;
    const Outcome help = place.Run(name + " --help");
    EXPECT_EQ(help.exitCode, 0) << name;
    EXPECT_NE(help.out.find("Usage: qvtool " + name), std::string::npos) << help.out;
    EXPECT_EQ(help.err, "");
    int examples = 0;
    std::istringstream text(help.out);
    for (std::string said; std::getline(text, said);) {
      if (!said.starts_with("  qvtool ")) continue;
      if (const auto all = said.find("*.jpg"); all != std::string::npos)
        said.replace(all, 5, "photo.jpg in.jpg");  // as a shell does
      const Outcome example = place.Run(said.substr(9));
      EXPECT_EQ(example.exitCode, 0) << said << "\n" << example.err;
      ++examples;
    }
    EXPECT_GE(examples, 1) << name;
  }
  EXPECT_GE(commands, 7);
}

TEST(Info, NamesWhatTheLibraryRuns) {
  Workplace place;
  const std::string info = place.Run("info").out;
  for (const char* part : {"version", "processor", "variant", "wide level", "thread budget",
                           "CopyRows_8u_C1", "Mirror_8u_C3", "[own]"})
    EXPECT_NE(info.find(part), std::string::npos) << part;
}

}  // namespace
}  // namespace tooltest
