#include "harness/message_ledger.h"
#include "messages.h"

int main(int count, char** arguments) {
  return ibis::testing::runTests(count, arguments, ibis::cli::messageTable());
}
