vellumo_fuzzer(fuzz_mms_archive ${CMAKE_SOURCE_DIR}/fuzz/mms_archive.cpp vellumo_message)
vellumo_fuzzer(fuzz_smil_import ${CMAKE_SOURCE_DIR}/fuzz/smil_import.cpp vellumo_message)
vellumo_fuzzer(fuzz_message_xml ${CMAKE_SOURCE_DIR}/fuzz/message_xml.cpp vellumo_message)
