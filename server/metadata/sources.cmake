file(GLOB METADATA_FILES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/metadata/forms/*.json)
target_sources(KalvorServerCore PRIVATE
  metadata/metadata_check.cpp
  metadata/metadata_files.cpp
  metadata/metadata_loader.cpp)
qt_add_resources(KalvorServerCore kalvor_metadata PREFIX /metadata BASE ${CMAKE_CURRENT_SOURCE_DIR}/metadata/forms
  FILES ${METADATA_FILES})
