#include "forms/record_rules.h"

#include "forms/form_filters.h"
#include "forms/messages.h"
#include "platform/ports.h"

namespace kalvor {
namespace {

constexpr int seriesFormId = 780;

class SeriesChangeScope {
 public:
  SeriesChangeScope() { running_ = true; }
  ~SeriesChangeScope() { running_ = false; }
  SeriesChangeScope(const SeriesChangeScope&) = delete;
  SeriesChangeScope& operator=(const SeriesChangeScope&) = delete;
  static bool running() { return running_; }

 private:
  static inline bool running_ = false;
};

bool allowsAutomaticNumbersOnly(const Variant& series, const SeriesCalls& server)
{
  const int query = server.GetQueryID(seriesFormId, 0);
  Variant manual;
  const int found = server.RequestValue(query, QString(), QStringLiteral("ManualNo"),
                                        recordFilter(QStringLiteral("Id"), series), manual, false);
  if (found <= 0 || kalvor::isNull(manual))
    return false;
  bool isNumber = false;
  const double value = variantText(manual).toDouble(&isNumber);
  return isNumber && value == 0;
}

}  // namespace

std::optional<QString> requiredFieldError(const QString& errorText)
{
  const qsizetype end = errorText.indexOf(QLatin1String(" must have a value"));
  if (!errorText.contains(QLatin1String("must have a value")))
    return std::nullopt;
  // Field 'caption' must have a value
  QString name = errorText.mid(7, qMax<qsizetype>(0, end - 7));
  if (name.endsWith(u'\''))
    name.chop(1);
  if (name.startsWith(QLatin1String("ID ")))
    name.remove(0, 3);
  return withText(_err_InvalidFieldValue, name.trimmed());
}

void translateRecordError(const DataError& error, ErrorAction& action)
{
  if (const std::optional<QString> message = requiredFieldError(error.message())) {
    showError(*message);
    action = ErrorAction::Abort;
  }
}

QString lockedFieldMessage(const TField* field)
{
  return withText(QStringLiteral("Полето %s е заключено."), field->DisplayLabel);
}

SelectorFieldChange selectorFieldChange(const QString& trimmedText, bool required)
{
  if (!trimmedText.isEmpty())
    return SelectorFieldChange::RunWithText;
  return required ? SelectorFieldChange::RunWithoutText : SelectorFieldChange::SetNull;
}

void SerieFieldOnChange(TField* field, bool defaultsInProgress, const SeriesCalls& server)
{
  if (defaultsInProgress || SeriesChangeScope::running() || !field || !field->DataSet())
    return;
  const TField* series = field->DataSet()->FindField(u"Series_Id");
  if (!series || !allowsAutomaticNumbersOnly(series->Value(), server))
    return;
  const SeriesChangeScope scope;
  field->SetValue(field->OldValue());
  showInformation(QStringLiteral("Серията позволява само автоматична номерация"));
}

}  // namespace kalvor
