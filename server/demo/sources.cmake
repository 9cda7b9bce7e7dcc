target_sources(KalvorServerCore PRIVATE
  demo/demo_agreements.cpp
  demo/demo_company.cpp
  demo/demo_entries.cpp
  demo/demo_global_documents.cpp
  demo/demo_imports.cpp
  demo/demo_invoices.cpp
  demo/demo_items.cpp
  demo/demo_names.cpp
  demo/demo_partners.cpp
  demo/demo_posting.cpp
  demo/demo_setup.cpp
  demo/demo_users.cpp
  demo/init_command.cpp
  demo/invoice_generator.cpp)
# The import filters that a company begins with.
file(GLOB IMPORT_FILES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/demo/imports/*)
qt_add_resources(KalvorServerCore kalvor_imports PREFIX /imports BASE ${CMAKE_CURRENT_SOURCE_DIR}/demo/imports
  FILES ${IMPORT_FILES})
