target_sources(KalvorServerCore PRIVATE
  load/bulk_load.cpp
  load/command_line.cpp
  load/company_defaults.cpp
  load/csv_reader.cpp
  load/key_lookup.cpp
  load/load_columns.cpp
  load/load_command.cpp
  load/load_values.cpp
  load/row_completion.cpp
  load/row_inserter.cpp
  load/sale_amounts.cpp
  load/sale_invoice_load.cpp)
