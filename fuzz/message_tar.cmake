vellumo_fuzzer(fuzz_mms_archive ${CMAKE_SOURCE_DIR}/fuzz/mms_archive.cpp vellumo_message)
