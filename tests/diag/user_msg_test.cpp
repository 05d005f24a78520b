// USER_MSG: free-text messages through the general rows.
#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>

#include "DIAG/user_msg_api.h"
#include "diag_fixture.h"

namespace {

using ::testing::MatchesRegex;
using UserMsgTest = DiagTest;
using UserMsgDeathTest = DiagTest;

USER_MSG& umsg = *USER_MSG::get_umsg_obj();

// Debug, remark and advice print only when switched on; only errors count.
TEST_F(UserMsgTest, FormsFormatTheirTextAndPutThePositionFirst) {
  umsg.debug("d");
  umsg.remark("r");
  umsg.advice("a");
  EXPECT_EQ(output(), "");
  DIAGNOSTIC::debug_m = DIAGNOSTIC::remarks_m = DIAGNOSTIC::advice_m = true;
  umsg.warning(17u, "unused %s", "x");
  umsg.error("bad value %d", 4);
  umsg.apperror("state %u", 2u);
  umsg.remark("%s", "");  // an empty text
  umsg.advice("a");
  umsg.debug("value %d", 3);
  DIAG_SRCINFO_DATA where("in.txt", 4, 0, false);
  umsg.error(&where, "e");
  umsg.warning(&where, 1u, "w");
  umsg.advice(&where, "a");
  EXPECT_THAT(output(),
              MatchesRegex("warning: unused x\n"
                           "error: bad value 4\n"
                           "DIAG/user_msg_api:[0-9]+:internal error #99924: \\(state 2\\)\n"
                           "remark: \n"
                           "advice #99927: a\n"
                           "DIAG/user_msg_api:[0-9]+:internal debug #99920: \\(value 3\\)\n"
                           "\"in.txt\", line 4: error: e\n"
                           "\"in.txt\", line 4: warning: w\n"
                           "\"in.txt\", line 4: advice #99927: a\n"));
  EXPECT_EQ(umsg.get_error_count(), 3);
}

TEST_F(UserMsgDeathTest, WarningsAsErrorsCountAndFatalExitsAndDieAborts) {
  DIAGNOSTIC::fp_m = nullptr;
  EXPECT_EXIT(
      {
        umsg.emit_warnings_as_errors();
        umsg.warning(3u, "careful %d", 7);
        umsg.warning(nullptr, 3u, "at %d", 8);
        std::exit(umsg.get_error_count());
      },
      ::testing::ExitedWithCode(2), "^error: careful 7\nerror: at 8\n$");
  EXPECT_EXIT(umsg.fatal("cannot go on"), ::testing::ExitedWithCode(1),
              "^fatal error: cannot go on\n$");
  EXPECT_EXIT(umsg.die("x", "y"), ::testing::KilledBySignal(SIGABRT),
              "^DIAG/user_msg_api:[0-9]+:internal fatal error #99926: \\(x: y\\)\n$");
}

}  // namespace
