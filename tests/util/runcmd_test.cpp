#include "UTIL/runcmd.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "UTIL/filename.h"
#include "tests/util/capture.h"
#include "tests/util/temp_dir.h"

namespace {

int run(const std::string& command, std::vector<std::string> texts, const char* option = nullptr,
        int echo_level = 0, bool report = false, timing_info* times = nullptr) {
  std::vector<char*> args;
  for (std::string& text : texts)
    args.push_back(text.data());
  return run_command(command.c_str(), args.data(), static_cast<int>(args.size()), option,
                     echo_level, report, times);
}

// Temporary command files land in a directory of the test's own; the settings
// are back at their defaults after each test.
class RunCommand : public testing::Test {
 protected:
  TempDir tmp;
  ScopedEnv tmpdir{"TMPDIR", tmp.path().c_str()};
  std::string recorder = tmp.file("recorder");

  void SetUp() override {
    // Writes each argument on a line of "seen" and copies a command file named by
    // the first to "cmdfile".
    write_file(recorder, "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + tmp.file("seen") +
                             "'\ncase \"$1\" in -@*) cat \"${1#-@}\" > '" + tmp.file("cmdfile") +
                             "';; esac\n");
    chmod(recorder.c_str(), 0755);
  }
  void TearDown() override {
    enable_command_files();
    dump_command_files(0);
    dump_command_args(0);
    add_run_search_path(nullptr);
  }

