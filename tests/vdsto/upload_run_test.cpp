#include <gmock/gmock.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <thread>

#include "tools/vdsto/tool_error.h"
#include "tools/vdsto/upload/file_digest.h"
#include "tools/vdsto/upload/server_place.h"
#include "tools/vdsto/upload/upload_names.h"
#include "upload_servers.h"
#include "vdstomgr/vdstomgr.h"

namespace {

using namespace vdsto_test;
using nlohmann::json;
using std::chrono::milliseconds;
using testing::HasSubstr;
namespace fs = std::filesystem;

constexpr size_t kBigFile = 4'000'000;

std::string Noise(size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes;
  while (bytes.size() < size) {
    const auto piece = random();
    bytes.append(reinterpret_cast<const char*>(&piece), sizeof piece);
  }
  return bytes.substr(0, size);
}

/// What to know a file's contents by, short enough for a failure's message.
std::string Known(const std::string& bytes) {
  return bytes.size() < 100 ? bytes
                            : std::to_string(bytes.size()) + " bytes, " +
                                  std::to_string(std::hash<std::string>()(bytes));
}

/// Every file below a folder, by its path there.
std::map<std::string, std::string> Tree(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file() && entry.path().filename() != ".delete")
      files[fs::relative(entry.path(), folder).string()] = Known(ReadFile(entry.path().string()));
  return files;
}

/// Where a test uploads to; made for "folder", "sftp" and "dav".
struct Target {
  Target(const std::string& kind, const std::string& folder) : url(folder) {
    if (kind == "sftp") server = std::make_unique<SshServer>(folder);
    if (kind == "dav") server = std::make_unique<DavServer>(folder);
    if (!server) return;
    server->Start();
    url = server->url;
  }

  std::string url;
  std::unique_ptr<UploadServer> server;
};

/// A queue of files, and a folder that they are to be uploaded to.
class UploadRunTest : public testing::TestWithParam<std::string> {
 protected:
  UploadRunTest() : out_(temp_ / "out") {
    vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
    setenv("HOME", (temp_ / "home").c_str(), 1);
    setenv("no_proxy", "*", 1);
    for (const char* name : {"SSH_AUTH_SOCK", "VDSTO_UPLOAD_USER", "VDSTO_UPLOAD_PASSWORD"})
      unsetenv(name);
    fs::create_directory(out_);
    const std::string path = temp_ / "library/catalogue.vdb";
    EXPECT_TRUE(catalogue_.CreateDB(path.c_str(), "") && catalogue_.OpenDB(path.c_str(), ""));
  }

  /// Queues a file of the test's own for `folder`; answers its path.
  std::string Add(const std::string& folder, const std::string& name, const std::string& bytes) {
    const std::string path = temp_ / ("src/" + std::to_string(rows_) + "/" + name);
    WriteFile(path, bytes);
    UPLOADLIST row;
    std::snprintf(row.szGUID, sizeof row.szGUID, "8A531A9D-9EE9-45C3-84A4-%012d", rows_++);
    vdstomgr::CopyToFixed(row.szOPPath, path);
    vdstomgr::CopyToFixed(row.szServerPath, folder);
    row.SetFileName(name.c_str());
    row.dxFileSize = bytes.size();
    catalogue_.AddUploadList(row);
    return path;
  }

