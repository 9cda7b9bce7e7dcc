#include <QApplication>

#include "several_tests.h"

int main(int argc, char** argv)
{
  const QApplication application(argc, argv);
  int failed = 0;
  for (const auto& test : kalvor::testing::registeredTests()) {
    failed += test(argc, argv);
  }
  return failed;
}
