#include "harness/message_ledger.h"

int main(int count, char** arguments) {
  return ibis::testing::runTests(count, arguments, ibis::messageTable());
}
