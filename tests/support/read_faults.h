// A disk that fails part way through a read. The test program that includes
// read_faults.cpp stands its own pread in front of the C library's (the
// library's calls reach it through the dynamic linker), and FailReadsAfter(n)
// makes reads fail with EIO once n more bytes have been read.
#pragma once

#include <cstddef>

namespace qor::tools::testing {

void FailReadsAfter(std::size_t bytes);
void StopReadFaults();

}  // namespace qor::tools::testing
