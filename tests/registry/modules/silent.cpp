extern "C" __attribute__((visibility("default"))) int nothingToSay()
{
  return 0;
}