  std::string seen() const { return read_file(tmp.file("seen")); }
  std::string cmdfile() const { return read_file(tmp.file("cmdfile")); }
};

// Two arguments whose line counts 1022 characters (the dashes don't count), or
// 1023 with longer; the second is quoted in a command file.
std::vector<std::string> line_of(bool longer) {
  return {"--" + std::string(510, 'y'), "." + std::string(longer ? 510 : 509, 'z')};
}

// The child's exit status is the result; a child killed by a signal kills the
// caller too. The search path is tried before PATH.
TEST_F(RunCommand, TheChildsEndIsTheResultAndTheSearchPathIsTriedFirst) {
  auto exit_3 = [] { EXPECT_EQ(run("/bin/sh", {"-c", "exit 3"}, nullptr, 0, true), 3); };
  EXPECT_EQ(capture_output(stdout, exit_3), "\n>> Compilation failure\n");
  const std::string missing = tmp.file("no-such-program");
  EXPECT_EQ(capture_output(stderr, [&] { EXPECT_EQ(run(missing, {}, nullptr, 0, true), 1); }),
            "exec() error spawning " + missing + ": No such file or directory\n");
  EXPECT_EXIT(run("/bin/sh", {"-c", "kill -TERM $$"}, nullptr, 0, true),
              testing::KilledBySignal(SIGTERM), "abnormal termination of /bin/sh");
  timing_info busy{1, 1, 1};  // a busy child's own times, added
  const char* work = "i=0; while [ $i -lt 50000 ]; do i=$((i+1)); done; dd bs=1 count=300000 "
                     "if=/dev/zero of=/dev/null 2>/dev/null";
  EXPECT_EQ(run("/bin/sh", {"-c", work}, nullptr, 0, false, &busy), 0);
  EXPECT_TRUE(busy.real_time > 1 && busy.real_time < 60 && busy.user_time > 1 &&
              busy.system_time > 1);

  set_execution_path_to_search_path(recorder.data());
  EXPECT_EQ(run("recorder", {"x"}), 0);
  EXPECT_EQ(seen(), "x\n");
  // A candidate that can't be executed leaves the plain name for PATH, said from echo 1 on.
  write_file(tmp.file("echo"), "not a program\n");
  auto twice = [] { EXPECT_EQ(run("echo", {}) + run("echo", {"x"}, nullptr, 1), 0); };
  EXPECT_EQ(capture_output(stdout, twice), "\n-- Cannot execute '" + tmp.path() + "/echo'\nx\n");
  EXPECT_EQ(run("sh", {"-c", "exit 2"}, nullptr, 1), 2);

  using pair = std::pair<std::string, std::string>;  // a plain name leaves the path alone
  for (auto [program, path] : {pair{"/usr/local/bin/tool", "/usr/local/bin"}, {"bin//tool", "bin"},
                               {"/tool", "/"}, {"c:/tool", "c:/"}, {"tool", "c:/"}}) {
    set_execution_path_to_search_path(program.data());
    EXPECT_STREQ(run_search_path(), path.c_str()) << program;
  }
}

// The command file's option and name must fit one argument of 4095 characters.
TEST_F(RunCommand, LongLinesGoThroughAQuotedCommandFile) {
  // Short lines, and any line of a tool without a command-file option, go unquoted.
  EXPECT_EQ(run(recorder, line_of(false), "-@"), 0);
  EXPECT_EQ(seen(), line_of(false)[0] + "\n" + line_of(false)[1] + "\n");
  EXPECT_EQ(run(recorder, line_of(true), "-@"), 0);  // command files are on by default
  EXPECT_EQ(cmdfile(), line_of(true)[0] + "\n\"" + line_of(true)[1] + "\"\n");
  const std::vector<std::string> args = {"path\\", "--.opt", "1ab", std::string(1100, 'f')};
  const std::string plain = args[0] + "\n" + args[1] + "\n" + args[2] + "\n" + args[3] + "\n";
  EXPECT_EQ(run(recorder, args), 0);
  EXPECT_EQ(seen(), plain);
  disable_command_files();
  EXPECT_EQ(run(recorder, args, "-@"), 0);
  EXPECT_EQ(seen(), plain);
  enable_command_files();

  argv_list list(recorder.c_str(), "-@", 0);
  list.args = args;
  EXPECT_EQ(capture_output(stdout, [&] { EXPECT_EQ(list.execute(true, nullptr), 0); }), "");
  const std::string quoted = "\"path\\\\\"\n--\".opt\"\n\"1ab\"\n" + args[3] + "\n";
  EXPECT_EQ(cmdfile(), quoted);
  EXPECT_FALSE(fn_exists(seen().substr(2, seen().size() - 3).c_str()));
  // Quoting notes an argument it escapes, quoted or not; without it only a long line counts.
  char* escaped[] = {const_cast<char*>("x\"y")};
  EXPECT_EQ(quote_arguments(1, escaped, nullptr, true), 1);
  EXPECT_EQ(quote_arguments(1, escaped, nullptr, false), 0);

  char sample[512];
  const std::string fitting(4095 - strlen(fn_tmpnam(sample, nullptr, nullptr)), 'o');
  EXPECT_EQ(run(recorder, args, fitting.c_str()), 0);
  EXPECT_EQ(seen().size(), 4096u);
  // One longer, the name would be cut: nothing is written and nothing runs.
  std::remove(tmp.file("seen").c_str());
  const std::string err = capture_output(
      stderr, [&] { EXPECT_EQ(run(recorder, args, (fitting + "o").c_str(), 0, true), -1); });
  EXPECT_EQ(err.rfind("Cannot open temporary command file '" + tmp.path() + "/", 0), 0u) << err;
  EXPECT_NE(err.find("': File name too long\n"), std::string::npos) << err;
  EXPECT_FALSE(fn_exists(tmp.file("seen").c_str()));
  const rlimit small{100, 100};  // a command file that can't be written whole is not run
  EXPECT_EXIT((signal(SIGXFSZ, SIG_IGN), setrlimit(RLIMIT_FSIZE, &small),
               exit(run(recorder, {std::string(5000, 'f')}, "-@", 0, true))),
              testing::ExitedWithCode(255), "^Cannot write to .*: File too large\n$");

  timing_info times{1, 2, 3};
  std::string out =
      capture_output(stdout, [&] { EXPECT_EQ(run(recorder, args, "-@", 2, true, &times), 0); });
  ASSERT_EQ(out.rfind("rm \"" + tmp.path() + "/", 0), 0u) << out;
  EXPECT_EQ(read_file(out.substr(4, out.size() - 6)), quoted);
  EXPECT_FALSE(fn_exists(tmp.file("seen").c_str()));
  EXPECT_EQ(times.real_time + times.user_time + times.system_time, 6);

  dump_command_files(1);
  dump_command_args(1);
  out = capture_output(stdout, [&] { EXPECT_EQ(run(recorder, args, "-@", 1), 0); });
  const std::string file = seen().substr(2, seen().size() - 3);
  std::string title = recorder + " COMMAND FILE " + file + ":";
  if (title.size() < 75) title.resize(75, ' ');
  // Names are quoted since the directory's name has a "-".
  EXPECT_EQ(out, "\n/" + std::string(77, '-') + "\\\n| " + title + " |\n\\" + std::string(77, '-') +
                     "/\n" + quoted + std::string(79, '-') + "\n\n\"" + recorder + "\" -\"@" +
                     file + "\" \nrm \"" + file + "\"\n");
  EXPECT_FALSE(fn_exists(file.c_str()));
}

TEST_F(RunCommand, ArgvListsCollectFormatAndRunTheirArguments) {
  argv_list list(recorder.c_str(), nullptr, 0);
  EXPECT_EQ(list.cmd_file_option, "");
  list.add("one");
  list.add(std::string("two"));
  const std::string long_arg = "-O3=ssss";  // one longer than its format, with its end
  list.addf("-O%d=%s", 3, "ssss");
  EXPECT_EQ(list.del(3), 0);
  EXPECT_EQ(list.del(1), 1);
  EXPECT_STREQ(list.getarg(1), long_arg.c_str());
  EXPECT_EQ(capture_output(stdout, [&] { list.dump("%s %d", "step", 1); }),
            "step 1: " + recorder + " one " + long_arg + " \n");
  EXPECT_EQ(list.execute(false, nullptr), 0);
  EXPECT_EQ(seen(), "one\n" + long_arg + "\n");
  for (int removed : {1, 1, 0})
    EXPECT_EQ(list.del(), removed);
}

}  // namespace
