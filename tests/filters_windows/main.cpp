#include <QApplication>

#include "several_tests.h"
#include "widgets/theme.h"

int main(int argc, char** argv)
{
  QApplication application(argc, argv);
  kalvor::applyTheme(application, kalvor::ThemeMode::Light);
  int failed = 0;
  for (const auto& test : kalvor::testing::registeredTests())
    failed += test(argc, argv);
  return failed;
}
