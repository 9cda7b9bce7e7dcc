// Runs every test class of the datasets. With the name of one as first argument only that.
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
  const QCoreApplication application(argc, argv);
  const bool one = argc > 1 && QByteArrayView(argv[1]).startsWith("Test");
  int failures = 0;
  int run = 0;
  for (auto create : kalvor::test::testClasses()) {
    const std::unique_ptr<QObject> tests(create());
    if (one && qstrcmp(tests->metaObject()->className(), argv[1]) != 0)
      continue;
    ++run;
    failures += one ? QTest::qExec(tests.get(), argc - 1, argv + 1) : QTest::qExec(tests.get(), argc, argv);
  }
  return run > 0 ? failures : 1;
}
