#pragma once
// One entry for a fuzzer (libFuzzer's LLVMFuzzerTestOneInput can call it): the bytes are an
// import file, read by the line reader, its first line checked as headings of every data set
// with all fields ticked, and every later line's values checked, with look-ups filled by hand
// so that no database is needed. Returns 0; a crash or a hang is the finding.
#include <cstddef>
#include <cstdint>

namespace tp {

int FuzzImportFile(const std::uint8_t* data, std::size_t size);

} // namespace tp
