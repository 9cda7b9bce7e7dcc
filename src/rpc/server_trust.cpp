#include "rpc/server_trust.h"

#include <QHostAddress>

namespace kalvor {
namespace {

constexpr qsizetype fingerprintBytes = 32;

bool isSeparator(QChar c) { return c == u':' || c.isSpace(); }

bool isHexDigit(QChar c)
{
  const QChar lower = c.toLower();
  return (c >= u'0' && c <= u'9') || (lower >= u'a' && lower <= u'f');
}

}  // namespace

ServerTrust::~ServerTrust() = default;

bool ServerTrust::encrypts(const QString& address, quint16) { return !isLoopbackAddress(address); }

bool isLoopbackAddress(const QString& address)
{
  const QString name = address.trimmed();
  return name.compare(u"localhost", Qt::CaseInsensitive) == 0 || QHostAddress(name).isLoopback();
}

QString fingerprintText(const QByteArray& fingerprint)
{
  return QString::fromLatin1(fingerprint.toHex(':')).toUpper();
}

QByteArray fingerprintOf(const QString& text)
{
  QString digits = text;
  digits.removeIf(isSeparator);
  if (digits.size() != 2 * fingerprintBytes || !std::all_of(digits.begin(), digits.end(), isHexDigit))
    return {};
  return QByteArray::fromHex(digits.toLatin1());
}

}  // namespace kalvor
