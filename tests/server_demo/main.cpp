#include "several_tests.h"

int main(int argc, char** argv) { return kalvor::testing::runRegisteredTests(argc, argv); }
