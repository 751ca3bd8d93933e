vellumo_fuzzer(fuzz_obex_target ${CMAKE_SOURCE_DIR}/fuzz/obex_target.cpp vellumo_transfer)
