vellumo_fuzzer(fuzz_pkg_parser ${CMAKE_SOURCE_DIR}/fuzz/pkg_parser.cpp makesis_core)
