target_sources(KalvorServerCore PRIVATE
  demo/demo_agreements.cpp
  demo/demo_company.cpp
  demo/demo_entries.cpp
  demo/demo_invoices.cpp
  demo/demo_items.cpp
  demo/demo_names.cpp
  demo/demo_partners.cpp
  demo/demo_setup.cpp
  demo/demo_users.cpp
  demo/init_command.cpp
  demo/invoice_generator.cpp)
