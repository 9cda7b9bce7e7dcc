#include "common/threads.h"

#include <QCoreApplication>
#include <atomic>

#include "common/messages.h"
#include "session/dm.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

std::atomic<int> scriptsUnderway = 0;

RemoteCalls* sessionCalls() { return DM ? DM->ConBroker : nullptr; }

}  // namespace

TCommonThread::TCommonThread(std::function<void()> method) : method_(std::move(method))
{
  QObject::connect(this, &QThread::finished, this, &QObject::deleteLater);
}

TCommonThread::~TCommonThread()
{
  // Only a program that ends comes here while the thread still runs.
  wait();
}

void TCommonThread::start() { QThread::start(QThread::LowestPriority); }

void TCommonThread::Execute()
{
  if (method_)
    method_();
}

QString TCommonThread::contextText() const { return QStringLiteral("TCommonThread.Execute"); }

void TCommonThread::run()
{
  try {
    Execute();
  } catch (const std::exception& error) {
    LogError(errorText(error), contextText());
  } catch (...) {
    LogError(QStringLiteral("Неизвестна грешка"), contextText());
  }
}

TExecuteScriptTread::TExecuteScriptTread(const QString& script) : script_(script), calls_(sessionCalls()) {}

TExecuteScriptTread::~TExecuteScriptTread() { wait(); }

void TExecuteScriptTread::start()
{
  calls_ = sessionCalls();
  ++scriptsUnderway;
  // In the thread itself, after the last it does.
  QObject::connect(this, &QThread::finished, this, [] { --scriptsUnderway; }, Qt::DirectConnection);
  TCommonThread::start();
}

void TExecuteScriptTread::finishScripts()
{
  while (scriptsUnderway > 0) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    QThread::msleep(1);
  }
}

void TExecuteScriptTread::Execute()
{
  if (!calls_ || calls_->Call(QStringLiteral("ExecuteSQLScript"), {script_}) != Variant(0))
    throw DataError(_err_UnableToSaveUserSettings);
}

QString TExecuteScriptTread::contextText() const { return QStringLiteral("TExecuteScriptTread.Execute"); }

}  // namespace kalvor
