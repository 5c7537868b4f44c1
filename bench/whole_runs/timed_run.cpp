// Runs a command, with its console in a file, and writes what it took: "SECONDS PROCESSOR_SECONDS PEAK_KB STATUS". The peak
// that the system reports is at least that of the process which started the command, so this program is kept small.
//
// usage: timed_run CONSOLE_FILE COMMAND [ARGUMENT...]

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT: the name is POSIX's

namespace {

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

} // namespace

int main(int count, char** words)
{
    if (count < 3) {
        std::fputs("timed_run: no command\n", stderr);
        return EXIT_FAILURE;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, words[1], O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const auto began = std::chrono::steady_clock::now();
    pid_t process = -1;
    if (posix_spawnp(&process, words[2], &actions, nullptr, words + 2, environ) != 0) {
        std::fprintf(stderr, "timed_run: cannot start %s\n", words[2]);
        return EXIT_FAILURE;
    }
    int state = 0;
    rusage used{};
    wait4(process, &state, 0, &used);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - began;
    const int status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    std::printf("%.6f %.6f %ld %d\n", elapsed.count(), seconds(used.ru_utime) + seconds(used.ru_stime), used.ru_maxrss,
                status);
    return EXIT_SUCCESS;
}
