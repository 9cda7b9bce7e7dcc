// What a user types as the criterion of a field: the first byte chooses the field's type, the rest is the text.
// Whatever comes out as a filter has rows that the server knows, conjunctions that join and brackets that close.
#include <cstdint>
#include <cstdlib>

#include "data/client_dataset.h"
#include "filters/filter_expression.h"
#include "platform/ports.h"

using namespace kalvor;

namespace {

class MutePrompt : public UserPrompt {
 public:
  MutePrompt() { installUserPrompt(this); }
  PromptButton message(PromptKind, const QString&, const QList<PromptButton>& buttons) override
  {
    return buttons.value(0);
  }
  void setWaitCursor(bool) override {}
  void processMessages() override {}
  QString chooseFile(const QString&, const QString&, bool) override { return {}; }
};

class FieldsOfEveryType {
 public:
  FieldsOfEveryType()
  {
    QList<FieldDef> definitions;
    for (int type = 0; type <= int(DataType::Blob); ++type) {
      FieldDef definition;
      definition.name = QStringLiteral("F%1").arg(type);
      definition.type = DataType(type);
      definitions.append(definition);
    }
    dataSet_.CreateDataSet(definitions);
  }
  const TField* field(std::uint8_t choice) const { return dataSet_.Field(choice % dataSet_.FieldCount()); }

 private:
  MutePrompt prompt_;
  TClientDataSet dataSet_;
};

void require(bool condition)
{
  if (!condition)
    std::abort();
}

void checkRows(const FilterArray& filter)
{
  static const QStringList operators{"=", "<>", ">", "<", ">=", "<=", "LIKE", "is", "is not "};
  int depth = 0;
  for (const FilterRow& row : filter) {
    require(operators.contains(row.op));
    require(row.conjunction.isEmpty() || row.conjunction == "AND" || row.conjunction == "OR");
    depth += int(row.brackets.count('(')) - int(row.brackets.count(')'));
    require(depth >= 0);
  }
  require(depth == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static const FieldsOfEveryType fields;
  if (size == 0)
    return 0;
  const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
  QString left, right, op;
  PreparateFilterString(text, left, right, op);
  if (op != "*" && (op != "=" || text.contains('=')))
    require(left + op + right == text);
  try {
    FilterArray filter;
    if (BuildFilter(fields.field(data[0]), text, QString(), filter))
      checkRows(filter);
  } catch (const DataError&) {
    // A refusal is an answer.
  }
  return 0;
}
