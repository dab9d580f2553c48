#pragma once

#include "support/temp_dir.h"

namespace busquill::test {

/// A program's folder with a few names of vendors and classes.
class NamesDir : public TempDir {
public:
    NamesDir() {
        Write("PCIVendors.txt", "1011 Digital Equipment\n8086 Intel Corporation\n");
        Write("PCIClass.txt", "02 Network controller\n06 Bridge\n");
    }
};

} // namespace busquill::test
