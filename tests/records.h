// Datasets for tests, in one line each.
#pragma once

#include "data/client_dataset.h"

namespace kalvor::testing {

inline FieldDef fieldDef(const QString& name, DataType type = DataType::String, int size = 0)
{
  FieldDef definition;
  definition.name = name;
  definition.type = type;
  definition.size = size;
  return definition;
}

}  // namespace kalvor::testing
