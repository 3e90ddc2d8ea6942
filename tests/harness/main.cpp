#include "harness/harness.h"

namespace {

// Messages that no test can provoke yet, each with the reason.
const std::vector<std::string> openMessages = {};

// A message that no test checks in full fails the whole run; a part of the run cannot tell.
class MessageCoverage final : public ::testing::Environment {
 public:
  void TearDown() override {
    if (GTEST_FLAG_GET(filter) != "*") return;
    EXPECT_EQ(ibis::testing::unprovenMessages(ibis::messageTable()), openMessages)
        << "messages that no test provokes and checks in full";
  }
};

}  // namespace

int main(int count, char** arguments) {
  ::testing::InitGoogleMock(&count, arguments);
  ::testing::AddGlobalTestEnvironment(new MessageCoverage);
  return RUN_ALL_TESTS();
}
