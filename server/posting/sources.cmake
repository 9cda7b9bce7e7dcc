target_sources(KalvorServerCore PRIVATE
  posting/contragent_posting.cpp
  posting/copy_rows.cpp
  posting/document_counts.cpp
  posting/global_document.cpp
  posting/item_posting.cpp
  posting/ledger.cpp
  posting/post_global_document.cpp
  posting/posted_documents.cpp
  posting/posting_checks.cpp
  posting/posting_job.cpp
  posting/posting_setup.cpp
  posting/vat_posting.cpp
  operations/posting.cpp
  updates/posted_guard.cpp)
