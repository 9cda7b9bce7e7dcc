// Several test classes in one program: each registers itself, main() runs them all.
#pragma once

#include <QtTest>
#include <functional>
#include <memory>

namespace kalvor::testing {

inline QList<std::function<int(int, char**)>>& registeredTests()
{
  static QList<std::function<int(int, char**)>> tests;
  return tests;
}

template <class Test>
struct RegisterTest {
  RegisterTest()
  {
    registeredTests().append([](int argc, char** argv) {
      Test test;
      return QTest::qExec(&test, argc, argv);
    });
  }
};

inline int runRegisteredTests(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  int failed = 0;
  for (const auto& test : registeredTests())
    failed += test(argc, argv);
  return failed;
}

}  // namespace kalvor::testing
