vellumo_fuzzer(fuzz_wav_reader ${CMAKE_SOURCE_DIR}/fuzz/wav_reader.cpp vellumo_audio)
vellumo_fuzzer(fuzz_midi_reader ${CMAKE_SOURCE_DIR}/fuzz/midi_reader.cpp vellumo_audio)
