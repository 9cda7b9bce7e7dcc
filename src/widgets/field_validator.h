// Which characters a field's data type lets a user type; whether the whole is a value is the field's to say.
#pragma once

#include <QValidator>

#include "data/field.h"
#include "layer_export.h"

namespace kalvor {

enum class TypedKind : quint8 { Text, Integer, Real, Date, DateTime, Time };

// Text for null, and for fields whose text is not their value (option captions).
KALVOR_WIDGETS TypedKind typedKind(const TField* field);

class KALVOR_WIDGETS FieldValidator : public QValidator {
  Q_OBJECT
 public:
  using QValidator::QValidator;
  void setKind(TypedKind kind) { kind_ = kind; }
  TypedKind kind() const { return kind_; }
  State validate(QString& text, int& position) const override;

 private:
  TypedKind kind_ = TypedKind::Text;
};

// A date written short, completed with today's month and year: "5", "0503", "050324", "05032024", "5.3".
// Any other text comes back as it is.
KALVOR_WIDGETS QString completeDate(const QString& text, QDate today);

}  // namespace kalvor
