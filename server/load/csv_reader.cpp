#include "server/load/csv_reader.h"

#include <algorithm>
#include <cstring>

namespace kalvor::server {

CsvReader::CsvReader(QByteArrayView text) : at_(text.data()), end_(text.data() + text.size())
{
  if (text.startsWith("\xEF\xBB\xBF")) {
    at_ += 3;
  }
}

std::string_view CsvReader::plainField()
{
  const char* begin = at_;
  while (at_ != end_ && *at_ != ',' && *at_ != '\n') {
    ++at_;
  }
  const char* stop = at_;
  if (stop != begin && stop[-1] == '\r' && (at_ == end_ || *at_ == '\n')) {
    --stop;
  }
  return {begin, size_t(stop - begin)};
}

std::string_view CsvReader::quotedField()
{
  const qint64 openedAt = line_;
  const char* begin = ++at_;
  bool doubled = false;
  for (;; ++at_) {
    if (at_ == end_) {
      throw CsvError(openedAt, QStringLiteral("незатворени кавички"));
    }
    if (*at_ == '\n') {
      ++line_;
    }
    if (*at_ != '"') {
      continue;
    }
    if (at_ + 1 == end_ || at_[1] != '"') {
      break;
    }
    doubled = true;
    ++at_;
  }
  std::string_view field(begin, size_t(at_ - begin));
  ++at_;
  if (at_ != end_ && *at_ == '\r' && (at_ + 1 == end_ || at_[1] == '\n')) {
    ++at_;
  }
  if (at_ != end_ && *at_ != ',' && *at_ != '\n') {
    throw CsvError(line_, QStringLiteral("текст след затварящи кавички"));
  }
  if (!doubled) {
    return field;
  }
  std::string& text = unquoted_.emplace_back();
  text.reserve(field.size());
  for (size_t i = 0; i < field.size(); ++i) {
    text.push_back(field[i]);
    i += field[i] == '"';
  }
  return text;
}

bool CsvReader::next()
{
  while (at_ != end_ && (*at_ == '\n' || (*at_ == '\r' && at_ + 1 != end_ && at_[1] == '\n'))) {
    at_ += *at_ == '\r' ? 2 : 1;
    ++line_;
  }
  fields_.clear();
  unquoted_.clear();
  if (at_ == end_) {
    return false;
  }
  recordLine_ = line_;
  for (;;) {
    fields_.push_back(at_ != end_ && *at_ == '"' ? quotedField() : plainField());
    if (at_ == end_) {
      return true;
    }
    const char separator = *at_++;
    if (separator == '\n') {
      ++line_;
      return true;
    }
    if (at_ == end_) {
      fields_.emplace_back();
      return true;
    }
  }
}

}  // namespace kalvor::server