  std::vector<std::string> Command(const Target& target, std::vector<std::string> more = {}) const {
    std::vector<std::string> words{"--library", temp_ / "library", "--json", "upload", "run",
                                   "--to",      target.url};
    if (target.server)
      words.insert(words.end(), target.server->options.begin(), target.server->options.end());
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  Outcome Run(const Target& target, std::vector<std::string> more = {}) const {
    return RunVdsto(Command(target, std::move(more)));
  }

  /// For 20 s at most.
  static void WaitUntil(const std::function<bool()>& condition) {
    for (int i = 0; i < 4000 && !condition(); ++i) std::this_thread::sleep_for(milliseconds(5));
  }
  /// Until the run has noted that a part of a file is sent.
  void WaitForSent(int position) {
    WaitUntil([&] { return Row(position).dxSentBytes > 0; });
  }

  UPLOADLIST Row(int position) {
    vdstomgr::UploadListArray rows;
    catalogue_.cGetUploadListByIndex(rows, 1, position);
    return rows.IsEmpty() ? UPLOADLIST() : rows[0];
  }

  /// After a kill: whatever the queue tells is at the target, and what was finished or sent before
  /// has stayed as it was. Answers how many bytes there are still to send.
  uint64_t CheckWhatIsLeft() {
    WaitUntilQuiet();
    vdstomgr::UploadListArray rows;
    catalogue_.cGetUploadListByIndex(rows, rows_, 0);
    std::map<std::string, uint64_t> parts;
    for (const auto& entry : fs::recursive_directory_iterator(out_))
      if (entry.path().extension() == ".part")
        parts[entry.path().filename().string().substr(1, 36)] = entry.file_size();
    uint64_t unsent = 0;
    for (const UPLOADLIST& row : rows) {
      struct stat state {};
      const std::string path = out_ + "/" + row.szServerPath + "/" + row.szFileName;
      const bool is_there = stat(path.c_str(), &state) == 0;
      const uint64_t part = GetParam() == "dav" ? 0 : parts[row.szGUID];
      EXPECT_TRUE(is_there || row.nStatus != 2) << path;
      if (is_there) {
        EXPECT_EQ(arrived_.emplace(path, state.st_ino).first->second, state.st_ino) << path;
        continue;
      }
      EXPECT_GE(part, GetParam() == "dav" ? 0 : row.dxSentBytes) << path;
      EXPECT_GE(part, parts_[row.szGUID]) << path;
      parts_[row.szGUID] = part;
      unsent += row.dxFileSize - part;
    }
    return unsent;
  }
  /// Until a server has written what a killed run had sent.
  void WaitUntilQuiet() const {
    if (GetParam() == "folder") return;
    const auto bytes = [&] {
      uint64_t sum = 0;
      for (const auto& entry : fs::recursive_directory_iterator(out_))
        if (entry.is_regular_file()) sum += entry.file_size() + 1;
      return sum;
    };
    for (uint64_t before = ~0ull, now = bytes(); now != before;
         before = std::exchange(now, bytes()))
      std::this_thread::sleep_for(milliseconds(50));
  }

  /// The statuses of all rows in their order.
  std::vector<int> Statuses() {
    vdstomgr::UploadListArray rows;
    catalogue_.cGetUploadListByIndex(rows, rows_, 0);
    std::vector<int> statuses;
    for (const UPLOADLIST& row : rows) statuses.push_back(row.nStatus);
    return statuses;
  }

  TempFolder temp_;
  const std::string out_;
  CRkPhotoDBManager catalogue_;
  int rows_ = 0;
  std::map<std::string, ino_t> arrived_;   // what CheckWhatIsLeft has seen, by its place
  std::map<std::string, uint64_t> parts_;  // the same of unfinished files, by GUID
};

class UploadTargetTest : public UploadRunTest {};
INSTANTIATE_TEST_SUITE_P(Upload, UploadTargetTest, testing::Values("folder", "sftp", "dav"),
                         [](const auto& test) { return test.param; });

/// Killed at any moment, ten times: in the end every file is there once and nothing else.
TEST_P(UploadTargetTest, EveryFileArrivesThoughTheUploaderIsKilled) {
  constexpr int kFiles = 1000;
  const Target target(GetParam(), out_);
  std::mt19937 random(7);
  std::map<std::string, std::string> expected;
  catalogue_.InOneCommit([&] {
    for (int i = 0; i < kFiles; ++i) {
      const std::string folder = "여행 #" + std::to_string(i % 7) + "/\"a\" & b";
      const std::string name = "사진 100% " + std::to_string(i) + ".jpg";
      const std::string bytes =
          Noise(i % 200 == 7 ? kBigFile : random() % 10'000, static_cast<unsigned>(i));
      Add(folder, name, bytes);
      expected[folder + "/" + name] = Known(bytes);
    }
  });
  const std::string guid = Row(kFiles - 1).szGUID;
  CDWordArray tags{7, 8};
  vdstomgr::AlbumIndexArray albums{{3, 9}};
  EXPECT_TRUE(catalogue_.AddUploadTag(guid.c_str(), tags));
  EXPECT_TRUE(catalogue_.AddUploadAlbum(guid.c_str(), albums));
  uint64_t unsent = 0;
  for (int kill = 0; kill < 10; ++kill) {
    const int ready = catalogue_.GetUploadReadyCount();
    Program program(Command(target, {"--limit-rate", "30M"}));
    WaitUntil([&] { return catalogue_.GetUploadReadyCount() != ready; });
    std::this_thread::sleep_for(milliseconds(random() % 60));
    program.Signal(SIGKILL);
    program.Wait();
    unsent = CheckWhatIsLeft();
  }
  const Outcome outcome = Run(target);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.Json()["bytes_sent"], unsent) << "nothing goes out twice";
  CheckWhatIsLeft();
  EXPECT_EQ(Tree(out_), expected);
  EXPECT_EQ(Statuses(), std::vector<int>(kFiles, 2));
  EXPECT_TRUE(catalogue_.IsTagged(guid.c_str(), 7) && catalogue_.IsTagged(guid.c_str(), 8));
  EXPECT_TRUE(catalogue_.IsAlbumPhoto(guid.c_str(), 3, 9));
  EXPECT_EQ(catalogue_.GetUploadTag(guid.c_str(), tags), 0);
  EXPECT_EQ(catalogue_.GetUploadAlbum(guid.c_str(), albums), 0);
  EXPECT_EQ(Run(target).Json()["bytes_sent"], 0);
}

/// What lies at the target already is not sent again, whether the end was sudden or in order.
TEST_P(UploadTargetTest, AnUploadGoesOnWhereItEnded) {
  const Target target(GetParam(), out_);
  for (const int signal : {SIGKILL, SIGINT}) {
    Add("", std::to_string(signal), Noise(kBigFile, 1));
    Program program(Command(target, {"--limit-rate", "3M"}));
    WaitForSent(rows_ - 1);
    program.Signal(signal);
    EXPECT_EQ(program.Wait().code, signal == SIGINT ? 130 : 128 + SIGKILL);
    const UPLOADLIST row = Row(rows_ - 1);
    uint64_t there = 0;
    for (const auto& entry : fs::directory_iterator(out_))
      if (entry.path().extension() == ".part") there = entry.file_size();
    EXPECT_GE(there, GetParam() == "dav" ? 0 : row.dxSentBytes);
    EXPECT_EQ(row.nStatus, signal == SIGINT ? 0 : 1);
    EXPECT_EQ(row.dxSentBytes > 0, GetParam() != "dav" || signal == SIGKILL);
    const Outcome outcome = Run(target);
    EXPECT_EQ(outcome.Json()["bytes_sent"], kBigFile - (GetParam() == "dav" ? 0 : there));
    EXPECT_EQ(Tree(out_).at(std::to_string(signal)), Known(Noise(kBigFile, 1)));
  }
}

TEST_P(UploadTargetTest, NothingThatLiesThereIsReplaced) {
  const Target target(GetParam(), out_);
  Add("a", "same.jpg", "contents");
  Add("a", "other.jpg", "ours");
  Add("a", "other.jpg", "ours, too");
  Add("a", "other.jpg", "ours");
  Add("../../b/./..", "../c", "inside");
  WriteFile(temp_ / "out/a/same.jpg", "contents");
  WriteFile(temp_ / "out/a/other.jpg", "theirs");
  const Outcome outcome = Run(target, {"--threads", "1"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  const json summary = outcome.Json();
  EXPECT_EQ(summary["uploaded"], 3);
  EXPECT_EQ(summary["already_there"], 2);
  EXPECT_EQ(summary["renamed"].size(), 2);
  EXPECT_EQ(Tree(out_), (std::map<std::string, std::string>{{"a/same.jpg", "contents"},
                                                            {"a/other.jpg", "theirs"},
                                                            {"a/other (2).jpg", "ours"},
                                                            {"a/other (3).jpg", "ours, too"},
                                                            {"b/.._c", "inside"}}));
}

TEST_P(UploadTargetTest, FilesThatAreGoneOrChangeAreNamedAndTheOthersSent) {
  const Target target(GetParam(), out_);
  fs::remove(Add("a", "gone.jpg", "x"));
  const std::string changing = Add("a", "changing.jpg", Noise(kBigFile, 1));
  Add("a", "empty.jpg", "");
  Program program(Command(target, {"--limit-rate", "4M", "--retries", "0"}));
  WaitForSent(1);
  WriteFile(changing, Noise(kBigFile, 2));
  const Outcome outcome = program.Wait();
  EXPECT_EQ(outcome.code, 9);
  EXPECT_THAT(outcome.err, HasSubstr("2 files could not be uploaded"));
  EXPECT_EQ(Statuses(), (std::vector<int>{-7301, -7108, 2}));
  EXPECT_EQ(Tree(out_), (std::map<std::string, std::string>{{"a/empty.jpg", ""}}));
}

/// May the test mount things, which nobody else sees?
bool MayMount() {
  static const bool may =
      unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  return may;
}

/// A small file system at the target's place; false when the test may not mount one.
bool Mount(const std::string& folder, const char* size, unsigned long flags = 0) {
  return MayMount() && mount("tmpfs", folder.c_str(), "tmpfs", flags, size) == 0;
}

TEST_P(UploadTargetTest, AFullDiskEndsTheRunAndTheNextGoesOn) {
  if (!Mount(out_, "size=1m")) GTEST_SKIP() << "no right to mount a small file system";
  const Target target(GetParam(), out_);
  for (int i = 0; i < 4; ++i) Add("a", std::to_string(i), Noise(400'000, 1));
  const Outcome outcome = Run(target, {"--threads", "1", "--retries", "0"});
  // lighttpd does not say what its internal error is.
  const bool is_told = GetParam() != "dav";
  EXPECT_EQ(outcome.code, is_told ? 10 : 9) << outcome.err;
  EXPECT_EQ(Statuses(),
            is_told ? (std::vector<int>{2, 2, -7306, 0}) : (std::vector<int>{2, 2, -500, -500}));
  ASSERT_TRUE(Mount(out_, "size=8m", MS_REMOUNT));
  EXPECT_TRUE(catalogue_.RetryUploadListErrored());
  EXPECT_EQ(Run(target).code, 0);
  EXPECT_EQ(Tree(out_).size(), 4);
  umount2(out_.c_str(), MNT_DETACH);
}

class UploadServerTest : public UploadRunTest {};
INSTANTIATE_TEST_SUITE_P(Upload, UploadServerTest, testing::Values("sftp", "dav"),
                         [](const auto& test) { return test.param; });

TEST_P(UploadServerTest, AServerThatIsKilledAndComesBackGetsEverything) {
  const Target target(GetParam(), out_);
  for (int i = 0; i < 8; ++i) Add("a", std::to_string(i), Noise(500'000, 1));
  Program program(Command(target, {"--limit-rate", "4M"}));
  WaitForSent(0);
  target.server->Kill();
  std::this_thread::sleep_for(milliseconds(500));
  target.server->Start();
  const Outcome outcome = program.Wait();
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  const auto files = Tree(out_);
  EXPECT_EQ(files.size(), 8);
  for (const auto& [name, bytes] : files) EXPECT_EQ(bytes, Known(Noise(500'000, 1))) << name;
}

/// What is wrong with the target is no fault of the files, which stay ready.
TEST_P(UploadServerTest, WhoIsNotLetInOrNotTrustedIsToldWhy) {
  const Target target(GetParam(), out_);
  Add("a", "b.jpg", "contents");
  const auto expect_refusal = [&](const char* reason) {
    const Outcome outcome = Run(target);
    EXPECT_EQ(outcome.code, 10);
    EXPECT_THAT(outcome.err, HasSubstr(reason));
    EXPECT_EQ(Statuses(), std::vector<int>{0});
  };
  if (auto* ssh = dynamic_cast<SshServer*>(target.server.get())) {
    const auto options = std::exchange(ssh->options, {"--key", ssh->NewKey("stranger")});
    expect_refusal("does not let");
    ssh->options = options;
    ssh->Believe(ssh->NewKey("other"));
    expect_refusal("somebody may stand between. If the server has a new key, remove the old one");
    WriteFile(getenv("VDSTO_UPLOAD_KNOWN_HOSTS"), "");
    expect_refusal("accept it with: ssh -p");
    ssh->Believe(ssh->host_key);
  } else {
    setenv("VDSTO_UPLOAD_PASSWORD", "wrong", 1);
    expect_refusal("does not let me in: check VDSTO_UPLOAD_USER and VDSTO_UPLOAD_PASSWORD");
    unsetenv("VDSTO_UPLOAD_PASSWORD");
    WriteFile(temp_ / "home/.netrc", "machine 127.0.0.1 login me password secret\n");
  }
  EXPECT_EQ(Run(target).code, 0);
  target.server->Kill();
  Add("a", "c.jpg", "contents");
  const Outcome outcome = Run(target);
  EXPECT_EQ(outcome.code, 10);
  EXPECT_THAT(outcome.err, HasSubstr("connect"));
}

TEST_F(UploadRunTest, AgentsAndPasswordsOpenSshServers) {
  const Target target("sftp", out_);
  auto& ssh = dynamic_cast<SshServer&>(*target.server);
  const std::string key = std::exchange(ssh.options, {}).at(1);
  const auto code = [&] {
    Add("a", "b.jpg", "contents");
    return Run(target).code;
  };
  EXPECT_EQ(code(), 10) << "no key at all";
  {
    const SshAgent agent(key);
    EXPECT_EQ(code(), 0);
  }
  // The password of whoever runs the test, for nobody but it and its server.
  const std::string shadow = temp_ / "shadow";
  WriteFile(shadow,
            "root:$6$vdsto$reFt9c1/ITxVp2aFBkoC0NV90H1Q.zR1D9HE7uYehBPzY1bbgV4GJRxib2dgeokX/"
            "sNw6loCnHBKqusvV7CEp.:20000:0:99999:7:::\n");
  if (!MayMount() || mount(shadow.c_str(), "/etc/shadow", nullptr, MS_BIND, nullptr) != 0)
    GTEST_SKIP() << "no right to give the user another password";
  ssh.Kill();
  ssh.Start();
  setenv("VDSTO_UPLOAD_PASSWORD", "wrong", 1);
  EXPECT_EQ(code(), 10);
  setenv("VDSTO_UPLOAD_PASSWORD", "secret", 1);
  EXPECT_EQ(code(), 0);
  umount2("/etc/shadow", MNT_DETACH);
}

TEST_F(UploadRunTest, CertificatesAreChecked) {
  if (!fs::exists("/usr/lib/lighttpd/mod_openssl.so"))
    GTEST_SKIP() << "lighttpd-mod-openssl is not installed";
  Target target("folder", out_);
  const auto expect = [&](int code, std::unique_ptr<DavServer> server, const std::string& trusted) {
    setenv("VDSTO_UPLOAD_CA", trusted.c_str(), 1);
    server->Start();
    target.url = server->url;
    Add("a", "b.jpg", "contents");
    const Outcome outcome = Run(target);
    EXPECT_EQ(outcome.code, code) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(code != 0 ? "certificate" : ""));
    return Statuses().back();
  };
  auto right = std::make_unique<DavServer>(out_, "IP:127.0.0.1");
  auto elsewhere = std::make_unique<DavServer>(out_, "DNS:elsewhere");
  const std::string own = elsewhere->authority;
  EXPECT_EQ(expect(10, std::move(elsewhere), own), 0);
  EXPECT_EQ(expect(10, std::make_unique<DavServer>(out_, "IP:127.0.0.1"), right->authority), 0);
  const std::string authority = right->authority;
  EXPECT_EQ(expect(0, std::move(right), authority), 2);
  unsetenv("VDSTO_UPLOAD_CA");
}

TEST_F(UploadRunTest, WhatAServerAnswersIsTheFilesStatus) {
  AnsweringServer server;
  server.Start();
  Target target("folder", "");
  const struct {
    const char* answer;
    int status, code;
  } cases[] = {{"507", -7306, 10}, {"423", -7107, 9}, {"503", -7107, 9},
               {"429", -7107, 9},  {"413", -7308, 9}, {"414", -7307, 9},
               {"403", -7305, 9},  {"500", -500, 9},  {"201", -7212, 9}};
  for (const auto& c : cases) {
    catalogue_.DelUploadListAll();
    Add("", "b.jpg", "contents");
    target.url = server.url + "/" + c.answer;
    EXPECT_EQ(Run(target, {"--retries", "0"}).code, c.code) << c.answer;
    EXPECT_EQ(Row(0).nStatus, c.status) << c.answer;
  }
}

TEST_F(UploadRunTest, OneRunAtATimeAndOnlyToPlacesThatAreThere) {
  Add("a", "b.jpg", Noise(kBigFile, 1));
  const Target target("folder", out_);
  const struct {
    std::vector<std::string> words;
    int code;
    const char* text;
  } cases[] = {
      {{"--to", temp_ / "none"}, 10, "/none is no folder: make it"},
      {{"--to", "ftp://h/x"}, 2, "not ftp://"},
      {{"--to", "sftp://me:secret@h/x"}, 2, "a password does not belong into a URL"},
      {{"--to", "sftp://me@h/x"}, 10, "no ssh key and no password for h"},
      {{"--to", out_, "--limit-rate", "2X"}, 2, "--limit-rate is a number of bytes a second"},
      {{"--to", out_, "--threads", "0"}, 2, "--threads is a number from 1 to 64, not '0'"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> words{"--library", temp_ / "library", "upload", "run"};
    words.insert(words.end(), c.words.begin(), c.words.end());
    const Outcome outcome = RunVdsto(words);
    EXPECT_EQ(outcome.code, c.code) << c.text;
    EXPECT_THAT(outcome.err, HasSubstr(c.text));
  }
  EXPECT_EQ(Run(target, {"--dry-run"}).Json()["bytes"], kBigFile);
  const auto start = std::chrono::steady_clock::now();
  Program first(Command(target, {"--limit-rate", "4M"}));
  WaitForSent(0);
  EXPECT_EQ(Run(target).code, 8) << "two runs on one library";
  EXPECT_EQ(first.Wait().code, 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(900)) << "4 MB at 4 MB/s";
}

TEST(UploadNamesTest, StayBelowTheTargetAndWithinTheirLength) {
  EXPECT_EQ(vdsto::SafeFolder("/a//./../b c/"), "a/b c");
  EXPECT_EQ(vdsto::SafeName("../a\n"), ".._a_");
  EXPECT_EQ(vdsto::SafeName(".."), "_");
  EXPECT_EQ(vdsto::NumberedName("a.b.jpg", 2), "a.b (2).jpg");
  EXPECT_EQ(vdsto::NumberedName(".jpg", 2), ".jpg (2)");
  std::string name;
  for (int i = 0; i < 83; ++i) name += "한";
  EXPECT_EQ(vdsto::NumberedName(name + ".jpeg", 12), name.substr(0, 3 * 81) + " (12).jpeg");
}

TEST(UploadTargetUrlTest, NamesAPlaceOfAServer) {
  const vdsto::ServerPlace place =
      vdsto::ParseServerPlace("https://me%40home@nas:8443/내 사진/100%25/", "other");
  EXPECT_EQ(place.user, "me@home");
  EXPECT_EQ(place.path, "/내 사진/100%");
  EXPECT_EQ(place.url, "https://me%40home@nas:8443/%eb%82%b4%20%ec%82%ac%ec%a7%84/100%25");
  EXPECT_EQ(vdsto::ParseServerPlace("sftp://nas/~/x", "me").address, "sftp://nas/~/x");
  EXPECT_FALSE(vdsto::IsUrl("/a/b://c"));
}

TEST(UploadDigestTest, IsComparedInEveryFormThatServersTellIt) {
  const TempFolder temp;
  WriteFile(temp / "f", "hello");
  vdsto::RateLimiter limiter(0);
  const vdsto::OutgoingFile file(temp / "f", limiter, [](uint64_t, uint64_t) {});
  const struct {
    const char* header;
    const char* value;
  } right[] = {
      {"content-md5", "XUFAKrxLKna5cZ2REBfFkg=="},
      {"oc-checksum", "MD5:5D41402ABC4B2A76B9719D911017C592"},
      {"oc-checksum", "SHA1:aaf4c61ddcc5e8a2dabede0f3b482cd9aea9434d ADLER32:062c0215"},
      {"repr-digest", "sha-256=:LPJNul+wow4m6DsqxbninhsWHlwfp0JecwQzYpOLmCQ=:"},
      {"digest", "SHA-256=LPJNul+wow4m6DsqxbninhsWHlwfp0JecwQzYpOLmCQ="},
      {"digest", "unixsum=30637"},
  };
  for (const auto& c : right) EXPECT_TRUE(vdsto::FitsDigests(file, {{c.header, c.value}}));
  WriteFile(temp / "f", "jello");
  for (const auto& c : right)
    EXPECT_EQ(vdsto::FitsDigests(file, {{c.header, c.value}}), c.value[0] == 'u') << c.value;
}

}  // namespace
