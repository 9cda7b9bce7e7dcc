#include "platform/ports.h"

#include <QRandomGenerator>
#include <cstdio>

namespace kalvor {

QString UserPrompt::chooseFileIn(const QString&, const QString& title, const QString& pattern, bool forSaving)
{
  return chooseFile(title, pattern, forSaving);
}

namespace {

class StandardErrorPrompt : public UserPrompt {
 public:
  PromptButton message(PromptKind, const QString& text, const QList<PromptButton>& buttons) override
  {
    std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    return buttons.isEmpty() ? PromptButton::Ok : buttons.first();
  }
  void setWaitCursor(bool) override {}
  void processMessages() override {}
  QString chooseFile(const QString&, const QString&, bool) override { return {}; }
};

class WallClock : public Clock {
 public:
  QDateTime now() const override { return QDateTime::currentDateTime(); }
};

class SystemRandom : public RandomSource {
 public:
  QByteArray bytes(int count) override
  {
    QByteArray result(count, Qt::Uninitialized);
    for (char& byte : result)
      byte = char(QRandomGenerator::system()->bounded(256));
    return result;
  }
};

// Destroyed never: an error that is reported while the program ends still finds its gate.
template <class Port, class Default>
Port*& installedPort()
{
  static Port* const standard = new Default;
  static Port* installed = standard;
  if (!installed)
    installed = standard;
  return installed;
}

}  // namespace

UserPrompt& userPrompt() { return *installedPort<UserPrompt, StandardErrorPrompt>(); }
Clock& systemClock() { return *installedPort<Clock, WallClock>(); }
RandomSource& randomSource() { return *installedPort<RandomSource, SystemRandom>(); }

void installUserPrompt(UserPrompt* prompt) { installedPort<UserPrompt, StandardErrorPrompt>() = prompt; }
void installClock(Clock* clock) { installedPort<Clock, WallClock>() = clock; }
void installRandomSource(RandomSource* source) { installedPort<RandomSource, SystemRandom>() = source; }

void showError(const QString& text) { userPrompt().message(PromptKind::Error, text, {PromptButton::Ok}); }
void showInformation(const QString& text) { userPrompt().message(PromptKind::Information, text, {PromptButton::Ok}); }

bool confirm(const QString& text)
{
  return userPrompt().message(PromptKind::Confirmation, text, {PromptButton::Yes, PromptButton::No}) ==
         PromptButton::Yes;
}

}  // namespace kalvor
