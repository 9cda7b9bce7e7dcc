#include "server/store/text_rules.h"

#include <QChar>

namespace kalvor::server {

namespace {

// Takes the next character off the text.
char32_t takeCharacter(std::string_view& text)
{
  const auto first = static_cast<unsigned char>(text.front());
  const int length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
  if (length == 1 || text.size() < size_t(length)) {
    text.remove_prefix(1);
    return first;
  }
  char32_t character = first & (0x7F >> length);
  for (int i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[size_t(i)]);
    if ((next & 0xC0) != 0x80) {
      text.remove_prefix(1);
      return first;
    }
    character = (character << 6) | (next & 0x3F);
  }
  text.remove_prefix(size_t(length));
  return character;
}

char32_t takeFolded(std::string_view& text) { return foldCharacter(takeCharacter(text)); }

}  // namespace

char32_t foldCharacter(char32_t character)
{
  if (character < 0x80) {
    return character >= U'A' && character <= U'Z' ? character + 32 : character;
  }
  if (character >= 0x0410 && character <= 0x044F) {  // А to я
    return character < 0x0430 ? character + 32 : character;
  }
  return QChar::toCaseFolded(character);
}

int compareText(std::string_view left, std::string_view right)
{
  while (!left.empty() && !right.empty()) {
    if (left.front() == right.front() && static_cast<unsigned char>(left.front()) < 0x80) {
      left.remove_prefix(1);
      right.remove_prefix(1);
      continue;
    }
    const char32_t a = takeFolded(left);
    const char32_t b = takeFolded(right);
    if (a != b) {
      return a < b ? -1 : 1;
    }
  }
  return int(!left.empty()) - int(!right.empty());
}

bool matchesPattern(std::string_view text, std::string_view pattern, char32_t escape)
{
  std::string_view resumePattern;
  std::string_view resumeText;
  bool canResume = false;
  while (true) {
    if (!pattern.empty()) {
      std::string_view rest = pattern;
      char32_t wanted = takeCharacter(rest);
      const bool literal = escape != 0 && wanted == escape && !rest.empty();
      if (literal) {
        wanted = takeCharacter(rest);
      }
      if (!literal && wanted == U'%') {
        pattern = resumePattern = rest;
        resumeText = text;
        canResume = true;
        continue;
      }
      if (!text.empty()) {
        std::string_view after = text;
        if (takeFolded(after) == foldCharacter(wanted) || (!literal && wanted == U'_')) {
          text = after;
          pattern = rest;
          continue;
        }
      }
    } else if (text.empty()) {
      return true;
    }
    if (!canResume || resumeText.empty()) {
      return false;
    }
    takeCharacter(resumeText);
    text = resumeText;
    pattern = resumePattern;
  }
}

}  // namespace kalvor::server
