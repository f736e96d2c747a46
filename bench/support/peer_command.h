#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

namespace romsteward::bench {

/// Wall time of one run of `program FILES > /dev/null` (cat, sha1sum: the peer a benchmark is
/// measured against), started directly, no shell; < 0 when it could not run or failed.
inline double PeerCommandSeconds(const char* program, const std::vector<std::string>& files) {
  std::vector<char*> argv{const_cast<char*>(program)};
  for (const std::string& file : files)
    argv.push_back(const_cast<char*>(file.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const auto start = std::chrono::steady_clock::now();
  pid_t pid = 0;
  const int spawned = posix_spawnp(&pid, program, &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (spawned != 0 || waitpid(pid, &status, 0) != pid || !WIFEXITED(status) ||
      WEXITSTATUS(status) != 0)
    return -1;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace romsteward::bench
