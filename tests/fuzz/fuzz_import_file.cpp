// An import file of any bytes: the line reader, the heading check of every data set and the
// value checks of every later line.
#include "import/import_fuzz.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return tp::FuzzImportFile(data, size);
}
