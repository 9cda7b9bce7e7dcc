// Chance that comes out the same on every machine and in every year.
#pragma once

#include <QString>
#include <iterator>

namespace kalvor::server {

class DemoRandom {
 public:
  explicit DemoRandom(quint64 seed) : state_(seed) {}

  quint64 next()  // splitmix64
  {
    quint64 z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  int below(int count) { return int(next() % quint64(count)); }
  int between(int first, int last) { return first + below(last - first + 1); }
  bool chance(int percent) { return below(100) < percent; }
  // Small numbers are far more frequent than large ones, as with customers and items.
  int skewedBelow(int count)
  {
    const double unit = double(next() >> 11) / double(1ull << 53);
    return int(unit * unit * count);
  }
  template <size_t count>
  QString pick(const char16_t* const (&texts)[count])
  {
    return QString::fromUtf16(texts[below(int(count))]);
  }

 private:
  quint64 state_;
};

}  // namespace kalvor::server
