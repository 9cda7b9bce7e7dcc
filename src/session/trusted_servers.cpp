#include "session/trusted_servers.h"

#include <QThread>

#include "platform/ports.h"
#include "rpc/rpc_error.h"
#include "session/error_log.h"
#include "session/ini_file.h"
#include "session/local_data.h"
#include "session/local_settings_file.h"

namespace kalvor {
namespace {

const QString trustedSection = QStringLiteral("TrustedServers");
const QString encryptionSection = QStringLiteral("ServerEncryption");
const QString tlsValue = QStringLiteral("tls");
const QString plaintextValue = QStringLiteral("plaintext");

// One name for a server however it is typed.
QString serverKey(const QString& address, quint16 port)
{
  QString host = address.trimmed().toLower();
  if (host.endsWith(u'.'))
    host.chop(1);
  return (host.contains(u':') ? u'[' + host + u']' : host) + u':' + QString::number(port);
}

QString keptLine(const QString& section, const QString& key)
{
  QStringList lines;
  GetSectionFromIni(section, lines);
  return valueOfLine(lines, key).trimmed();
}

// The fingerprint in lines that a box does not break, and that can be read out.
QString shownFingerprint(const QByteArray& fingerprint)
{
  constexpr qsizetype bytesOfLine = 8;
  QStringList lines;
  for (qsizetype at = 0; at < fingerprint.size(); at += bytesOfLine)
    lines.append(fingerprintText(fingerprint.mid(at, bytesOfLine)));
  return lines.join(QStringLiteral(":\r\n"));
}

[[noreturn]] void untrusted(const QString& text)
{
  throw RpcError(RpcError::Untrusted, text);
}

[[noreturn]] void wrongFingerprint(const QString& key, const QByteArray& expected, const QByteArray& fingerprint,
                                   const QString& remedy)
{
  untrusted(QStringLiteral("Връзката е отказана: сървърът %1 се представи с друг сертификат. Възможно е някой да "
                           "подменя сървъра или да подслушва.\r\n\r\nОчакван отпечатък (SHA-256):\r\n%2\r\n\r\nПолучен "
                           "отпечатък:\r\n%3\r\n\r\n%4")
                .arg(key, shownFingerprint(expected), shownFingerprint(fingerprint), remedy));
}

}  // namespace

Qt::HANDLE TrustedServers::currentThread() { return QThread::currentThreadId(); }

bool TrustedServers::encrypts(const QString& address, quint16 port)
{
  const QString kept = keptLine(encryptionSection, serverKey(address, port)).toLower();
  return kept == tlsValue || (kept != plaintextValue && ServerTrust::encrypts(address, port));
}

QByteArray TrustedServers::known(const QString& key)
{
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = accepted_.constFind(key); found != accepted_.constEnd())
      return *found;
  }
  const QString line = keptLine(trustedSection, key);
  const QByteArray fingerprint = fingerprintOf(line);
  // A line that was damaged must not pass for a first contact.
  if (!line.isEmpty() && fingerprint.isEmpty())
    untrusted(QStringLiteral("Връзката е отказана: редът „%1“ в раздел [%2] на файла %3 не е отпечатък на сертификат. "
                             "Поправете го или го изтрийте.")
                  .arg(key, trustedSection, clientDocumentFolder() + KalvorClientINIFileName));
  return fingerprint;
}

void TrustedServers::check(const QString& address, quint16 port, const QByteArray& fingerprint)
{
  const QString key = serverKey(address, port);
  if (!given_.isEmpty()) {
    if (fingerprint != given_)
      wrongFingerprint(key, given_, fingerprint,
                       QStringLiteral("Очакваният отпечатък е даден с опцията --fingerprint. Сравнете го с този, който "
                                      "показва „kalvor-server fingerprint“ на сървъра."));
    return;
  }
  const QByteArray expected = known(key);
  if (expected == fingerprint)
    return;
  if (!expected.isEmpty())
    wrongFingerprint(key, expected, fingerprint,
                     QStringLiteral("Обърнете се към системния администратор. Само ако той потвърди, че сертификатът е "
                                    "сменен, изтрийте реда „%1“ от раздел [%2] на файла %3 и се свържете отново.")
                         .arg(key, trustedSection, clientDocumentFolder() + KalvorClientINIFileName));
  if (unattended_ || currentThread() != home_)
    untrusted(QStringLiteral("Връзката е отказана: сървърът %1 не е познат на това работно място, а няма кого да "
                             "попитаме. Отпечатъкът (SHA-256) на сертификата му е:\r\n%2\r\nАко е верният, дайте го с "
                             "опцията --fingerprint или се свържете веднъж през прозореца на програмата.")
                  .arg(key, shownFingerprint(fingerprint)));
  ask(address, port, fingerprint);
}

void TrustedServers::ask(const QString& address, quint16 port, const QByteArray& fingerprint)
{
  const QString key = serverKey(address, port);
  const QString question =
      QStringLiteral("Свързвате се за първи път със сървъра %1.\r\n\r\nОтпечатък (SHA-256) на сертификата му:\r\n%2"
                     "\r\n\r\nСравнете го с този, който показва „kalvor-server fingerprint“ на сървъра, или попитайте "
                     "системния администратор. Ако не съвпадат, откажете: на пътя има някой друг.\r\n\r\nДа се помни ли "
                     "този сървър като верен?")
          .arg(key, shownFingerprint(fingerprint));
  if (beforeQuestion_)
    beforeQuestion_();
  if (userPrompt().message(PromptKind::Warning, question, {PromptButton::No, PromptButton::Yes}) != PromptButton::Yes)
    untrusted(QStringLiteral("Връзката със сървъра %1 е отказана, защото сертификатът му не беше приет.").arg(key));
  remember(key, fingerprint);
}

void TrustedServers::remember(const QString& key, const QByteArray& fingerprint)
{
  {
    const std::lock_guard lock(mutex_);
    accepted_.insert(key, fingerprint);
  }
  if (!SaveSectionToIni(trustedSection, {key + u'=' + fingerprintText(fingerprint)}))
    LogError(QStringLiteral("Не може да бъде записан отпечатъкът на сървъра %1.").arg(key),
             QStringLiteral("TrustedServers.remember"));
}

bool keepEncryption(const ServerPlace& place, Encryption encryption)
{
  return loggingErrors(QStringLiteral("keepEncryption"), [&] {
    const QString path = clientDocumentFolder() + KalvorClientINIFileName;
    const QString key = serverKey(place.address, place.port);
    IniFile file = IniFile::read(path);
    const QStringList lines = file.section(encryptionSection);
    if (encryption == Encryption::ByAddress && !hasLine(lines, key))
      return;
    if (encryption == Encryption::ByAddress)
      file.removeKey(encryptionSection, key);
    else
      file.setKey(encryptionSection, key, encryption == Encryption::Always ? tlsValue : plaintextValue);
    file.write(path);
  });
}

}  // namespace kalvor
