// Runs every test class of the datasets.
#include "data/data_tests.h"

namespace kalvor::test {

QList<QObject* (*)()>& testClasses()
{
  static QList<QObject* (*)()> classes;
  return classes;
}

}  // namespace kalvor::test

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  int failures = 0;
  for (auto create : kalvor::test::testClasses()) {
    const std::unique_ptr<QObject> tests(create());
    failures += QTest::qExec(tests.get(), argc, argv);
  }
  return failures;
}
