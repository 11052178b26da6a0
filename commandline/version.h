#pragma once

/** "VornSettings 2.7.2.0 (6b1f0c3a52)": product, version and commit, the latter with "-changed" if
 * what was built is no longer what was committed, or "unknown". Every program and library of ours
 * has it, for strings(1); each tool prints all behind the product's name. */
extern "C" const char vornVersion[];
