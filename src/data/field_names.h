// Fields by name, without regard to case. Looking one up makes no copy of the name: rules do it some hundred times for
// every line of a document.
#pragma once

#include <QString>
#include <unordered_map>

namespace kalvor {

struct FoldedNameHash {
  using is_transparent = void;
  size_t operator()(QStringView name) const
  {
    quint64 hash = 14695981039346656037u;  // FNV-1a
    for (const QChar c : name)
      hash = (hash ^ folded(c.unicode())) * 1099511628211u;
    return size_t(hash);
  }

 private:
  static char16_t folded(char16_t c)
  {
    if (c < 128)
      return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
    return char16_t(QChar::toCaseFolded(char32_t(c)));
  }
};

struct FoldedNameEqual {
  using is_transparent = void;
  bool operator()(QStringView first, QStringView second) const
  {
    return first.compare(second, Qt::CaseInsensitive) == 0;
  }
};

class TField;
using FieldNames = std::unordered_map<QString, TField*, FoldedNameHash, FoldedNameEqual>;

}  // namespace kalvor
