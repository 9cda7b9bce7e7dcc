target_sources(KalvorServerCore PRIVATE
  load/row_inserter.cpp)
