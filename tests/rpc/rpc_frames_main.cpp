#include "rpc_tests.h"

int main(int argc, char** argv)
{
  return kalvor::test::runFramesTest(argc, argv) | kalvor::test::runRecordFramesTest(argc, argv);
}
